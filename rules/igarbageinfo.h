#pragma once

#include <cstdint>

#include "rules/garbagevolume.h"
#include "rules/ieuobject.h"
#include "tree/gathercheckproc.h"
#include "tree/gatheriteratorproc.h"

class IGarbageCatagory;

// One cleaning rule, the leaf of the tree. It has no name of its own; its totals are those of CGarbageVolume, its
// selection that of CGatherCheckProc.
class IGarbageInfo : public CGatherIteratorProc<IGarbageInfo>,
                     public CGatherCheckProc<IGarbageCatagory, IGarbageInfo, IGarbageInfo>,
                     public virtual IEUObject,
                     public virtual CGarbageVolume {
public:
    // Implemented by the host. It has no virtual destructor, so that its operation is the first in the table.
    class IVisitor {
    public:
        // One found item: its full path (UTF-16, valid during the call), its size in bytes, and the rule that found it
        // (borrowed). An exception ends the enumeration.
        virtual void OnItem(const wchar_t* path, uint64_t size, IGarbageInfo* rule) = 0;

    protected:
        ~IVisitor() = default;
    };

    // Hands the items that the last gather found, and no clean has processed since, to the visitor, in the order of
    // discovery. Items without a text are left out; a clean deletes them all the same. The rule's lock is held
    // meanwhile: from another thread it waits until a running clean is done with this rule, and a visitor must not wait
    // for, or call, anything of the engine that another thread's run may hold up. A visitor that has the rule scanned
    // or cleaned on its own thread ends the enumeration. A null visitor is ignored.
    virtual void EnumFound(IVisitor* visitor) = 0;
    // Always false for a rule.
    virtual bool HasChildren() { return false; }

protected:
    explicit IGarbageInfo(IGarbageCatagory* parent) noexcept : CGatherCheckProc(parent) {}
};

// Instantiated inside the engine.
extern template class CGatherCheckProc<IGarbageCatagory, IGarbageInfo, IGarbageInfo>;
