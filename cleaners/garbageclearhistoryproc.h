#pragma once

#include "cleaners/garbageemptyproc.h"

namespace GarbageXProc {

// "NT_ClearHistory": clears the browsing history of Internet Explorer through the system's URL-history service and
// deletes the ordinary entries of the WinINet URL cache; cookies and history entries of the cache stay.
class CGarbageClearHistoryProc : public CGarbageEmptyProc {
public:
    // True when the URL-history service could be created at least once; what became of the cache does not count. Leaves
    // COM initialised on the calling thread. The arguments are not used.
    bool Run(uint64_t a, uint64_t b, uint64_t c) noexcept override;
};

// The registered factory; null when memory is short.
CGarbageEmptyProc* CreateClearHistoryProc() noexcept;

}  // namespace GarbageXProc
