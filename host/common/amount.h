#pragma once

#include <cstdint>

// A count of items and the bytes that they take.
struct Amount {
    uint64_t items = 0;
    uint64_t bytes = 0;

    Amount& operator+=(const Amount& other) noexcept {
        items += other.items;
        bytes += other.bytes;
        return *this;
    }
};
