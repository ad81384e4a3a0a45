#pragma once

#include <cstdint>

// Implemented by the host: what a run tells it. Every operation answers true to go on or false to stop; the host may
// stop at any notification, and a C++ exception (of the same compiler's runtime) counts as a stop. Its destructor is
// not virtual, so that the first step notification is the first operation in the table, and protected: nobody deletes a
// host's object through this class.
//
// All calls come on the thread that called Gather or Clean, synchronously, while the engine's category lock is held.
// From here the host may, on this same thread, read totals and records, enumerate, toggle, start a nested run, or even
// call Uninit or Release: nothing dangles. But each node has one enumeration cursor, which the run uses too:
// enumerating a node that the run is walking, or toggling it or one of its children, ends the walk of that node early.
// A nested gather or clean ends the scan of the interrupted rule, and the rest of the outer run then counts on top of
// it: answer false afterwards. After Uninit, also with an Init behind it, the run finds and deletes nothing more, sends
// no further notification and answers true. Never wait here for another thread that calls the engine.
//
// A node's pointer travels as a 64-bit value and is borrowed for the call.
class IDregsweepCallback {
public:
    // The run enters a garbage category; `node` is its IGarbageCatagory pointer.
    virtual bool StepNotify1(uint64_t node) = 0;
    // The run enters an application; `node` is its IAppGarbageInfo pointer.
    virtual bool StepNotify2(uint64_t node) = 0;
    // The run enters an application category; `node` is its IAppCatagory pointer.
    virtual bool StepNotify3(uint64_t node) = 0;
    // The run reaches a node (a rule in a gather only), whose share of the scale from 0 to 100 is `begin` to `end`,
    // both truncated to whole numbers. The ranges of neighbours overlap: show the greatest `begin` so far.
    virtual bool Progress(uint32_t begin, uint32_t end) = 0;
    // An item was found. `path` is its full path, or the display text of a shell item (UTF-16, null-terminated, valid
    // during the call); `size` is in bytes; `category` is the IGarbageCatagory pointer of the rule's category.
    virtual bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) = 0;
    // Never called; it keeps its place in the table.
    virtual bool Reserved() = 0;
    // An item was processed by a clean: `removed` tells whether it is gone. Arguments as for FoundItem; an empty path
    // stands for everything that the rule had found at once, such as a recycle bin.
    virtual bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) = 0;

protected:
    ~IDregsweepCallback() = default;
};
