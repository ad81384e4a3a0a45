#pragma once

#include <windows.h>

#include <memory>

#include "sysservices/text.h"

namespace Security_Proc {

// Reads and writes the security descriptor of one file or folder. Construction throws only when memory runs out
// (std::bad_alloc); nothing else does. One thread at a time: see PrivilegeContext.
class CFileDaclProc {
public:
    // The descriptor passes through the third buffer of the backup or of the restore context. `readNow` reads the DACL
    // information; a failed read, as with a context that is not ready, shows in GetDacl().
    CFileDaclProc(const CString& path, bool backupContext, bool readNow);
    virtual ~CFileDaclProc() = default;
    CFileDaclProc(const CFileDaclProc&) = delete;
    CFileDaclProc& operator=(const CFileDaclProc&) = delete;

    // Replaces the DACL of the file, present and defaulted as the last GetDacl() found it. A null `acl` for a present
    // DACL opens the file to everyone.
    [[nodiscard]] virtual bool SetDacl(PACL acl) noexcept;
    // Makes `sid` the owner of the file. With `groupToo` the group is written instead, although none is given.
    [[nodiscard]] virtual bool SetOwner(PSID sid, bool groupToo) noexcept;

    // The DACL as read, or null when nothing was read or the file has none. It points into this object and goes with
    // it.
    PACL GetDacl() noexcept;

private:
    void Read(bool backupContext);

    std::unique_ptr<BYTE[]> m_descriptor;
    CString m_path;
    BOOL m_daclPresent = FALSE;
    BOOL m_daclDefaulted = FALSE;
};

}  // namespace Security_Proc
