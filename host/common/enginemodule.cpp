#include "host/common/enginemodule.h"

#include "host/common/executable.h"
#include "host/common/hosterror.h"

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
