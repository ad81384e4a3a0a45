#include "host/checkpack.h"

#include <algorithm>

#include "host/checkfile.h"
#include "host/checkschema.h"

namespace {

void AppendByLine(std::vector<CheckFinding>& all, const CCheckFindings& findings) {
    const auto begin = all.insert(all.end(), findings.List().begin(), findings.List().end());
    std::stable_sort(begin, all.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
}

void CheckRuleFile(const std::wstring& path, CCheckFindings& findings) {
    TiXmlDocument document;
    if (!LoadCheckedFile(path, document, findings)) return;
    CheckRuleSchema(*document.RootElement(), findings);
}

}  // namespace

std::vector<CheckFinding> CheckPack(const std::vector<std::wstring>& ruleFiles, const std::wstring& /*textFile*/) {
    std::vector<CheckFinding> all;
    for (const std::wstring& path : ruleFiles) {
        CCheckFindings findings(path);
        CheckRuleFile(path, findings);
        AppendByLine(all, findings);
    }
    return all;
}
