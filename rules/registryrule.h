#pragma once

#include <windows.h>

#include <list>

#include "sysservices/registrykey.h"
#include "sysservices/text.h"

// What a registry rule removes. Borrows from its rule.
struct RegistryRule {
    HKEY root;                             // a predefined root, or null for none
    const CString& keyPath;                // below the root
    const CString& subKeyFilter;           // relative path appended to every sub-key, or empty
    bool iteration;                        // work on the sub-keys instead of the key itself
    bool deleteKey;                        // remove the key, not its values
    const std::list<CString>& valueNames;  // lower-cased; empty means every value
};

// The predefined root of "HKLM", "HKCU", "HKCR" or "HKUR" (which is HKEY_USERS), compared as written; null for anything
// else, a null name included.
HKEY RootKeyByName(const char* name) noexcept;

// What is done with a hit of a registry rule. False ends the walk.
class IRegistryHits {
public:
    // The key of a rule that deletes it, there or not.
    virtual bool OnKey(HKEY root, const CString& path) = 0;
    // A value of an opened key, there or not: the rule file may have named it.
    virtual bool OnValue(HKEY root, const CRegistryKey& key, const CString& keyPath, const CString& name) = 0;

protected:
    ~IRegistryHits() = default;
};

// Finds what a clean removes for the rule. A key that is missing or does not admit every access is passed over.
bool WalkRegistry(const RegistryRule& rule, IRegistryHits& hits);

// Removes what the rule names. Failures are silent and nothing is reported: what is missing or refused stays as it is.
void CleanRegistry(const RegistryRule& rule);

// A path with its root, as people write it: "HKCU\\Software".
CString KeyText(HKEY root, const CString& path);

// Is the key there? One that may not be looked into is.
bool KeyExists(HKEY root, const CString& path) noexcept;
