#include "sysservices/literalpath.h"

#include <windows.h>

#include <stdexcept>

namespace {

constexpr std::wstring_view kLiteral = L"\\\\?\\";
constexpr std::wstring_view kLiteralShare = L"\\\\?\\UNC\\";

// Where the root of a literal path ends: behind the drive, or behind server and share.
size_t RootLength(const CString& literal) noexcept {
    const bool isShare = literal.starts_with(kLiteralShare);
    size_t end = literal.find(L'\\', isShare ? kLiteralShare.size() : kLiteral.size());
    if (isShare && end != CString::npos) end = literal.find(L'\\', end + 1);
    return end == CString::npos ? literal.size() : end;
}

void CutLastName(CString& literal) {
    if (literal.size() > RootLength(literal)) literal.resize(literal.rfind(L'\\'));
}

// The names, each with a separator before it, that Windows reads in `written` behind a folder. Returns how many folders
// it climbs before them.
size_t ReadBelowFolder(std::wstring_view written, CString& names) {
    // Read behind as many stand-ins, which no path can name, as it could climb over: those that are gone tell how far.
    constexpr std::wstring_view kRoot = L"C:", kStandIn = L"\\|";
    CString path(kRoot);
    size_t standIns = 0;
    for (size_t at = 0; (at = written.find(L"..", at)) != written.npos; at += 2, ++standIns)
        path += kStandIn;
    const CString full = FullPath(path.append(1, L'\\').append(written));
    // The name of a device, for which Windows would leave the folder.
    if (!full.starts_with(kRoot)) {
        names.assign(1, L'\\').append(written);
        return 0;
    }
    size_t begin = kRoot.size();
    for (; standIns > 0 && full.compare(begin, kStandIn.size(), kStandIn) == 0; begin += kStandIn.size())
        --standIns;
    names = full.substr(begin);
    return standIns;
}

}  // namespace

CString FullPath(const CString& path) {
    CString full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    // Another thread of the host may have moved to a longer current folder in between.
    if (length == 0 || length >= full.size()) throw std::runtime_error("path cannot be made absolute");
    full.resize(length);
    return full;
}

CString LiteralPath(const CString& path) {
    // The other form is the kernel's own.
    if (path.starts_with(kLiteral) || path.starts_with(L"\\??\\")) return path;
    const CString full = FullPath(path);
    if (full.starts_with(kLiteral)) return full;  // written with "/"
    if (full.starts_with(L"\\\\.\\")) return CString(kLiteral) + full.substr(4);
    return full.starts_with(L"\\\\") ? CString(kLiteralShare) + full.substr(2) : CString(kLiteral) + full;
}

void AppendToLiteral(CString& literal, std::wstring_view written) {
    while (literal.ends_with(L'\\'))
        literal.pop_back();
    CString names;
    for (size_t climbs = ReadBelowFolder(written, names); climbs > 0; --climbs)
        CutLastName(literal);
    literal += names;
    // To a search "*." means names without an extension; its dot lost, it would mean every name.
    if (literal.ends_with(L'*') && written.ends_with(L'.')) literal += L'.';
}
