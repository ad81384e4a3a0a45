#include "rules/ruleelement.h"

#include <tinyxml.h>

#include <algorithm>

#include "rules/rootkeyname.h"
#include "rules/systemversion.h"
#include "sysservices/xmlattribute.h"

namespace {

constexpr std::wstring_view kListSeparator = L"|";

// Flags are set by 1 alone, but IsFolder and UseShellBrowse by any number but 0: IsFolder="2" scans a folder,
// Iteration="2" is off.
bool ReadFlag(const TiXmlElement& element, const char* name) {
    return ReadInteger(element, name, 0) == 1;
}

std::vector<CString> SplitLowerCased(const CString& list) {
    std::vector<CString> tokens = Split(list, kListSeparator);
    std::transform(tokens.begin(), tokens.end(), tokens.begin(), [](const CString& token) { return ToLower(token); });
    return tokens;
}

}  // namespace

RuleElement::RuleElement(const TiXmlElement& element)
    : isRegistry(ReadFlag(element, "Registry")),
      iteration(ReadFlag(element, "Iteration")) {
    isRegistry ? ReadRegistryRule(element) : ReadFileRule(element);
}

void RuleElement::ReadFileRule(const TiXmlElement& element) {
    hasPath = ReadText(element, "Path", path);
    const int32_t byReg = ReadInteger(element, "GetByReg", 0);
    getByReg = byReg == 1;
    if (getByReg) {
        rootKey = RootKeyByName(element.Attribute("RootKey"));
        ReadText(element, "Value", value);
    }
    // Without the attribute the value of GetByReg counts, be it 1 or 2: such a rule is a folder rule.
    isFolder = ReadInteger(element, "IsFolder", byReg) != 0;
    folderIndex = ReadInteger(element, "FolderIndex", -1);
    if (IsWow64()) ReadText(element, "FolderX86EnvDir", folderVariable);
    if (folderVariable.empty()) ReadText(element, "FolderEnvDir", folderVariable);
    filter = L"*";
    ReadText(element, "Filter", filter);
    CString names;
    // As written, while the other lists are lower-cased: ".LOG" does not keep "setup.log".
    if (ReadText(element, "ExcludeFilter", names)) excludedNames = Split(names, kListSeparator);
    ReadText(element, "EmptyProc", emptyProc);
    loopPath = ReadFlag(element, "LoopPath");
    excludePath = ReadFlag(element, "ExcludePath");
    selfExclude = ReadFlag(element, "SelfExclude");
    useShellBrowse = ReadInteger(element, "UseShellBrowse", 0) != 0;
}

void RuleElement::ReadRegistryRule(const TiXmlElement& element) {
    rootKey = RootKeyByName(element.Attribute("RootKey"));
    ReadText(element, "KeyPath", path);
    ReadText(element, "Filter", filter);
    deleteKey = ReadFlag(element, "DelKey");
    if (ReadText(element, "Value", value)) valueNames = SplitLowerCased(value);
}

RuleChildren::RuleChildren(const TiXmlElement& element) {
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) {
        if (_stricmp(child->Value(), "LoopPath") == 0) ReadLoopPath(*child);
        if (_stricmp(child->Value(), "ExcludePath") == 0) ReadExcludePath(*child);
    }
}

void RuleChildren::ReadLoopPath(const TiXmlElement& child) {
    CString names;
    if (ReadText(child, "TerminalPath", names)) {
        terminals.push_back({SplitLowerCased(names), &child});
        exactMatch = ReadFlag(child, "ExactMatch");
        return;
    }
    LoopStep step;
    if (!ReadText(child, "Path", step.path)) return;
    ReadText(child, "AddPath", step.addPath);
    steps.push_back({std::move(step), &child});
}

void RuleChildren::ReadExcludePath(const TiXmlElement& child) {
    CString path;
    if (!ReadText(child, "Path", path)) return;
    exclusions.push_back({{.path = ToLower(path),
                           .exactMatch = ReadFlag(child, "ExactMatch"),
                           .iteration = ReadFlag(child, "Iteration")},
                          &child});
}
