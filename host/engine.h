#pragma once

#include "host/enginemodule.h"
#include "host/engineoptions.h"

// An engine with its rules and names loaded, for one command.
class CEngine {
public:
    // Throws CHostError when a file is missing or holds nothing that the engine can use.
    explicit CEngine(const EngineOptions& options);
    ~CEngine() { m_engine->Uninit(); }
    CEngine(const CEngine&) = delete;
    CEngine& operator=(const CEngine&) = delete;

    IDregsweep* operator->() const noexcept { return m_engine.get(); }
    IDregsweep& operator*() const noexcept { return *m_engine; }

private:
    // In this order: the engine must go before the module that holds its code.
    CEngineModule m_module;
    CReference<IDregsweep> m_engine;
};
