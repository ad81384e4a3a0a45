#pragma once

#include <cstdint>

#include "rules/garbageexplanation.h"
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

    // Implemented by the host. Both answer true to go on; an exception counts as false.
    class IExplanationVisitor {
    public:
        virtual bool OnScope(const GarbageScope* scope) = 0;
        virtual bool OnAction(const GarbageAction* action) = 0;

    protected:
        ~IExplanationVisitor() = default;
    };

    // Tells what the rule looks at, then every action that a clean would take for it beside deleting its found items,
    // in the order in which it would take them. Whether the rule is selected, or would be reached, plays no part.
    //
    // The actions are found at the time of the call by the code that the clean runs, up to the deletion: values and
    // keys that are there, the bin as full as it is. Nothing is changed. Values of a key that does not admit the clean
    // are not told either; a key that is to be deleted is told whenever it is there, also while it has sub-keys, which
    // an earlier rule may take, or refuses to be opened. What changes between this call and a clean, the clean does
    // without a word.
    //
    // Any thread that holds a reference on the rule, also during a run; where shell items are counted it waits while a
    // clean works on this rule. No lock is held while the visitor is called: it may call the engine. False when the
    // visitor ended it, is null, or memory ran out.
    virtual bool Explain(IExplanationVisitor* visitor) = 0;

protected:
    explicit IGarbageInfo(IGarbageCatagory* parent) noexcept : CGatherCheckProc(parent) {}
};

// Instantiated inside the engine.
extern template class CGatherCheckProc<IGarbageCatagory, IGarbageInfo, IGarbageInfo>;
