#pragma once

#include <utility>

// Runs `work` and returns its result, or `failure` when it throws anything: where our code meets code that must not see
// an exception, or whose exceptions must not reach ours.
template <class Result, class Work>
Result NoThrow(Result failure, Work work) noexcept {
    try {
        return work();
    } catch (...) {
        return failure;
    }
}
