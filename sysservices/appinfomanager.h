#pragma once

#include <map>
#include <memory>
#include <string_view>

#include "sysservices/installedapp.h"
#include "sysservices/lock.h"
#include "sysservices/text.h"

// Knows which programs are installed, by the uninstall entries of the registry, and which folder is the host program's
// own. One instance serves the whole process.
//
// No operation throws. Any thread.
class CAppInfoManager {
public:
    // The instance, created on the first call and empty until Load. Null when memory runs out: then no program counts
    // as installed, and every path must be taken for one in the host's folder.
    static std::shared_ptr<CAppInfoManager> GetInstance() noexcept;
    // Lets go of the instance; it ends with its list when the last user on another thread is done with it. The next
    // GetInstance creates another, which is to be loaded again.
    static void ReleaseInstance() noexcept;

    virtual ~CAppInfoManager();
    CAppInfoManager(const CAppInfoManager&) = delete;
    CAppInfoManager& operator=(const CAppInfoManager&) = delete;

    // Reads the list; does nothing when it was read before. A program installed later is seen only after Clear and
    // Load. Entries that cannot be read are passed over. When memory runs out the list stays empty and not loaded.
    void Load() noexcept;
    // Looks a program up by its display name, without regard to case, in the list as loaded. `out` receives a copy; it
    // is empty when the answer is false.
    bool Find(std::wstring_view displayName, InstalledApp& out) noexcept;
    // Whether the host program's folder occurs, without regard to case, anywhere in `path`. False when that folder is
    // not known; true, to be safe, when memory runs out (only a path of more than 512 characters takes any).
    [[nodiscard]] bool IsInHostFolder(std::wstring_view path) const noexcept;
    // Empties the list, which is then not loaded.
    void Clear() noexcept;

private:
    CAppInfoManager();

    CLock m_lock;  // guards the list and its flag
    std::map<CString, InstalledApp> m_apps;
    bool m_loaded = false;
    const CString m_hostFolder;
};
