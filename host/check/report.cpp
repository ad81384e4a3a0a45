#include "host/check/report.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "sysservices/text.h"

namespace {

const wchar_t* SeverityName(Severity severity) {
    switch (severity) {
        case Severity::Error:
            return L"error";
        case Severity::Warning:
            return L"warning";
        case Severity::Note:
            return L"note";
    }
    return L"";
}

std::wstring CountText(const std::vector<Finding>& findings, Severity severity) {
    const size_t count = CountFindings(findings, severity);
    return std::to_wstring(count) + L' ' + SeverityName(severity) + (count == 1 ? L"" : L"s");
}

}  // namespace

std::wstring FindingLine(const Finding& finding) {
    const std::wstring line = finding.line > 0 ? L":" + std::to_wstring(finding.line) : std::wstring();
    return finding.file + line + L": " + SeverityName(finding.code.severity) + L": " + finding.message + L" ["
           + finding.code.name + L']';
}

std::wstring SummaryLine(const std::vector<Finding>& findings) {
    return CountText(findings, Severity::Error) + L", " + CountText(findings, Severity::Warning) + L", "
           + CountText(findings, Severity::Note);
}

std::string FindingsJson(const std::vector<Finding>& findings) {
    auto list = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"file", WideToUtf8(finding.file)},
                        {"line", finding.line},
                        {"severity", WideToUtf8(SeverityName(finding.code.severity))},
                        {"code", WideToUtf8(finding.code.name)},
                        {"message", WideToUtf8(finding.message)}});
    }
    const nlohmann::ordered_json document = {{"errors", CountFindings(findings, Severity::Error)},
                                             {"warnings", CountFindings(findings, Severity::Warning)},
                                             {"notes", CountFindings(findings, Severity::Note)},
                                             {"findings", list}};
    return document.dump(2);
}

size_t CountFindings(const std::vector<Finding>& findings, Severity severity) {
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [&](const Finding& finding) { return finding.code.severity == severity; });
    return static_cast<size_t>(count);
}
