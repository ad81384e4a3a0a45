#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>

#include "sysservices/owner.h"

// A SID that AllocateAndInitializeSid made.
struct SidKind {
    using Value = PSID;
    static void GiveBack(PSID sid) noexcept { FreeSid(sid); }
};
using CSid = COwner<SidKind>;

// What the process needs to open protected files: privileges that are enabled once, buffers that descriptors are read
// into, and the account that takes over what nobody else may touch.
//
// The process has two, reached through BackupContext() and RestoreContext(). They are ready before any code of the
// module runs and free what they hold when the module is unloaded. They have no lock: use them, and everything that
// works with them (EnablePrivileges, CFileDaclProc, the functions of fileaccess.h), from one thread at a time. The
// locks of one engine see to that; two engines in upgrade mode must not be made or run at once.
struct PrivilegeContext {
    explicit constexpr PrivilegeContext(bool forBackup) noexcept : backupMode(forBackup) {}
    PrivilegeContext(const PrivilegeContext&) = delete;
    PrivilegeContext& operator=(const PrivilegeContext&) = delete;

    // Null until the privileges are enabled, then each `bufferSize` bytes. File descriptors are read into the third.
    std::array<std::unique_ptr<BYTE[]>, 4> scratch;
    // The local Administrators group; null until the take-ownership privilege is enabled, and in the backup context.
    CSid administrators;
    // Bytes: 0, once ready 10240. While it is 0 no descriptor can be read, so nothing can be granted.
    uint32_t bufferSize = 0;
    bool ready = false;
    // True for the backup context, false for the restore context.
    bool backupMode;
};

PrivilegeContext& BackupContext() noexcept;
PrivilegeContext& RestoreContext() noexcept;

// Enables SeBackupPrivilege (backup context), or SeRestorePrivilege and then SeTakeOwnershipPrivilege (restore
// context), on the process token, and makes the context ready; does nothing when it is. Returns whether it is ready.
//
// A privilege counts as enabled when the system takes the request, whether or not the token holds the privilege.
// Without the second one a restore context is ready all the same, but has no Administrators group. On failure, lack of
// memory included, the context is as it was, and a later call tries again.
bool EnablePrivileges(PrivilegeContext& context) noexcept;
