#include "host/check/rulechecks.h"

#include <windows.h>
#include <shlobj.h>

#include <initializer_list>

#include "sysservices/text.h"

namespace {

using Names = std::initializer_list<const char*>;

constexpr Names kOfFileRules = {"FolderEnvDir", "FolderX86EnvDir", "FolderIndex",    "Path",
                                "GetByReg",     "IsFolder",        "ExcludeFilter",  "SelfExclude",
                                "LoopPath",     "ExcludePath",     "UseShellBrowse", "EmptyProc"};
constexpr Names kOfFolders = {"Iteration", "Filter", "ExcludeFilter", "SelfExclude", "LoopPath", "ExcludePath"};

void ReportIgnored(const CheckedRule& rule, Names attributes, const wchar_t* where, CFindings& findings) {
    for (const char* name : attributes) {
        if (rule.Sets(name))
            findings.Add(FindingCodes::kNoEffect, rule.PlaceOf(name), Utf8ToWide(name) + L" has no effect " + where);
    }
}

void RequireTexts(const CheckedRule& rule, Names attributes, const wchar_t* what, CFindings& findings) {
    for (const char* name : attributes) {
        if (rule.TextOf(name).empty())
            findings.Add(FindingCodes::kMissingAttribute, rule.PlaceOf(name), what + Utf8ToWide(name));
    }
}

void CheckRegistryRule(const CheckedRule& rule, CFindings& findings) {
    RequireTexts(rule, {"RootKey", "KeyPath"}, L"a registry rule does nothing without ", findings);
    ReportIgnored(rule, kOfFileRules, L"in a registry rule", findings);
    if (rule.deleteKey)
        ReportIgnored(rule, {"Value", "Iteration", "Filter"}, L"beside DelKey", findings);
    else if (!rule.iteration)
        ReportIgnored(rule, {"Filter"}, L"in a registry rule without Iteration", findings);
}

void CheckRegistryLocation(const CheckedRule& rule, CFindings& findings) {
    if (rule.getByReg)
        RequireTexts(rule, {"RootKey", "Path", "Value"}, L"GetByReg reads no location without ", findings);
    else
        ReportIgnored(rule, {"RootKey", "Value"}, L"without GetByReg or Registry", findings);
}

void CheckVirtualFolder(const CheckedRule& rule, CFindings& findings) {
    constexpr const wchar_t* kWhere = L"in a shell folder without a path";
    ReportIgnored(rule, {"Path"}, kWhere, findings);
    ReportIgnored(rule, kOfFolders, kWhere, findings);
    if (rule.base->index == CSIDL_BITBUCKET || rule.useShellBrowse) return;
    findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("FolderIndex"),
                 L"of the shell folders without a path only the recycle bin (10) is ever emptied");
}

void CheckSingleFile(const CheckedRule& rule, CFindings& findings) {
    ReportIgnored(rule, kOfFolders, L"without IsFolder", findings);
    const size_t begin = rule.path.starts_with(L"\\\\?\\") ? 4 : 0;
    if (rule.path.find_first_of(L"*?", begin) != std::wstring::npos) {
        findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("Path"),
                     L"a single file with wildcards is never deleted: use IsFolder and Filter");
    } else if (rule.HasBase() && rule.path.empty() && !rule.getByReg) {
        findings.Add(FindingCodes::kDoesNothing, rule.element,
                     L"without IsFolder this means the folder itself, which is never deleted");
    }
}

void CheckFolderRule(const CheckedRule& rule, CFindings& findings) {
    if (rule.filter.empty() || rule.filter.find_first_of(L"<>\":|\\/") != std::wstring::npos) {
        findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("Filter"),
                     L"no name matches the Filter \"" + rule.filter + L"\", which takes one pattern");
    } else if (rule.filter.find(L';') != std::wstring::npos) {
        findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("Filter"),
                     L"\"" + rule.filter + L"\" is one pattern with a \";\" in it: write a rule for each pattern");
    }
    if (rule.loopPath) {
        ReportIgnored(rule, {"SelfExclude"}, L"on the folders of a loop", findings);
    } else if (rule.selfExclude && !rule.iteration) {
        findings.Add(FindingCodes::kDoesNothing, rule.PlaceOf("SelfExclude"),
                     L"SelfExclude without Iteration leaves nothing to find");
    }
}

}  // namespace

void CheckEffect(const CheckedRule& rule, CFindings& findings) {
    if (rule.isRegistry) return CheckRegistryRule(rule, findings);
    ReportIgnored(rule, {"KeyPath", "DelKey"}, L"without Registry", findings);
    CheckRegistryLocation(rule, findings);
    if (rule.folderIndex != -1) ReportIgnored(rule, {"FolderEnvDir"}, L"beside FolderIndex", findings);
    if (!rule.HasBase()) ReportIgnored(rule, {"UseShellBrowse"}, L"without a base folder", findings);
    if (rule.IsVirtual())
        CheckVirtualFolder(rule, findings);
    else if (rule.useShellBrowse)
        ReportIgnored(rule, kOfFolders, L"beside UseShellBrowse", findings);
    else if (rule.isFolder)
        CheckFolderRule(rule, findings);
    else
        CheckSingleFile(rule, findings);
}
