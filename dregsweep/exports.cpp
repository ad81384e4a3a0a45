#include <windows.h>

#include <new>

#include "dregsweep/companionservice.h"
#include "dregsweep/crashdump.h"
#include "dregsweep/dregsweep.h"
#include "dregsweep/upgradefiles.h"
#include "sysservices/nothrow.h"
#include "update/internetfileproc.h"

// The module boundary. Every export is named in Dregsweep.def; none of them throws.

namespace {

const CrashFilterInstaller g_crashFilter;

CDregsweep* CreateEngine(bool upgradeMode) {
    return new (std::nothrow) CDregsweep(upgradeMode);
}

// Never half-initialised: an engine whose Init refuses is released, and its code goes no further. A missing or broken
// rule file is no refusal: the engine is then ready and empty.
IDregsweep* CreateUpgradeEngine() {
    CReference<CDregsweep> engine(CreateEngine(/*upgradeMode=*/true));
    if (!engine) return nullptr;
    const UpgradeFiles files = FindUpgradeFiles();
    // Better no engine than rules that do not lie beside the host.
    if (files.configPath.empty()) return nullptr;
    if (engine->Init(files.configPath.c_str(), files.textPath.c_str(), /*selector=*/nullptr) != 0) return nullptr;
    engine->AddRef();  // the host's, beside the one that ends here
    return engine.get();
}

}  // namespace

// GetPrivacyProcImp is this same function. Init is the host's to call.
extern "C" IDregsweep* GetImp() noexcept {
    return NoThrow<IDregsweep*>(nullptr, [] { return CreateEngine(/*upgradeMode=*/false); });
}

extern "C" IDregsweep* GetSysUpgradeClearImp() noexcept {
    return NoThrow<IDregsweep*>(nullptr, CreateUpgradeEngine);
}

extern "C" IInternetFileProc* GetInetFileProcImp() noexcept {
    return SharedInternetFileProc();
}

extern "C" bool StartFunc() noexcept {
    return StartCompanionService();
}

// Does nothing: the service goes on.
extern "C" bool EndFunc() noexcept {
    return true;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    // At the end of the process the filter stays, for what may still fail there.
    if (reason == DLL_PROCESS_DETACH && !processEnds) RemoveCrashFilter();
    return TRUE;
}
