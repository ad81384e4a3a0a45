#include "sysservices/shellfileinfo.h"

namespace {

// Names the item by its list; asks for icon handle, display name, type name, attributes and system icon index.
constexpr UINT kWhatToTell = 0x4F08;

}  // namespace

CShellFileInfo::~CShellFileInfo() {
    if (m_info.hIcon) DestroyIcon(m_info.hIcon);
}

void CShellFileInfo::Load(LPCITEMIDLIST item) noexcept {
    // The shell does not promise to refuse a null list.
    if (item) SHGetFileInfoW(reinterpret_cast<const wchar_t*>(item), 0, &m_info, sizeof m_info, kWhatToTell);
}
