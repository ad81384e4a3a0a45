#include "host/common/enginemodule.h"

#include "host/common/executable.h"
#include "host/common/hosterror.h"
#include "host/common/texts.h"

CEngineModule::CEngineModule()
    : m_path(JoinPath(ExecutableFolder(), L"Dregsweep.dll")),
      m_module(LoadLibraryW(m_path.c_str())) {
    if (m_module) return;
    const DWORD error = GetLastError();
    throw CHostError(Text(IDS_ENGINE_NOT_LOADED, {m_path, std::to_wstring(error)}));
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
