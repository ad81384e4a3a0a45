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

// What is done with what a registry rule names. False ends the walk.
class IRegistryVisitor {
public:
    // The key of a rule that deletes keys, there or not.
    virtual bool OnKey(HKEY root, const CString& path) = 0;
    // A value of an opened key, there or not: the rule file may have named it.
    virtual bool OnValue(HKEY root, const CRegistryKey& key, const CString& keyPath, const CString& name) = 0;

protected:
    ~IRegistryVisitor() = default;
};

// Visits what a clean removes for the rule. Of a key that is missing or does not admit every access no values are
// visited. False when the visitor ended the walk.
bool WalkRegistry(const RegistryRule& rule, IRegistryVisitor& visitor);

// Removes what the rule names. Failures are silent and nothing is reported: what is missing or refused stays as it is.
void CleanRegistry(const RegistryRule& rule);
