#include "sysservices/filedaclproc.h"

#include <algorithm>

#include "sysservices/privilegecontext.h"

namespace Security_Proc {

CFileDaclProc::CFileDaclProc(const CString& path, bool backupContext, bool readNow) : m_path(path) {
    if (readNow) Read(backupContext);
}

void CFileDaclProc::Read(bool backupContext) {
    const PrivilegeContext& context = backupContext ? BackupContext() : RestoreContext();
    BYTE* const buffer = context.scratch[2].get();
    DWORD needed = 0;
    // Before EnablePrivileges the buffer has no size and this fails: nothing is granted without privileges.
    if (!GetFileSecurityW(m_path.c_str(), DACL_SECURITY_INFORMATION, buffer, context.bufferSize, &needed)) return;
    const DWORD size = std::min<DWORD>(needed, context.bufferSize);
    m_descriptor = std::make_unique<BYTE[]>(size);
    std::copy_n(buffer, size, m_descriptor.get());
}

bool CFileDaclProc::SetDacl(PACL acl) noexcept {
    SECURITY_DESCRIPTOR descriptor;
    return InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION)
           && SetSecurityDescriptorDacl(&descriptor, m_daclPresent, acl, m_daclDefaulted)
           && SetFileSecurityW(m_path.c_str(), DACL_SECURITY_INFORMATION, &descriptor);
}

bool CFileDaclProc::SetOwner(PSID sid, bool groupToo) noexcept {
    // With `groupToo` the call is told to write the group, of which the descriptor has none, and not the owner.
    const SECURITY_INFORMATION which = groupToo ? GROUP_SECURITY_INFORMATION : OWNER_SECURITY_INFORMATION;
    SECURITY_DESCRIPTOR descriptor;
    return InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION)
           && SetSecurityDescriptorOwner(&descriptor, sid, /*bOwnerDefaulted=*/TRUE)
           && SetFileSecurityW(m_path.c_str(), which, &descriptor);
}

PACL CFileDaclProc::GetDacl() noexcept {
    PACL acl = nullptr;
    if (!m_descriptor || !GetSecurityDescriptorDacl(m_descriptor.get(), &m_daclPresent, &acl, &m_daclDefaulted)) {
        return nullptr;
    }
    return m_daclPresent ? acl : nullptr;
}

}  // namespace Security_Proc
