#include "update/sinkreceiver.h"

#include "update/iinternetfileproc.h"

namespace {

using namespace InternetFileResult;

// A sink that throws counts as one that refuses.
template <class Call>
uint32_t AskSink(Call call) noexcept {
    try {
        return call();
    } catch (...) {
        return kSinkRefused;
    }
}

}  // namespace

// Every row that gets this far begins again: the sink drops what an earlier row delivered.
uint32_t CSinkReceiver::OnSize(uint32_t size) {
    return AskSink([&] {
        m_sink->OnBegin(size);
        return kSuccess;
    });
}

uint32_t CSinkReceiver::BeforeRead() {
    return AskSink([&] { return m_sink->IsCancelled() ? kSinkCancelled : kSuccess; });
}

uint32_t CSinkReceiver::Write(std::span<const uint8_t> bytes) {
    const auto length = static_cast<uint32_t>(bytes.size());
    return AskSink([&] { return m_sink->OnData(bytes.data(), length) ? kSinkRefused : kSuccess; });
}

uint32_t CSinkReceiver::Complete() {
    return AskSink([&] {
        m_sink->OnComplete();
        return kSuccess;
    });
}
