#include "host/enginemodule.h"

#include "host/hosterror.h"

namespace {

CString ExecutablePath() {
    CString path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

CString ModulePath() {
    const CString executable = ExecutablePath();
    return JoinPath(executable.substr(0, executable.rfind(L'\\')), L"Dregsweep.dll");
}

}  // namespace

CEngineModule::CEngineModule() : m_path(ModulePath()), m_module(LoadLibraryW(m_path.c_str())) {
    if (m_module) return;
    const DWORD error = GetLastError();
    throw CHostError(L"cannot load the engine " + m_path + L" (error " + std::to_wstring(error)
                     + L"): put Dregsweep.dll into the folder of dsw.exe");
}

CEngineModule::~CEngineModule() {
    FreeLibrary(m_module);
}

CReference<IDregsweep> CEngineModule::CreateEngine() const {
    // By way of void*, since the address' real type is known here only.
    void* address = reinterpret_cast<void*>(GetProcAddress(m_module, "GetImp"));
    CReference<IDregsweep> engine(address ? reinterpret_cast<DregsweepFactory>(address)() : nullptr);
    if (!engine)
        throw CHostError(L"the engine " + m_path + L" gave no object: is it the Dregsweep.dll of this dsw.exe?");
    return engine;
}
