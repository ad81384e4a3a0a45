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

    // A new engine, not yet initialised. Throws CHostError when the module has none to give.
    CReference<IDregsweep> CreateEngine() const;

private:
    const CString m_path;
    const HMODULE m_module;
};
