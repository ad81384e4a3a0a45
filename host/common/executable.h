#pragma once

#include "sysservices/text.h"

// The path of this executable, and the folder that holds it.
CString ExecutablePath();
CString ExecutableFolder();
