#include "host/check/rule.h"

#include <cstring>

#include "sysservices/xmlattribute.h"

namespace {

bool ReadFlag(const TiXmlElement& element, const char* name) {
    return ReadInteger(element, name, 0) == 1;
}

}  // namespace

CheckedRule::CheckedRule(const TiXmlElement& ruleElement)
    : element(ruleElement),
      isRegistry(ReadFlag(element, "Registry")),
      getByReg(ReadFlag(element, "GetByReg")),
      isFolder(ReadInteger(element, "IsFolder", ReadInteger(element, "GetByReg", 0)) != 0),
      iteration(ReadFlag(element, "Iteration")),
      loopPath(ReadFlag(element, "LoopPath")),
      excludePath(ReadFlag(element, "ExcludePath")),
      selfExclude(ReadFlag(element, "SelfExclude")),
      folderIndex(ReadInteger(element, "FolderIndex", -1)),
      variable(AttributeText(element, "FolderEnvDir")),
      path(AttributeText(element, "Path")),
      filter(Has("Filter") ? AttributeText(element, "Filter") : L"*"),
      useShellBrowse(HasBase() && ReadInteger(element, "UseShellBrowse", 0) != 0) {
    if (folderIndex != -1)
        base = FindKnownFolder(folderIndex);
    else if (!variable.empty())
        base = FindKnownFolder(variable);
    Locate();
    ReadChildren();
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

void CheckedRule::ReadChildren() {
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
        const bool hasPath = child->Attribute("Path") != nullptr;
        if (_stricmp(child->Value(), "ExcludePath") == 0) {
            if (hasPath) exclusions.push_back(child);
        } else if (_stricmp(child->Value(), "LoopPath") == 0) {
            if (child->Attribute("TerminalPath"))
                terminals.push_back(child);
            else if (hasPath)
                steps.push_back(child);
        }
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

std::wstring AttributeText(const TiXmlElement& element, const char* name) {
    return Utf8ToWide(element.Attribute(name));
}
