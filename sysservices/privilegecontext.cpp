#include "sysservices/privilegecontext.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "sysservices/handle.h"

namespace {

constexpr uint32_t kScratchBytes = 10240;

// Constant-initialised: loading the module runs no code for them.
constinit PrivilegeContext g_backupContext{/*forBackup=*/true};
constinit PrivilegeContext g_restoreContext{/*forBackup=*/false};

CHandle OpenOwnToken() noexcept {
    CHandle token;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, token.Put());
    return token;
}

bool Enable(const CHandle& token, const LUID& privilege) noexcept {
    TOKEN_PRIVILEGES wanted = {1, {{privilege, SE_PRIVILEGE_ENABLED}}};
    // True also when the token lacks the privilege, which then counts as enabled.
    return AdjustTokenPrivileges(token.get(), FALSE, &wanted, 0, nullptr, nullptr) != FALSE;
}

std::optional<LUID> FindPrivilege(const wchar_t* name) noexcept {
    LUID privilege = {};
    if (!LookupPrivilegeValueW(nullptr, name, &privilege)) return std::nullopt;
    return privilege;
}

CSid MakeAdministratorsSid() noexcept {
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    CSid sid;
    AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                             sid.Put());
    return sid;
}

// The group that can be made the owner of any file, as far as the process may do so.
CSid PrepareOwnership(const CHandle& token) noexcept {
    const std::optional<LUID> takeOwnership = FindPrivilege(SE_TAKE_OWNERSHIP_NAME);
    if (!takeOwnership || !Enable(token, *takeOwnership)) return {};
    return MakeAdministratorsSid();
}

}  // namespace

PrivilegeContext& BackupContext() noexcept {
    return g_backupContext;
}

PrivilegeContext& RestoreContext() noexcept {
    return g_restoreContext;
}

bool EnablePrivileges(PrivilegeContext& context) noexcept {
    if (context.ready) return true;

    const std::optional<LUID> privilege = FindPrivilege(context.backupMode ? SE_BACKUP_NAME : SE_RESTORE_NAME);
    if (!privilege) return false;
    const CHandle token = OpenOwnToken();
    if (!token || !Enable(token, *privilege)) return false;
    CSid administrators = context.backupMode ? CSid() : PrepareOwnership(token);

    decltype(context.scratch) scratch;
    for (auto& buffer : scratch)
        buffer.reset(new (std::nothrow) BYTE[kScratchBytes]);
    if (!std::ranges::all_of(scratch, [](const auto& buffer) { return buffer != nullptr; })) return false;

    context.scratch = std::move(scratch);
    context.administrators = std::move(administrators);
    context.bufferSize = kScratchBytes;
    context.ready = true;
    return true;
}
