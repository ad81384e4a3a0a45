#pragma once

#include <cstdint>

#include "rules/ieuobject.h"

// The object of the optional companion library "Tallyhost.dll", built against this header with a compiler of the same
// binary interface. Foreign code: Start, BeginRun and Release may throw, and the engine drops that (a Start that throws
// counts as ready); AddRef may not.
class ICompanionObject : public virtual IEUObject {
public:
    // Starts the companion up; 0 when it is ready, else its reason, a code of its own.
    virtual uint64_t Start() = 0;
    // Told of the begin of every gather and clean.
    virtual void BeginRun() = 0;

    // No destructor is declared, so that the operations keep the first two places of the table.
};
