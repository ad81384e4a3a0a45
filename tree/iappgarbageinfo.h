#pragma once

#include <windows.h>

#include "tree/igarbagecatagory.h"

class IAppCatagory;

// An application: the second level, whose children are its garbage categories.
class IAppGarbageInfo : public CGatherIteratorProc<IGarbageCatagory>,
                        public CGatherCheckProc<IAppCatagory, IAppGarbageInfo, IGarbageCatagory>,
                        public virtual IEUObject,
                        public virtual CGarbageVolume {
public:
    // The record, with its text pointers refreshed; see inforecords.h.
    virtual const _DSW_App_Info_* GetInfo() = 0;
    // The icon of the installed application, or null. It belongs to the application and goes with it.
    virtual HICON GetAppIcon() = 0;
    // Is the application present on this machine?
    virtual bool IsAppPresent() = 0;
    // Takes this application out of the totals: subtracts its size from every level above (not the counts; a size that
    // is smaller there wraps below zero), zeroes its own totals and, when it is selected, those of all that is selected
    // below it. What is selected is part of the next clean all the same, registry rules too, and what was found stays
    // listed: deselect the application to keep it. Always true.
    virtual bool Discard() = 0;
    // Relay `arg` to the host's first and second step notification; its answer, or true when there is nobody to ask.
    virtual bool HostNotify1(uint64_t arg) = 0;
    virtual bool HostNotify2(uint64_t arg) = 0;
    // "LockFile" of the rule file as it stands there, variables not expanded; empty for none. The engine only keeps it:
    // a file that the application holds open while it runs, for the host to look at. Valid as long as the application.
    virtual const wchar_t* GetLockFile() = 0;

protected:
    explicit IAppGarbageInfo(IAppCatagory* parent) noexcept : CGatherCheckProc(parent) {}
};

// Instantiated inside the engine.
extern template class CGatherCheckProc<IAppCatagory, IAppGarbageInfo, IGarbageCatagory>;
