#include "host/check/rulechecks.h"

#include "host/check/nearest.h"

namespace {

void CheckBase(const CheckedRule& rule, CFindings& findings) {
    if (!rule.HasBase() || rule.base) return;
    if (rule.folderIndex != -1) {
        findings.Add(FindingCodes::kUnresolvableLocation, rule.PlaceOf("FolderIndex"),
                     std::to_wstring(rule.folderIndex) + L" is no folder of Windows, the rule is dropped");
    } else {
        findings.Add(FindingCodes::kUnresolvableLocation, rule.PlaceOf("FolderEnvDir"),
                     L"Windows sets no variable \"" + rule.folderVariable
                         + L"\" to a folder, and where nobody else does the rule is dropped"
                         + NearestHint(rule.folderVariable, FolderVariables()));
    }
}

void CheckNoLocation(const CheckedRule& rule, CFindings& findings) {
    if (rule.HasBase()) return;
    if (!rule.Has("Path")) {
        const bool has32BitOnly = rule.Has("FolderX86EnvDir");
        findings.Add(FindingCodes::kUnresolvableLocation, rule.element,
                     has32BitOnly
                         ? L"FolderX86EnvDir is for 32-bit engines only: without FolderEnvDir the rule is dropped"
                         : L"there is neither a base folder nor a Path, the rule is dropped");
    } else if (rule.path.empty() && !rule.Has("EmptyProc")) {
        findings.Add(FindingCodes::kDoesNothing, rule.element, L"the location is empty, and there is no EmptyProc");
    }
}

void CheckPathText(const CheckedRule& rule, CFindings& findings) {
    if (rule.getByReg) return;
    const size_t first = rule.path.find(L'%');
    if (first != std::wstring::npos && rule.path.find(L'%', first + 1) != std::wstring::npos) {
        findings.Add(FindingCodes::kUnresolvableLocation, rule.PlaceOf("Path"),
                     L"variables in Path are not expanded: use FolderEnvDir");
    }
    // Behind the drive, or the mark of a long path. Wildcards have a meaning in the path of a single file.
    const size_t begin = rule.path.starts_with(L"\\\\?\\") ? 6 : rule.HasBase() ? 0 : 2;
    const wchar_t* const impossible = rule.isFolder ? L"<>\":|?*" : L"<>\":|";
    if (rule.path.find_first_of(impossible, begin) == std::wstring::npos) return;
    findings.Add(FindingCodes::kUnresolvableLocation, rule.PlaceOf("Path"),
                 L"nothing can have the path \"" + rule.path + L"\"");
}

}  // namespace

void CheckLocation(const CheckedRule& rule, CFindings& findings) {
    if (rule.isRegistry || rule.IsVirtual()) return;
    CheckBase(rule, findings);
    CheckNoLocation(rule, findings);
    CheckPathText(rule, findings);
}
