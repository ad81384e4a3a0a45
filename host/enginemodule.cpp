#include "host/enginemodule.h"

#include "host/hosterror.h"

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

CString ExecutableFolder() {
    const CString executable = ExecutablePath();
    return executable.substr(0, executable.rfind(L'\\'));
}

CEngineModule::CEngineModule()
    : m_path(JoinPath(ExecutableFolder(), L"Dregsweep.dll")),
      m_module(LoadLibraryW(m_path.c_str())) {
    if (m_module) return;
    const DWORD error = GetLastError();
    throw CHostError(L"cannot load the engine " + m_path + L" (error " + std::to_wstring(error)
                     + L"): put Dregsweep.dll into the folder of dsw.exe");
}

CEngineModule::~CEngineModule() {
    FreeLibrary(m_module);
}

template <class Factory>
auto CEngineModule::Create(const char* factory) const {
    // By way of void*, since the address' real type is known here only.
    void* address = reinterpret_cast<void*>(GetProcAddress(m_module, factory));
    return CReference(address ? reinterpret_cast<Factory>(address)() : nullptr);
}

CReference<IDregsweep> CEngineModule::CreateEngine(const char* factory) const {
    return Create<DregsweepFactory>(factory);
}

CReference<IInternetFileProc> CEngineModule::UpdateObject() const {
    return Create<DregsweepUpdateFactory>("GetInetFileProcImp");
}
