#pragma once

#include "sysservices/reference.h"
#include "update/idownloadreceiver.h"
#include "update/iinternetdatasink.h"

// Hands a download to the caller's sink, on which it holds a reference. What the sink throws ends here.
class CSinkReceiver : public IDownloadReceiver {
public:
    explicit CSinkReceiver(IInternetDataSink* sink) noexcept : m_sink(CReference<IInternetDataSink>::Share(sink)) {}

    uint32_t OnSize(uint32_t size) override;
    uint32_t BeforeRead() override;
    uint32_t Write(std::span<const uint8_t> bytes) override;
    uint32_t Complete() override;

private:
    CReference<IInternetDataSink> m_sink;
};
