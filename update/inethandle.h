#pragma once

#include <windows.h>

#include <wininet.h>

#include "sysservices/owner.h"

// A root or a request handle of WinINet; null when opening failed.
struct InetHandleKind {
    using Value = HINTERNET;
    static void GiveBack(HINTERNET handle) noexcept { InternetCloseHandle(handle); }
};
using CInetHandle = COwner<InetHandleKind>;
