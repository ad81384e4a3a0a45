#include "sysservices/fileaccess.h"

#include "sysservices/accesscontrollist.h"
#include "sysservices/filedaclproc.h"

using Security_Proc::CAccessControlList;
using Security_Proc::CFileDaclProc;

bool GrantFullAccess(const PrivilegeContext& context, const CString& path) noexcept try {
    // Declared first: the list below extends an ACL that lies in the file's descriptor.
    CFileDaclProc file(path, context.backupMode, /*readNow=*/true);
    ACL* const oldAcl = file.GetDacl();
    if (!oldAcl) return false;
    CAccessControlList list(oldAcl, /*addCurrentUser=*/true, /*skipOldDeny=*/false);
    if (!list.AddWellKnownSid(Security_Proc::kFullAccess)) return false;
    // A list that could not be built is written as a null DACL, which opens the item all the same: to everyone.
    return file.SetDacl(list.GetAcl());
} catch (...) {
    return false;
}

bool TakeOwnership(const PrivilegeContext& context, const CString& path) noexcept try {
    if (!context.administrators) return false;
    CFileDaclProc file(path, context.backupMode, /*readNow=*/false);
    return file.SetOwner(context.administrators.get(), /*groupToo=*/false);
} catch (...) {
    return false;
}

bool UnlockPath(const CString& path) noexcept {
    const PrivilegeContext& context = RestoreContext();
    // Nobody puts the old descriptor back: a folder that was only listed keeps full access for everyone.
    return GrantFullAccess(context, path) || (TakeOwnership(context, path) && GrantFullAccess(context, path));
}
