#pragma once

#include <cstdint>

// A cleaning procedure for what cannot be described as files or registry values. A rule names it in its "EmptyProc"
// attribute and runs it first in its clean; see emptyprocregistry.h for how a name becomes an object.
class CGarbageEmptyProc {
public:
    CGarbageEmptyProc(const CGarbageEmptyProc&) = delete;
    CGarbageEmptyProc& operator=(const CGarbageEmptyProc&) = delete;
    virtual ~CGarbageEmptyProc() = default;

    // Performs the cleaning on the calling thread; true when it did its work. The arguments are those of the clean that
    // runs it, opaque to the procedure.
    virtual bool Run(uint64_t a, uint64_t b, uint64_t c) noexcept = 0;

protected:
    CGarbageEmptyProc() noexcept = default;
};
