#pragma once

#include <cstdint>

// What IGarbageInfo::Explain tells of a rule. Texts are UTF-16, null-terminated, never null, and valid during the call
// that hands them over.

// What the rule looks at: its location first, then kind by kind what narrows it down. Names of values, ends, kept files
// and kept folders come in lower case, as the engine compares them.
enum GarbageScopeKind : uint32_t {
    ScopeFolder = 1,       // the files in the folder Text whose names match Pattern
    ScopeFile = 2,         // the one file Text
    ScopeShellItems = 3,   // the items that the shell lists in Text, deleted as by their context menu
    ScopeShellFolder = 4,  // a folder of the shell without a path, by its display name, as a whole
    ScopeKey = 5,          // the key Text ("HKCU\\Software\\Tool"); with ScopeBelow each of its sub-keys instead, or
                           // the key with the path Pattern below each
    ScopeValue = 6,        // of the keys only the values of the name Text; without any of these all values
    ScopeStep = 7,         // instead of the folder, the folders below it whose names match Text, at each of them the
                           // path Pattern; a further step goes on from those
    ScopeEnd = 8,          // below those, the folders with Text in their names, at any depth
    ScopeKeptFiles = 9,    // but for files with Text in their names; of several such texts one may hide another, which
                           // then keeps nothing: docs/rules.md tells when
    ScopeKeptFolder = 10,  // but for folders with Text in their names, and with ScopeBelow what is below them
};

enum GarbageScopeFlags : uint32_t {
    ScopeBelow = 1,       // what is below, too
    ScopeNotItself = 2,   // ScopeFolder: not the folder's own files
    ScopeExact = 4,       // ScopeEnd: Text is the whole name. ScopeKeptFolder: Text is the end of the path
    ScopeDeletesKey = 8,  // ScopeKey: the key goes, not its values
};

struct GarbageScope {
    uint32_t Kind;   // a GarbageScopeKind
    uint32_t Flags;  // GarbageScopeFlags
    const wchar_t* Text;
    const wchar_t* Pattern;  // empty where Kind does not tell of it
};

// One thing that a clean would do for the rule beside deleting its found items.
enum GarbageActionKind : uint32_t {
    ActionProcedure = 1,    // runs the procedure Name
    ActionDeleteKey = 2,    // deletes the key Target, if it has no sub-keys by then
    ActionDeleteValue = 3,  // deletes the value Name (empty: the key's unnamed value) of the key Target
    ActionShellItems = 4,   // deletes Items found items of the folder Target that have no text: EnumFound and the
                            // notifications pass over them
    ActionEmptyBin = 5,     // empties the recycle bins of all drives: Items and Bytes as the shell tells them
    ActionLeaveFolder = 6,  // leaves the shell folder Target alone, reports its Items found items as not deleted
};

constexpr uint64_t kGarbageUnknown = UINT64_MAX;  // Items and Bytes of a bin of which the shell does not tell

// What Kind does not name is empty or 0.
struct GarbageAction {
    uint32_t Kind;          // a GarbageActionKind
    const wchar_t* Target;  // a key path begins with HKLM, HKCU, HKCR or HKU
    const wchar_t* Name;
    uint64_t Items;
    uint64_t Bytes;
};
