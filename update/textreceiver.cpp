#include "update/textreceiver.h"

#include "update/iinternetfileproc.h"

namespace {

constexpr size_t kTextLimit = kStreamTextCapacity - 1;

uint32_t CheckSize(size_t size) noexcept {
    return size > kTextLimit ? InternetFileResult::kStreamTooLarge : 0;
}

}  // namespace

uint32_t CTextReceiver::OnSize(uint32_t size) {
    return CheckSize(size);
}

// Each row starts from the first byte.
bool CTextReceiver::Open(int /*row*/, const wchar_t* /*url*/) {
    m_bytes.clear();
    return true;
}

// The announced size is the server's word; what counts is what comes.
uint32_t CTextReceiver::Write(std::span<const uint8_t> bytes) {
    m_bytes.append(bytes.begin(), bytes.end());
    return CheckSize(m_bytes.size());
}

uint32_t CTextReceiver::Complete() {
    m_text = Utf8ToWide(m_bytes.c_str());  // a zero byte ends the text
    return 0;
}
