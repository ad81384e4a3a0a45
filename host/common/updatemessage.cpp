#include "host/common/updatemessage.h"

#include <array>
#include <cstdio>

#include "host/common/texts.h"
#include "update/iinternetfileproc.h"

namespace {

using namespace InternetFileResult;

unsigned Meaning(uint32_t code) noexcept {
    switch (code) {
        case kSuccess:
        case kSetVersionAlways:
            return IDS_ANSWER_DONE;
        case kInitNoHandle:
            return IDS_ANSWER_NO_NETWORK;
        case kUninitNotReady:
        case kCurVersionNotReady:
        case kWanVersionNotReady:
        case kFileNotReady:
        case kBufNotReady:
        case kStreamNotReady:
            return IDS_ANSWER_NOT_READY;
        case kFileFailed:
            return IDS_ANSWER_FILES_FAILED;
        case kBufFailed:
        case kStreamFailed:
            return IDS_ANSWER_FAILED;
        case kFileSizeUnknown:
        case kBufSizeUnknown:
        case kStreamSizeUnknown:
            return IDS_ANSWER_SIZE_UNKNOWN;
        case kSinkCancelled:
        case kSinkRefused:
            return IDS_ANSWER_STOPPED;
        case kStreamTooLarge:
            return IDS_ANSWER_TOO_LARGE;
        case kListNotReady:
            return IDS_ANSWER_NO_FULL_ADDRESS;
        case kListRenameFailed:
            return IDS_ANSWER_FILE_HELD;
        default:
            return IDS_ANSWER_UNKNOWN;
    }
}

}  // namespace

std::wstring UpdateMessage(uint32_t code) {
    std::array<wchar_t, 16> number;
    std::swprintf(number.data(), number.size(), L"0x%08X", code);
    return Text(IDS_ANSWER_WITH_CODE, {Text(Meaning(code)), number.data()});
}
