#pragma once

#include <cstdint>

// A count of items, the bytes that they take, and the actions beside them (see Action).
struct Amount {
    uint64_t items = 0;
    uint64_t bytes = 0;
    uint64_t actions = 0;

    Amount& operator+=(const Amount& other) noexcept {
        items += other.items;
        bytes += other.bytes;
        actions += other.actions;
        return *this;
    }
};
