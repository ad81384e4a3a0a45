#pragma once

#include <cstddef>
#include <string>

#include "dregsweep/idregsweep.h"

// Rule files and text files to be loaded, and TinyXML alone, the floor of that.

// `count` rules of eight kinds, half a kilobyte each, a hundred in a category; what stands inside the root element.
std::string MixedRules(size_t count);

// Nodes that are to be localised: in each category 9 applications of 10 garbage categories, 100 nodes in all.
struct NamedNodes {
    explicit NamedNodes(size_t categories);
    std::string rules;  // what stands inside the root element
    std::string texts;  // a text file with an entry for every node
    size_t count = 0;

private:
    void Open(const std::string& element);
};

// Reads and parses a file, and forgets it. Throws when that fails.
void ParseXml(const std::wstring& path);

// Whether Init has read such rules is seen by their categories: it answers 0 for a file that it cannot read, too.
size_t CountCategories(IDregsweep& engine);
// Throws when the nodes do not have their texts.
void RequireLocalised(IDregsweep& engine);
