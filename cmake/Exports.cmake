# The linker's lists of exported names, made from the rows of src/exports/exports.inc.

set(rows ${PROJECT_SOURCE_DIR}/src/exports/exports.inc)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${rows})
file(STRINGS ${rows} lines REGEX "^ZOV_(EXPORT|PLAIN_EXPORT)\\(")
set(KELOZOV_EXPORTS)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^ZOV_(PLAIN_)?EXPORT\\(([A-Za-z0-9_]+).*" "Kelo_\\2" name "${line}")
  list(APPEND KELOZOV_EXPORTS ${name})
endforeach()
list(SORT KELOZOV_EXPORTS)

set(KELOZOV_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/kelozov.map)
set(KELOZOV_DEF_FILE ${PROJECT_BINARY_DIR}/kelozov.def)
list(JOIN KELOZOV_EXPORTS ";\n    " names)
file(CONFIGURE OUTPUT ${KELOZOV_VERSION_SCRIPT}
  CONTENT "KELOZOV_@PROJECT_VERSION_MAJOR@ {\n  global:\n    @names@;\n  local:\n    *;\n};\n" @ONLY)
list(JOIN KELOZOV_EXPORTS "\n  " names)
file(CONFIGURE OUTPUT ${KELOZOV_DEF_FILE}
  CONTENT "LIBRARY kelozov.dll\nEXPORTS\n  @names@\n" @ONLY)
list(JOIN KELOZOV_EXPORTS "\n" names)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/exports.txt CONTENT "@names@\n" @ONLY)
