#pragma once

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

// What the shell tells about one item: icon, icon index, attributes, display name, type name. The icon handle is
// destroyed with the object.
class CShellFileInfo {
public:
    // Everything zero, as after a Load that fails.
    CShellFileInfo() noexcept = default;
    // `item`, an absolute item-ID list, is borrowed for the call.
    explicit CShellFileInfo(LPCITEMIDLIST item) noexcept { Load(item); }
    ~CShellFileInfo();
    CShellFileInfo(const CShellFileInfo&) = delete;
    CShellFileInfo& operator=(const CShellFileInfo&) = delete;

    // Asks the shell; to be called once.
    void Load(LPCITEMIDLIST item) noexcept;
    const SHFILEINFOW& Get() const noexcept { return m_info; }

private:
    SHFILEINFOW m_info{};
};
