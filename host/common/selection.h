#pragma once

#include <string>
#include <vector>

#include "dregsweep/idregsweep.h"

// One step on the way to what shall be selected.
struct SelectionStep {
    enum class Kind { All, None, Only, Select, Deselect };

    Kind kind;
    std::wstring pattern;  // what to select or deselect, for the last three
};

class CNodePaths;

// Applies the steps one after the other, by the engine's own operations. A pattern (* any text, ? any character, no
// regard to case) means each node whose whole path it matches, in the one language or the other, with all that is
// below. The first "only" deselects everything else; a further one adds to it. Throws CUsageError for a pattern without
// a match.
void ApplySelection(IDregsweep& engine, const std::vector<SelectionStep>& steps, const CNodePaths& original,
                    const CNodePaths& localised);

// Deselect every rule that removes registry values or a key, and every application that is not present.
void DeselectRegistryRules(IDregsweep& engine);
void DeselectAbsent(IDregsweep& engine);

// A run finds nothing when nothing is selected.
bool IsAnythingSelected(IDregsweep& engine);
