#pragma once

#include <tinyxml.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/check/finding.h"
#include "host/check/knownfolder.h"

// One rule ("GarbageInfo") as the engine reads it, but for what depends on the machine.
struct CheckedRule {
    explicit CheckedRule(const TiXmlElement& ruleElement);

    bool HasBase() const noexcept { return folderIndex != -1 || !variable.empty(); }
    bool IsVirtual() const noexcept { return base && !base->path; }
    // The engine reads the children of such a rule only.
    bool ReadsChildren() const noexcept { return HasBase() && !isRegistry && !useShellBrowse && !IsVirtual(); }
    bool MatchesAllNames() const noexcept { return MatchesAll(filter); }
    // Made of wildcards only.
    static bool MatchesAll(std::wstring_view pattern) noexcept;

    // Where an attribute stands, or the element if it has none.
    const TiXmlBase& PlaceOf(const char* attribute) const;
    bool Has(const char* attribute) const { return element.Attribute(attribute) != nullptr; }

    const TiXmlElement& element;
    bool isRegistry;
    bool getByReg;
    bool isFolder;
    bool iteration;
    bool loopPath;
    bool excludePath;
    bool selfExclude;
    int32_t folderIndex;
    std::wstring variable;
    std::wstring path;
    std::wstring filter;
    bool useShellBrowse;                // never without a base folder
    const KnownFolder* base = nullptr;  // null when there is none, or none that every Windows has
    bool hasLocation = false;
    std::wstring location;  // in normal form; with GetByReg what it is when the registry has nothing

    std::vector<const TiXmlElement*> steps;
    std::vector<const TiXmlElement*> terminals;
    std::vector<const TiXmlElement*> exclusions;

private:
    void ReadChildren();
    void Locate();
};

// The text of an attribute, empty when it is missing.
std::wstring AttributeText(const TiXmlElement& element, const char* name);
