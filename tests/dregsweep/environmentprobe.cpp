#include "dregsweep/companion.h"
#include "dregsweep/crashdump.h"

namespace {

const CCrashFilterInstaller g_crashFilter;

}  // namespace

extern "C" {

__declspec(dllexport) void Send(uint32_t code) {
    SendUsageEvent(code);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* reserved) {
    if (reason == DLL_PROCESS_DETACH && !reserved) RemoveCrashFilter();
    return TRUE;
}
}
