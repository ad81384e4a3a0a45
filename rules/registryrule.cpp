#include "rules/registryrule.h"

#include <algorithm>

namespace {

constexpr DWORD kNameLength = 260;

// Stops at the first error: a name that does not fit hides the values behind it.
std::list<CString> ValueNamesOf(const CRegistryKey& key) {
    std::list<CString> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[kNameLength];
        DWORD length = kNameLength;
        if (RegEnumValueW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        names.emplace_back(name, length);
    }
    return names;
}

// All names are known before anything is done, so that deletions do not disturb the enumeration. Without a name, be it
// that "Value" is missing, empty or only separators, every value is meant, the unnamed one too. Keys are those of the
// process's own registry view.
bool WalkValues(const RegistryRule& rule, const CString& keyPath, IRegistryVisitor& visitor) {
    const CRegistryKey key(rule.root, keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return true;
    const std::list<CString> names = rule.valueNames.empty() ? ValueNamesOf(key) : rule.valueNames;
    return std::all_of(names.begin(), names.end(),
                       [&](const CString& name) { return visitor.OnValue(rule.root, key, keyPath, name); });
}

// Sub-keys themselves are never deleted here, so the rising index misses none.
bool WalkSubKeys(const RegistryRule& rule, IRegistryVisitor& visitor) {
    const CRegistryKey key(rule.root, rule.keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return true;
    wchar_t name[kNameLength];
    for (DWORD index = 0; RegEnumKeyW(key.get(), index, name, kNameLength) == ERROR_SUCCESS; ++index) {
        CString subKey = JoinPath(rule.keyPath, name);
        if (!rule.subKeyFilter.empty()) subKey = JoinPath(subKey, rule.subKeyFilter);
        if (!WalkValues(rule, subKey, visitor)) return false;
    }
    return true;
}

class CRegistryRemover final : public IRegistryVisitor {
public:
    bool OnKey(HKEY root, const CString& path) override {
        // Not recursive: a key that has sub-keys stays.
        RegDeleteKeyW(root, path.c_str());
        return true;
    }
    bool OnValue(HKEY, const CRegistryKey& key, const CString&, const CString& name) override {
        RegDeleteValueW(key.get(), name.c_str());
        return true;
    }
};

}  // namespace

bool WalkRegistry(const RegistryRule& rule, IRegistryVisitor& visitor) {
    if (!rule.root || rule.keyPath.empty()) return true;
    if (rule.deleteKey) return visitor.OnKey(rule.root, rule.keyPath);
    return rule.iteration ? WalkSubKeys(rule, visitor) : WalkValues(rule, rule.keyPath, visitor);
}

void CleanRegistry(const RegistryRule& rule) {
    CRegistryRemover remover;
    WalkRegistry(rule, remover);
}
