#pragma once

#include "sysservices/owner.h"

// A kernel handle: file, process, token, event. Both null and INVALID_HANDLE_VALUE count as no handle, since some calls
// fail with one and some with the other; the pseudo handle of the current process is none of these.
struct HandleKind {
    using Value = HANDLE;
    static bool IsNone(HANDLE handle) noexcept { return handle == INVALID_HANDLE_VALUE; }
    static void GiveBack(HANDLE handle) noexcept { CloseHandle(handle); }
};
using CHandle = COwner<HandleKind>;
