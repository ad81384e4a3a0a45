#include "sysservices/literalpath.h"

#include <algorithm>

namespace {

bool HasNameThatWindowsChanges(std::wstring_view path) noexcept {
    for (size_t start = 0; start < path.size();) {
        const size_t end = std::min(path.find(L'\\', start), path.size());
        const std::wstring_view name = path.substr(start, end - start);
        if (name != L"." && name != L".." && (name.ends_with(L'.') || name.ends_with(L' '))) return true;
        start = end + 1;
    }
    return false;
}

}  // namespace

CString LiteralPath(const CString& path) {
    if (!HasNameThatWindowsChanges(path) || path.starts_with(L"\\\\?\\")) return path;
    return path.starts_with(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}
