#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "dregsweep/idregsweep.h"
#include "host/console.h"

// One selecting option of the command line.
struct SelectionStep {
    enum class Kind { All, None, Only, Select, Deselect };

    Kind kind;
    std::string pattern;  // UTF-8; what to select or deselect, for the last three
};

// Adds --all, --none, --only, --select and --deselect, which append to `steps` in the order of the command line;
// `steps` must outlive the parsing.
void AddSelectionOptions(CLI::App& command, std::vector<SelectionStep>& steps);

class CNodePaths;

// Applies the steps one after the other, by the engine's own operations. A pattern (* any text, ? any character, no
// regard to case) means each node whose whole path it matches, in the one language or the other, with all that is
// below. The first "only" deselects everything else; a further one adds to it. Throws CHostError, as wrong usage, for a
// pattern without a match.
void ApplySelection(IDregsweep& engine, const std::vector<SelectionStep>& steps, const CNodePaths& original,
                    const CNodePaths& localised);

// Says so on the error output when the run is going to find nothing because nothing is selected.
void WarnWhenNothingIsSelected(IDregsweep& engine, CConsole& console);
