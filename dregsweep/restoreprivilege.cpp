#include "dregsweep/restoreprivilege.h"

#include <windows.h>

#include "sysservices/handle.h"
#include "sysservices/trace.h"

namespace {

// The handles close without touching the last error, which the trace line reports.
bool AdjustRestorePrivilege() noexcept {
    const CHandle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, GetCurrentProcessId()));
    if (!process) return false;
    CHandle token;
    if (!OpenProcessToken(process.get(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, token.Put())) return false;

    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (!LookupPrivilegeValueW(nullptr, L"SeRestorePrivilege", &privileges.Privileges[0].Luid)) return false;
    // The answer alone counts: it is true even when the token lacks the privilege.
    return AdjustTokenPrivileges(token.get(), FALSE, &privileges, 0, nullptr, nullptr);
}

}  // namespace

void EnableRestorePrivilege() noexcept {
    const bool enabled = AdjustRestorePrivilege();
    const DWORD error = GetLastError();
    DregsweepTrace(L"[Dregsweep] EnableRestorePrivilege %d,%d", enabled ? 1 : 0, static_cast<int>(error));
}
