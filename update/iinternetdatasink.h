#pragma once

#include <cstdint>

#include "rules/ieuobject.h"

// Receives the bytes of IInternetFileProc::GetFileBufFromURL. The host implements it.
//
// The download takes one reference for its own duration and releases it exactly once. All four operations run on the
// thread that asked for the download, inside that call, in this order: OnBegin, then IsCancelled before every read and
// OnData after every read that brought bytes, then OnComplete. A sink that throws ends the download as if it had
// refused a chunk.
//
// A connection that breaks is tried again through the next access path, and OnBegin is called again: the resource then
// comes from its first byte, so drop what was received before.
class IInternetDataSink : public virtual IEUObject {
public:
    // The size in bytes as the server announced it. It is a hint: fewer or more bytes may follow.
    virtual void OnBegin(uint32_t totalSize) = 0;
    // Non-zero ends the download with InternetFileResult::kSinkCancelled.
    virtual uint32_t IsCancelled() = 0;
    // `length` bytes, 1 to 10240, which stay valid only during the call. Non-zero ends the download with
    // InternetFileResult::kSinkRefused.
    virtual uint32_t OnData(const uint8_t* buffer, uint32_t length) = 0;
    // The whole resource was handed over; called at most once, and last.
    virtual void OnComplete() = 0;
};
