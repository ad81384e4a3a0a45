#pragma once

#include <tinyxml.h>

#include <string>
#include <string_view>

#include "host/check/knownfolder.h"
#include "rules/ruleelement.h"

// One rule ("GarbageInfo") as the engine reads it, and where it looks on a usual machine.
struct CheckedRule : RuleElement {
    explicit CheckedRule(const TiXmlElement& ruleElement);

    bool HasBase() const noexcept { return folderIndex != -1 || !folderVariable.empty(); }
    bool IsVirtual() const noexcept { return base && !base->path; }
    // The engine reads the children of such a rule only.
    bool ReadsChildren() const noexcept { return HasBase() && !useShellBrowse && !IsVirtual(); }
    bool MatchesAllNames() const noexcept { return MatchesAll(filter); }
    // Made of wildcards only.
    static bool MatchesAll(std::wstring_view pattern) noexcept;

    // Where an attribute stands, or the element if it has none.
    const TiXmlBase& PlaceOf(const char* attribute) const;
    bool Has(const char* attribute) const { return element.Attribute(attribute) != nullptr; }
    // The text of an attribute, empty when it is missing.
    std::wstring TextOf(const char* attribute) const;
    // Does its author want something by it? A flag that is not set says nothing.
    bool Sets(const char* attribute) const { return Has(attribute) && TextOf(attribute) != L"0"; }

    const TiXmlElement& element;
    RuleChildren children;
    const KnownFolder* base = nullptr;  // null when there is none, or none that every Windows has
    bool hasLocation = false;
    std::wstring location;  // in normal form; with GetByReg what it is when the registry has nothing

private:
    void Locate();
};
