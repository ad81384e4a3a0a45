#pragma once

#include <windows.h>

#include <list>

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

// Removes what the rule names. Failures are silent and nothing is reported: what is missing or refused stays as it is.
void CleanRegistry(const RegistryRule& rule);
