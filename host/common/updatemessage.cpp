#include "host/common/updatemessage.h"

#include <array>
#include <cstdio>

#include "update/iinternetfileproc.h"

namespace {

using namespace InternetFileResult;

constexpr const wchar_t* kNotReady = L"the update object is not ready: is Dregsweep.dll the one of this dsw.exe?";
constexpr const wchar_t* kFailed = L"the server did not deliver: check the address, and that the server is up";
constexpr const wchar_t* kSizeUnknown = L"the server does not tell the size: it must send a Content-Length";

const wchar_t* Meaning(uint32_t code) noexcept {
    switch (code) {
        case kSuccess:
        case kSetVersionAlways:
            return L"done";
        case kInitNoHandle:
            return L"no way of access to the network could be opened: check the proxy settings";
        case kUninitNotReady:
        case kCurVersionNotReady:
        case kWanVersionNotReady:
        case kFileNotReady:
        case kBufNotReady:
        case kStreamNotReady:
            return kNotReady;
        case kFileFailed:
            return L"the server did not deliver: check the address, that the server is up, and that a list holds plain "
                   L"file names";
        case kBufFailed:
        case kStreamFailed:
            return kFailed;
        case kFileSizeUnknown:
        case kBufSizeUnknown:
        case kStreamSizeUnknown:
            return kSizeUnknown;
        case kSinkCancelled:
        case kSinkRefused:
            return L"the download was stopped";
        case kStreamTooLarge:
            return L"the answer has more than 400 bytes: the address must be that of the version number alone";
        case kListNotReady:
            return L"the address has no \"/\": give the full one, such as http://server/rules/list.txt";
        case kListRenameFailed:
            return L"another program holds an old file: the files before it in the list are new, those behind it old, "
                   L"and their new copies end in _bak";
        default:
            return L"an answer that this dsw.exe does not know";
    }
}

}  // namespace

std::wstring UpdateMessage(uint32_t code) {
    std::array<wchar_t, 16> number;
    std::swprintf(number.data(), number.size(), L"0x%08X", code);
    return std::wstring(Meaning(code)) + L" (code " + number.data() + L")";
}
