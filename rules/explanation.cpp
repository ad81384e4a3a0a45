#include "rules/explanation.h"

#include <shellapi.h>

#include "rules/rootkeyname.h"

void CExplanation::Scope(GarbageScopeKind kind, const CString& text, const CString& pattern, uint32_t flags) {
    if (m_stopped) return;
    const GarbageScope scope = {kind, flags, text.c_str(), pattern.c_str()};
    m_stopped = !m_visitor.OnScope(&scope);
}

void CExplanation::Action(GarbageActionKind kind, const CString& target, const CString& name, uint64_t items,
                          uint64_t bytes) {
    if (m_stopped) return;
    const GarbageAction action = {kind, target.c_str(), name.c_str(), items, bytes};
    m_stopped = !m_visitor.OnAction(&action);
}

void CExplanation::EmptyBin() {
    SHQUERYRBINFO bin = {};
    bin.cbSize = sizeof bin;
    const bool known = SUCCEEDED(SHQueryRecycleBinW(nullptr, &bin));
    Action(ActionEmptyBin, {}, {}, known ? static_cast<uint64_t>(bin.i64NumItems) : kGarbageUnknown,
           known ? static_cast<uint64_t>(bin.i64Size) : kGarbageUnknown);
}

bool CExplanation::OnKey(HKEY root, const CString& path) {
    if (CRegistryKey::Exists(root, path.c_str())) Action(ActionDeleteKey, KeyText(root, path));
    return !m_stopped;
}

bool CExplanation::OnValue(HKEY root, const CRegistryKey& key, const CString& keyPath, const CString& name) {
    if (key.HasValue(name.c_str())) Action(ActionDeleteValue, KeyText(root, keyPath), name);
    return !m_stopped;
}
