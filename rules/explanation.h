#pragma once

#include "rules/igarbageinfo.h"
#include "rules/registryrule.h"

// What a rule tells a visitor about itself. Once the visitor has answered false, nothing more is told.
class CExplanation final : public IRegistryVisitor {
public:
    explicit CExplanation(IGarbageInfo::IExplanationVisitor& visitor) noexcept : m_visitor(visitor) {}

    void Scope(GarbageScopeKind kind, const CString& text, const CString& pattern = {}, uint32_t flags = 0);
    void Action(GarbageActionKind kind, const CString& target, const CString& name = {}, uint64_t items = 0,
                uint64_t bytes = 0);
    // The recycle bin, as full as the shell says.
    void EmptyBin();

    bool Stopped() const noexcept { return m_stopped; }

    // IRegistryVisitor: what is there becomes an action.
    bool OnKey(HKEY root, const CString& path) override;
    bool OnValue(HKEY root, const CRegistryKey& key, const CString& keyPath, const CString& name) override;

private:
    IGarbageInfo::IExplanationVisitor& m_visitor;
    bool m_stopped = false;
};
