#include "update/rulefilelist.h"

#include <algorithm>
#include <string>

#include "sysservices/handle.h"

namespace {

constexpr LONGLONG kListSizeLimit = 20480;

// The whole file, or nothing: whatever goes wrong gives an empty list, which the callers count as success, on purpose.
std::string ReadListBytes(const CString& path) {
    const CHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return {};
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size) || size.QuadPart < 1 || size.QuadPart >= kListSizeLimit) return {};
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    const bool whole = ReadFile(file.get(), bytes.data(), size.LowPart, &read, nullptr) && read == size.LowPart;
    return whole ? bytes : std::string();
}

// Components like ".. " and "..." are refused with it, as a precaution.
bool IsParentComponent(std::wstring_view component) {
    return component.starts_with(L"..") && component.find_first_not_of(L". ") == std::wstring_view::npos;
}

}  // namespace

std::vector<CString> ReadRuleFileList(const CString& path) {
    // A zero byte ends the text.
    const CString text = Utf8ToWide(ReadListBytes(path).c_str());
    // U+FFFE counts as a byte-order mark too, on purpose.
    const bool marked = !text.empty() && (text[0] == 0xFEFF || text[0] == 0xFFFE);
    // The pieces keep their blanks, on purpose: they are part of the name.
    return Split(std::wstring_view(text).substr(marked ? 1 : 0), L"\r\n");
}

bool IsSafeRuleFileName(std::wstring_view name) {
    if (name.empty() || name[0] == L'\\' || name[0] == L'/') return false;
    if (name.find(L':') != std::wstring_view::npos) return false;
    return std::ranges::none_of(Split(name, L"\\/"), IsParentComponent);
}
