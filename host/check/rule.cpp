#include "host/check/rule.h"

#include <cstring>

CheckedRule::CheckedRule(const TiXmlElement& ruleElement)
    : RuleElement(ruleElement),
      element(ruleElement),
      children(ruleElement) {
    // The shell is asked to browse base folders only.
    useShellBrowse = useShellBrowse && HasBase();
    if (folderIndex != -1)
        base = FindKnownFolder(folderIndex);
    else if (!folderVariable.empty())
        base = FindKnownFolder(folderVariable);
    Locate();
}

void CheckedRule::Locate() {
    if (isRegistry || IsVirtual()) return;
    const std::wstring below = getByReg ? std::wstring() : path;
    // A pattern follows that of a folder: at its end Windows reads a path differently.
    const wchar_t* const end = isFolder ? L"\\" : L"";
    if (HasBase()) {
        hasLocation = base != nullptr;
        // Behind a drive two "\" are as one; without it they begin a share.
        if (base) location = NormalPath(L"C:" + JoinPath(base->path, below) + end);
    } else {
        hasLocation = IsAbsolutePath(below);
        location = NormalPath(below + end);
    }
}

bool CheckedRule::MatchesAll(std::wstring_view pattern) noexcept {
    return pattern.find(L'*') != std::wstring_view::npos
           && pattern.find_first_not_of(L"*?.") == std::wstring_view::npos;
}

const TiXmlBase& CheckedRule::PlaceOf(const char* attribute) const {
    for (const TiXmlAttribute* at = element.FirstAttribute(); at; at = at->Next()) {
        if (std::strcmp(at->Name(), attribute) == 0) return *at;
    }
    return element;
}

std::wstring CheckedRule::TextOf(const char* attribute) const {
    return Utf8ToWide(element.Attribute(attribute));
}
