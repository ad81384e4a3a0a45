#pragma once

#include "tree/iappgarbageinfo.h"

// An application category: the top level of the tree, whose children are applications. "Catagory" is the interface's
// own form.
class IAppCatagory : public CGatherIteratorProc<IAppGarbageInfo>,
                     public CGatherCheckProc<IAppCatagory, IAppCatagory, IAppGarbageInfo>,
                     public virtual IEUObject,
                     public virtual CGarbageVolume {
public:
    // The record, with its text pointers refreshed; see inforecords.h.
    virtual const _DSW_AppCatagory_Info_* GetInfo() = 0;
    // Relay `arg` to the host's first, second and third step notification; its answer, or true when there is nobody to
    // ask.
    virtual bool HostNotify1(uint64_t arg) = 0;
    virtual bool HostNotify2(uint64_t arg) = 0;
    virtual bool HostNotify3(uint64_t arg) = 0;
};

// Instantiated inside the engine.
extern template class CGatherCheckProc<IAppCatagory, IAppCatagory, IAppGarbageInfo>;
