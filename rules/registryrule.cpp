#include "rules/registryrule.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "rules/rootkeyname.h"

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
bool WalkValues(const RegistryRule& rule, const CString& keyPath, IRegistryHits& hits) {
    const CRegistryKey key(rule.root, keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return true;
    const std::list<CString> names = rule.valueNames.empty() ? ValueNamesOf(key) : rule.valueNames;
    return std::all_of(names.begin(), names.end(),
                       [&](const CString& name) { return hits.OnValue(rule.root, key, keyPath, name); });
}

// Sub-keys themselves are never deleted here, so the rising index misses none.
bool WalkSubKeys(const RegistryRule& rule, IRegistryHits& hits) {
    const CRegistryKey key(rule.root, rule.keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return true;
    wchar_t name[kNameLength];
    for (DWORD index = 0; RegEnumKeyW(key.get(), index, name, kNameLength) == ERROR_SUCCESS; ++index) {
        CString subKey = JoinPath(rule.keyPath, name);
        if (!rule.subKeyFilter.empty()) subKey = JoinPath(subKey, rule.subKeyFilter);
        if (!WalkValues(rule, subKey, hits)) return false;
    }
    return true;
}

class CRegistryRemover final : public IRegistryHits {
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

HKEY RootKeyByName(const char* name) noexcept {
    if (!name) return nullptr;
    for (const RootKeyName& known : kRootKeyNames) {
        if (std::strcmp(name, known.name) == 0) return known.root;
    }
    return nullptr;
}

bool WalkRegistry(const RegistryRule& rule, IRegistryHits& hits) {
    if (!rule.root || rule.keyPath.empty()) return true;
    if (rule.deleteKey) return hits.OnKey(rule.root, rule.keyPath);
    return rule.iteration ? WalkSubKeys(rule, hits) : WalkValues(rule, rule.keyPath, hits);
}

void CleanRegistry(const RegistryRule& rule) {
    CRegistryRemover remover;
    WalkRegistry(rule, remover);
}

CString KeyText(HKEY root, const CString& path) {
    const auto known = std::find_if(std::begin(kRootKeyNames), std::end(kRootKeyNames),
                                    [root](const RootKeyName& name) { return name.root == root; });
    return known == std::end(kRootKeyNames) ? path : JoinPath(known->shown, path);
}

bool KeyExists(HKEY root, const CString& path) noexcept {
    // What may not be opened may still be deleted by who may.
    return CRegistryKey(root, path.c_str(), KEY_QUERY_VALUE) || GetLastError() == ERROR_ACCESS_DENIED;
}
