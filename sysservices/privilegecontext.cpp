#include "sysservices/privilegecontext.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace {

constexpr uint32_t kScratchBytes = 10240;

// Constant-initialised: loading the module runs no code for them.
constinit PrivilegeContext g_backupContext{/*forBackup=*/true};
constinit PrivilegeContext g_restoreContext{/*forBackup=*/false};

// The token of the own process, closed at the end of the scope.
class CProcessToken {
public:
    CProcessToken() noexcept {
        if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &m_token)) m_token = nullptr;
    }
    ~CProcessToken() {
        if (m_token) CloseHandle(m_token);
    }
    CProcessToken(const CProcessToken&) = delete;
    CProcessToken& operator=(const CProcessToken&) = delete;

    explicit operator bool() const noexcept { return m_token != nullptr; }

    bool Enable(const LUID& privilege) const noexcept {
        TOKEN_PRIVILEGES wanted = {1, {{privilege, SE_PRIVILEGE_ENABLED}}};
        // Deliberately only the call's own result: ERROR_NOT_ALL_ASSIGNED counts as success.
        return AdjustTokenPrivileges(m_token, FALSE, &wanted, 0, nullptr, nullptr) != FALSE;
    }

private:
    HANDLE m_token = nullptr;
};

std::optional<LUID> FindPrivilege(const wchar_t* name) noexcept {
    LUID privilege = {};
    if (!LookupPrivilegeValueW(nullptr, name, &privilege)) return std::nullopt;
    return privilege;
}

CSidPointer MakeAdministratorsSid() noexcept {
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    PSID sid = nullptr;
    const BOOL made = AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0,
                                               0, 0, 0, 0, 0, &sid);
    return CSidPointer(made ? sid : nullptr);
}

// The group that can be made the owner of any file, as far as the process may do so.
CSidPointer PrepareOwnership(const CProcessToken& token) noexcept {
    const std::optional<LUID> takeOwnership = FindPrivilege(SE_TAKE_OWNERSHIP_NAME);
    if (!takeOwnership || !token.Enable(*takeOwnership)) return nullptr;
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
    const CProcessToken token;
    if (!token || !token.Enable(*privilege)) return false;
    CSidPointer administrators = context.backupMode ? nullptr : PrepareOwnership(token);

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
