#pragma once

#include "sysservices/text.h"

// The files of the upgrade clean-up, beside the host's executable (not beside this library).
struct UpgradeFiles {
    CString configPath;  // the rules, "SysUpgradeConfig.xml"
    CString textPath;    // the localised names, "ResIDText.xml"
};

// Neither file need exist. Both paths are empty when the executable's own cannot be had, or is longer than 259
// characters.
UpgradeFiles FindUpgradeFiles();
