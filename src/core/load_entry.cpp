// The loader's notification: detection runs once, at process attach, before any export can run.
#include "core/cpu.h"

#ifdef _WIN32
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) zov::zovCpuInit();
  return TRUE;
}
#else
namespace {
// 101 is the first priority open to applications, so this runs ahead of the default constructors of
// whatever is linked into the same object.
__attribute__((constructor(101))) void OnProcessAttach() { zov::zovCpuInit(); }
}  // namespace
#endif
