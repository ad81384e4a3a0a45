#pragma once

#include <windows.h>

// The names by which rules give a root of the registry, compared as written. "HKUR" is HKEY_USERS.
struct RootKeyName {
    const char* name;
    HKEY root;
};

inline const RootKeyName kRootKeyNames[] = {
    {"HKLM", HKEY_LOCAL_MACHINE},
    {"HKCU", HKEY_CURRENT_USER},
    {"HKCR", HKEY_CLASSES_ROOT},
    {"HKUR", HKEY_USERS},
};
