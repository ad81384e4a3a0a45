#include <new>

#include "dregsweep/dregsweep.h"
#include "sysservices/nothrow.h"

// The module boundary. Every export is named in Dregsweep.def; none of them throws.

// A new engine in normal mode, not yet initialised; null when memory runs out. GetPrivacyProcImp is this same function.
extern "C" IDregsweep* GetImp() noexcept {
    return NoThrow<IDregsweep*>(nullptr, [] { return new (std::nothrow) CDregsweep(/*upgradeMode=*/false); });
}
