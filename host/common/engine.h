#pragma once

#include <optional>

#include "host/common/enginemodule.h"
#include "host/common/engineoptions.h"
#include "host/common/nodepaths.h"

// An engine with its rules and names loaded, and with that selected which the options say.
class CEngine {
public:
    // Throws CHostError when a file is missing or holds nothing that the engine can use, or a pattern matches nothing.
    explicit CEngine(const EngineOptions& options);
    ~CEngine() { m_engine->Uninit(); }
    CEngine(const CEngine&) = delete;
    CEngine& operator=(const CEngine&) = delete;

    IDregsweep* operator->() const noexcept { return m_engine.get(); }
    IDregsweep& operator*() const noexcept { return *m_engine; }

    // By the names of the rule file, whatever the language shown.
    const CNodePaths& Paths() const noexcept { return *m_paths; }

private:
    // In this order: the engine must go before the module that holds its code.
    CEngineModule m_module;
    CReference<IDregsweep> m_engine;
    std::optional<CNodePaths> m_paths;
};
