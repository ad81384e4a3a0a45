#pragma once

#include "rules/igarbageinfo.h"
#include "tree/inforecords.h"

class IAppGarbageInfo;

// A garbage category: the third level, whose children are the rules. "Catagory" is the interface's own form.
class IGarbageCatagory : public CGatherIteratorProc<IGarbageInfo>,
                         public CGatherCheckProc<IAppGarbageInfo, IGarbageCatagory, IGarbageInfo>,
                         public virtual IEUObject,
                         public virtual CGarbageVolume {
public:
    // The record, with its text pointers refreshed; see inforecords.h.
    virtual const _DSW_Garbage_Catagory_* GetInfo() = 0;
    // Writes the flag that IsAppPresent of the application above returns. The rules call it while they load; the
    // application's own computation afterwards overwrites it, so that only what a host sets later lasts.
    virtual void SetAppPresent(bool present) = 0;
    // Relays `arg` to the host's first step notification; its answer, or true when there is nobody to ask.
    virtual bool HostNotify1(uint64_t arg) = 0;

protected:
    explicit IGarbageCatagory(IAppGarbageInfo* parent) noexcept : CGatherCheckProc(parent) {}
};

// Instantiated inside the engine.
extern template class CGatherCheckProc<IAppGarbageInfo, IGarbageCatagory, IGarbageInfo>;
