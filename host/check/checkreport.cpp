#include "host/check/checkreport.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "sysservices/text.h"

namespace {

const wchar_t* SeverityName(CheckSeverity severity) {
    switch (severity) {
        case CheckSeverity::Error:
            return L"error";
        case CheckSeverity::Warning:
            return L"warning";
        case CheckSeverity::Note:
            return L"note";
    }
    return L"";
}

std::wstring CountText(const std::vector<CheckFinding>& findings, CheckSeverity severity) {
    const size_t count = CountFindings(findings, severity);
    return std::to_wstring(count) + L' ' + SeverityName(severity) + (count == 1 ? L"" : L"s");
}

}  // namespace

std::wstring FindingLine(const CheckFinding& finding) {
    const std::wstring line = finding.line > 0 ? L":" + std::to_wstring(finding.line) : std::wstring();
    return finding.file + line + L": " + SeverityName(finding.code.severity) + L": " + finding.message + L" ["
           + finding.code.name + L']';
}

std::wstring SummaryLine(const std::vector<CheckFinding>& findings) {
    return CountText(findings, CheckSeverity::Error) + L", " + CountText(findings, CheckSeverity::Warning) + L", "
           + CountText(findings, CheckSeverity::Note);
}

std::string FindingsJson(const std::vector<CheckFinding>& findings) {
    auto list = nlohmann::ordered_json::array();
    for (const CheckFinding& finding : findings) {
        list.push_back({{"file", WideToUtf8(finding.file)},
                        {"line", finding.line},
                        {"severity", WideToUtf8(SeverityName(finding.code.severity))},
                        {"code", WideToUtf8(finding.code.name)},
                        {"message", WideToUtf8(finding.message)}});
    }
    const nlohmann::ordered_json document = {{"errors", CountFindings(findings, CheckSeverity::Error)},
                                             {"warnings", CountFindings(findings, CheckSeverity::Warning)},
                                             {"notes", CountFindings(findings, CheckSeverity::Note)},
                                             {"findings", list}};
    return document.dump(2);
}

size_t CountFindings(const std::vector<CheckFinding>& findings, CheckSeverity severity) {
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [&](const CheckFinding& finding) { return finding.code.severity == severity; });
    return static_cast<size_t>(count);
}
