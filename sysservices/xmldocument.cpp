#include "sysservices/xmldocument.h"

#include <windows.h>

#include <io.h>
#include <share.h>
#include <tinyxml.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "sysservices/text.h"
#include "sysservices/xmldepth.h"

namespace {

struct StreamCloser {
    void operator()(std::FILE* stream) const noexcept { static_cast<void>(std::fclose(stream)); }
};
using CStream = std::unique_ptr<std::FILE, StreamCloser>;

CString FullPath(const wchar_t* path) {
    CString full(GetFullPathNameW(path, 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

// The form in which the file functions take paths of more than 260 characters.
CString LongPath(const wchar_t* path) {
    CString full = FullPath(path);
    if (full.size() < MAX_PATH || full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\")) return path;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

// Decided before TinyXML sees the file, which would exhaust the stack.
bool IsShallow(std::FILE* stream) {
    const int64_t length = _filelengthi64(_fileno(stream));
    // TinyXML keeps the length in a long.
    if (length <= 0 || length >= LONG_MAX) return false;
    const auto size = static_cast<size_t>(length);
    const auto bytes = std::make_unique_for_overwrite<char[]>(size);
    if (std::fread(bytes.get(), 1, size, stream) != size) return false;
    return MeasureXmlDepth({bytes.get(), size}) <= kXmlDeepestNesting;
}

}  // namespace

bool LoadXmlDocument(const wchar_t* path, TiXmlDocument& document) noexcept {
    if (!path) return false;
    try {
        // Writers are kept out: TinyXML must read what was measured.
        const CStream stream(_wfsopen(LongPath(path).c_str(), L"rb", _SH_DENYWR));
        return stream && IsShallow(stream.get()) && document.LoadFile(stream.get());
    } catch (...) {
        return false;
    }
}
