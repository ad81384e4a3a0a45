#include "sysservices/xmldocument.h"

#include <windows.h>

#include <tinyxml.h>

#include <climits>
#include <string>
#include <utility>

#include "sysservices/handle.h"
#include "sysservices/literalpath.h"
#include "sysservices/xmldepth.h"

namespace {

// The form in which the file functions take paths of more than 260 characters.
CString LongPath(const CString& path) {
    const CString full = FullPath(path);
    return full.size() < MAX_PATH || full.starts_with(L"\\\\.\\") ? path : LiteralPath(path);
}

// The whole content; empty when it cannot be read or is too long. Others may write to the file meanwhile: what was read
// is what is measured and parsed.
std::string ReadBytes(const CString& path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const CHandle file(CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    // TinyXML keeps lengths in a long.
    if (!file || !GetFileSizeEx(file.get(), &size) || size.QuadPart <= 0 || size.QuadPart >= LONG_MAX) return {};
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) return {};
    bytes.resize(read);
    return bytes;
}

// Turns CR LF, and a CR by itself, into LF, as TinyXML does with a file that it reads itself.
void JoinLineEnds(std::string& text) {
    char before = '\0';
    size_t kept = 0;
    for (const char c : text) {
        if (before != '\r' || c != '\n') text[kept++] = c == '\r' ? '\n' : c;
        before = c;
    }
    text.resize(kept);
}

bool Parse(std::string xml, TiXmlDocument& document) {
    document.Clear();
    JoinLineEnds(xml);
    if (MeasureXmlDepth(xml) > kXmlDeepestNesting) return false;
    document.Parse(xml.c_str());
    return !document.Error();
}

}  // namespace

bool LoadXmlDocument(const wchar_t* path, TiXmlDocument& document) noexcept {
    if (!path) return false;
    try {
        std::string xml = ReadBytes(LongPath(path));
        return !xml.empty() && Parse(std::move(xml), document);
    } catch (...) {
        return false;
    }
}
