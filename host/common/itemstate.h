#pragma once

#include <string>

// What is known of one item of a job.
enum class ItemState {
    Found,     // by a gather
    Deleted,   // reported as such by a clean
    InUse,     // not deleted: another program holds it open
    Refused,   // not deleted: read-only, or its access rights do not allow it
    Gone,      // not deleted: it was not there any more
    NotTried,  // a clean passed over it, or was stopped before
};

// "in use", in the language of the texts.
std::wstring StateText(ItemState state);

// Why an item was not deleted, by the look of it right after the attempt.
ItemState WhyNotDeleted(const std::wstring& path) noexcept;
