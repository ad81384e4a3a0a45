#include "rules/registryrule.h"

#include <cstring>
#include <vector>

#include "rules/rootkeyname.h"
#include "sysservices/registrykey.h"

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

// All names are known before anything is deleted, so that deletions do not disturb the enumeration. Without a name, be
// it that "Value" is missing, empty or only separators, every value goes, the unnamed one too. Keys are those of the
// process's own registry view.
void DeleteValues(const RegistryRule& rule, const CString& keyPath) {
    if (!rule.root || keyPath.empty()) return;
    if (rule.deleteKey) {
        // Never reached: CleanRegistry deletes the key itself.
        RegDeleteKeyW(rule.root, keyPath.c_str());
        return;
    }
    const CRegistryKey key(rule.root, keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return;
    const std::list<CString> names = rule.valueNames.empty() ? ValueNamesOf(key) : rule.valueNames;
    for (const CString& name : names)
        RegDeleteValueW(key.get(), name.c_str());
}

// Sub-keys themselves are never deleted here, so the rising index misses none.
void DeleteValuesOfSubKeys(const RegistryRule& rule) {
    const CRegistryKey key(rule.root, rule.keyPath.c_str(), KEY_ALL_ACCESS);
    if (!key) return;
    wchar_t name[kNameLength];
    for (DWORD index = 0; RegEnumKeyW(key.get(), index, name, kNameLength) == ERROR_SUCCESS; ++index) {
        CString subKey = JoinPath(rule.keyPath, name);
        if (!rule.subKeyFilter.empty()) subKey = JoinPath(subKey, rule.subKeyFilter);
        DeleteValues(rule, subKey);
    }
}

}  // namespace

HKEY RootKeyByName(const char* name) noexcept {
    if (!name) return nullptr;
    for (const RootKeyName& known : kRootKeyNames) {
        if (std::strcmp(name, known.name) == 0) return known.root;
    }
    return nullptr;
}

void CleanRegistry(const RegistryRule& rule) {
    if (!rule.root || rule.keyPath.empty()) return;
    if (rule.deleteKey) {
        // Not recursive: a key that has sub-keys stays.
        RegDeleteKeyW(rule.root, rule.keyPath.c_str());
        return;
    }
    if (!rule.iteration) {
        DeleteValues(rule, rule.keyPath);
    } else {
        DeleteValuesOfSubKeys(rule);
    }
}
