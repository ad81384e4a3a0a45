#include "cleaners/garbageclearhistoryproc.h"

#include <windows.h>

#include <urlhist.h>

#include <new>

#include "cleaners/urlcachewalk.h"
#include "sysservices/reference.h"

namespace GarbageXProc {
namespace {

constexpr int kPasses = 5;
constexpr CLSID kUrlHistoryClass = {0x3C374A40, 0xBAE4, 0x11CF, {0xBF, 0x7D, 0x00, 0xAA, 0x00, 0x69, 0x46, 0xEE}};
constexpr IID kUrlHistoryInterface = {0xAFA0DC11, 0xC313, 0x11D0, {0x83, 0x1A, 0x00, 0xC0, 0x4F, 0xD5, 0xAE, 0x38}};

bool ClearUrlHistory() noexcept {
    CReference<IUrlHistoryStg2> history;
    CoCreateInstance(kUrlHistoryClass, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER, kUrlHistoryInterface,
                     history.PutVoid());
    if (!history) return false;
    // To have reached the service counts, even when it refuses.
    history->ClearHistory();
    return true;
}

void PurgeUrlCache() noexcept {
    for (CUrlCacheWalk walk; walk; walk.Next()) {
        const INTERNET_CACHE_ENTRY_INFOW& entry = walk.Entry();
        // An entry in use stays; the walk goes on.
        if (entry.CacheEntryType & NORMAL_CACHE_ENTRY) DeleteUrlCacheEntryW(entry.lpszSourceUrlName);
    }
}

}  // namespace

bool CGarbageClearHistoryProc::Run(uint64_t /*a*/, uint64_t /*b*/, uint64_t /*c*/) noexcept {
    bool reached = false;
    // Neither looked at nor balanced: the thread may be in an apartment of either kind already, and stays in it.
    CoInitialize(nullptr);
    for (int pass = 0; pass < kPasses; ++pass) {
        if (ClearUrlHistory()) reached = true;
        PurgeUrlCache();
    }
    return reached;
}

CGarbageEmptyProc* CreateClearHistoryProc() noexcept {
    return new (std::nothrow) CGarbageClearHistoryProc;
}

}  // namespace GarbageXProc
