#pragma once

#include <list>
#include <vector>

#include "sysservices/foundpath.h"

// One step of a rule that repeats over folders: a name pattern for the folders below, and an optional relative path
// appended after each match.
struct LoopStep {
    CString path;
    CString addPath;
};

// Where the loop of a rule ends: folders of these names (lower-cased), at any depth below the last step's folders.
struct TerminalSearch {
    const std::list<CString>& names;
    bool exactMatch;  // the whole name, not a part of it
};

// The folders that a rule with loop steps scans, in the order in which the searches find them. Follows no links; passes
// over every name that begins with ".".
//
// A later step that matches nothing ends the loop: without terminal names nothing is scanned then, with them the search
// for those runs from the folders of the step before.
std::vector<CFoundPath> ExpandLoop(const CString& start, const std::list<LoopStep>& steps,
                                   const TerminalSearch& terminals);
