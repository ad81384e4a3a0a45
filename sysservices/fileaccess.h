#pragma once

#include "sysservices/privilegecontext.h"
#include "sysservices/text.h"

// Opens up files that are to be deleted, and folders that are to be listed, whose access-control list refuses the user.
//
// Nothing can be granted or taken before EnablePrivileges has made the context ready. Nothing throws; running out of
// memory is a failed operation. One thread at a time: see PrivilegeContext.

// Appends full access for the current user and for Everyone to the DACL of `path`, behind its old entries. False when
// the DACL cannot be read, there is none, or it cannot be written; it is then unchanged. A current user who cannot be
// looked up is left out. A DACL that can be read but not rebuilt becomes a null DACL, which admits everyone.
[[nodiscard]] bool GrantFullAccess(const PrivilegeContext& context, const CString& path) noexcept;

// Makes the local Administrators group the owner of `path`. False when the context has no such group or the owner
// cannot be written.
[[nodiscard]] bool TakeOwnership(const PrivilegeContext& context, const CString& path) noexcept;

// With the restore context: grants full access; when that fails, takes ownership and, if that works, grants once more.
// Answers whether a grant worked; callers simply try again what was refused. The old descriptor is not put back: a
// folder, and a file that still cannot be deleted, keep full access for everyone.
bool UnlockPath(const CString& path) noexcept;
