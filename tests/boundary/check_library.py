#!/usr/bin/env python3
"""Checks what the finished library shows to the outside: check_library.py <check> <arguments>.

The library is an ELF shared object or a Windows DLL; every check works on both.
"""

import re
import struct
import sys

from binary import Binary, run

STATE = ("zovDispatchIndex", "zovCpuFeatureMask", "zovCpuFeaturesKnown", "zovCpuFeaturesRaw")

PROBES = """HasCpuid RunCpuid MaxLeaf HasTsc HasMmx HasSse HasSse2 HasMultiThreading HasSse3 HasLongMode
  HasSsse3 HasSse41 HasSse42 HasMovbe HasAvxOsSupport CoreCount FillInfo ReadTsc IsVendor ResetMxcsr
  SetMxcsrBits GetMxcsr LoadMxcsr SetRoundMode IsNaN64 IsFinite64 HasDaz SetX87Control
  CacheFromDescriptors""".split()

# What a program must have beside the library: the system, the C++ run-time library, zlib.
ALLOWED_LIBRARIES = re.compile(
    r"(libc|libm|libz|libstdc\+\+|libgcc_s|ld-linux-x86-64)\.so\.\d+|(KERNEL32|msvcrt|zlib1)\.dll"
)


def exported(library):
    """The names that a program can link with."""
    if library.is_elf:
        lines = run("nm", "-D", "--defined-only", library.path).splitlines()
        return [line.split()[-1] for line in lines if line.split()[-2] != "A"]
    table = run("objdump", "-p", library.path).partition("[Ordinal/Name Pointer] Table")[2]
    return re.findall(r"^\t\[ *\d+\] (\S+)$", table, re.M)


def dispatched(rows):
    with open(rows, encoding="utf-8") as file:
        return re.findall(r"^ZOV_EXPORT\((\w+),", file.read(), re.M)


def check_names(library_path, names_path, version):
    """The library exports the names of the list and nothing else, under its version."""
    library = Binary(library_path)
    with open(names_path, encoding="utf-8") as file:
        expected = set(file.read().split())
    suffix = f"@@KELOZOV_{version}" if library.is_elf else ""
    found = set(exported(library))
    wanted = {name + suffix for name in expected}
    errors = [f"not exported: {name}" for name in sorted(wanted - found)]
    errors += [f"exported without a row: {name}" for name in sorted(found - wanted)]
    if library.is_elf:
        dynamic = run("readelf", "-d", library.path)
        if f"soname: [libkelozov.so.{version}]" not in dynamic:
            errors.append("wrong soname")
        needed = re.findall(r"NEEDED.*\[(.*)\]", dynamic)
    else:
        headers = run("objdump", "-p", library.path)
        if not re.search(r"^Name\s+\S+ kelozov\.dll$", headers, re.M):
            errors.append("wrong name in the export table")
        needed = re.findall(r"DLL Name: (\S+)", headers)
    errors += [f"needs {name}" for name in needed if not ALLOWED_LIBRARIES.fullmatch(name)]
    return errors


def check_stubs(library_path, rows):
    """The entry of a dispatched export is these 18 bytes, which name the index and its own table:
    movslq zovDispatchIndex(%rip), %rax; leaq zovTable_<name>(%rip), %r10; jmp *(%r10,%rax,8)."""
    library = Binary(library_path)
    errors = []
    for name in dispatched(rows):
        address, size, _ = library.symbols[f"Kelo_{name}"]
        code = library.bytes_at(address, 18)
        targets = (
            address + 7 + struct.unpack_from("<i", code, 3)[0],
            address + 14 + struct.unpack_from("<i", code, 10)[0],
        )
        wanted = (library.symbols["zovDispatchIndex"][0], library.symbols[f"zovTable_{name}"][0])
        opcodes = (code[0:3], code[7:10], code[14:18])
        if opcodes != (b"\x48\x63\x05", b"\x4c\x8d\x15", b"\x41\xff\x24\xc2"):
            errors.append(f"{name}: entry is {code.hex(' ')}")
        elif targets != wanted:
            errors.append(f"{name}: entry reads {targets}, not {wanted}")
        elif size not in (None, 18):
            errors.append(f"{name}: entry has {size} bytes")
    return errors


def check_symbols(library_path):
    """A debugger finds the state of detection, and the probes lie in their section."""
    library = Binary(library_path)
    errors = []
    for name in STATE:
        kind = library.symbols.get(name, (0, 0, "missing"))[2]
        # A PE symbol table knows no hidden symbols; the names check covers the export table.
        if kind not in ("bd" if library.is_elf else "bdBD"):
            errors.append(f"{name}: {kind}")
    places = {}
    for symbol, (address, _, _) in library.symbols.items():
        if match := re.match(r"_ZN3zov(\d+)(zovCpu\w+)", symbol):
            places[match[2][: int(match[1])]] = library.section_at(address)
    for probe in ("zovCpu" + name for name in PROBES):
        if places.get(probe) != "RT_CODE":
            errors.append(f"{probe}: in {places.get(probe)}")
    return errors


def check_header(header, names_path):
    """Every prototype of the header is an export, and every export has its prototype."""
    with open(header, encoding="utf-8") as file:
        prototypes = re.findall(r"^KELO_API [^;(]*?(\w+)\(", file.read(), re.M)
    with open(names_path, encoding="utf-8") as file:
        exports = file.read().split()
    errors = [f"prototype without an export: {n}" for n in sorted(set(prototypes) - set(exports))]
    errors += [f"export without a prototype: {n}" for n in sorted(set(exports) - set(prototypes))]
    errors += [f"two prototypes: {n}" for n in set(prototypes) if prototypes.count(n) > 1]
    return errors


CHECKS = {
    "names": check_names,
    "stubs": check_stubs,
    "symbols": check_symbols,
    "header": check_header,
}

if __name__ == "__main__":
    problems = CHECKS[sys.argv[1]](*sys.argv[2:])
    print("\n".join(problems))
    sys.exit(1 if problems else 0)
