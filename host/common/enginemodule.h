#pragma once

#include <windows.h>

#include "dregsweep/idregsweep.h"
#include "sysservices/reference.h"
#include "sysservices/text.h"

// Dregsweep.dll, loaded from the folder of this executable and freed at the end of the scope. Every object that it gave
// out must have been released by then.
class CEngineModule {
public:
    // Throws CHostError when the module is missing or cannot be loaded.
    CEngineModule();
    ~CEngineModule();
    CEngineModule(const CEngineModule&) = delete;
    CEngineModule& operator=(const CEngineModule&) = delete;

    // A new engine from one of the exports that hand them out, or null.
    CReference<IDregsweep> CreateEngine(const char* factory) const;
    // The update object of the process, or null.
    CReference<IInternetFileProc> UpdateObject() const;

private:
    template <class Factory>
    auto Create(const char* factory) const;

    const CString m_path;
    const HMODULE m_module;
};
