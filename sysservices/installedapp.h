#pragma once

#include "sysservices/text.h"

// One program that the system lists as installed.
struct InstalledApp {
    CString displayName;     // in lower case
    CString keyPath;         // the uninstall entry's path below its root key
    CString displayVersion;  // empty when the entry names none
    CString displayIcon;     // file of the icon, without an icon index; empty when the entry names none
};
