#include "sysservices/shellfileinfo.h"

namespace {

// Item-ID list, display name, type name, attributes and system icon index. The value is meant although it holds the
// bit for an icon handle (0x100) and not the one for the icon's location (0x1000).
constexpr UINT kWhatToTell = 0x4F08;

}  // namespace

CShellFileInfo::~CShellFileInfo() {
    if (m_info.hIcon) DestroyIcon(m_info.hIcon);
}

void CShellFileInfo::Load(LPCITEMIDLIST item) noexcept {
    // The shell does not promise to refuse a null list.
    if (item) SHGetFileInfoW(reinterpret_cast<const wchar_t*>(item), 0, &m_info, sizeof m_info, kWhatToTell);
}
