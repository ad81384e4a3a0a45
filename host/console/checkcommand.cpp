#include "host/console/command.h"

#include <memory>

#include "host/check/pack.h"
#include "host/check/report.h"
#include "sysservices/text.h"

namespace {

struct CheckOptions {
    std::vector<std::string> rules;
    std::string text;
    bool json = false;
    bool strict = false;
};

void PrintText(COutput& out, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings)
        out.Line(FindingLine(finding));
    out.Line(SummaryLine(findings));
}

void PrintJson(COutput& out, const std::vector<Finding>& findings) {
    out.Write(Utf8ToWide(FindingsJson(findings) + '\n'));
}

ExitStatus RunCheck(const CheckOptions& options, CConsole& console) {
    std::vector<std::wstring> rules;
    for (const std::string& path : options.rules)
        rules.push_back(Utf8ToWide(path));
    const auto findings = CheckPack(rules, Utf8ToWide(options.text));
    options.json ? PrintJson(console.out, findings) : PrintText(console.out, findings);
    const size_t counted =
        CountFindings(findings, Severity::Error) + (options.strict ? CountFindings(findings, Severity::Warning) : 0);
    return counted > 0 ? ExitStatus::Failed : ExitStatus::Done;
}

}  // namespace

void AddCheckCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("check", "Tell what is wrong with rule files, before they are used");
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("RULES", options->rules, "The rule files (XML) of one pack")->type_name("FILE")->required();
    command->add_option("--text", options->text, "The file with their localised names (XML)")->type_name("FILE");
    command->add_flag("--strict", options->strict, "Fail on warnings as well");
    command->add_flag("--json", options->json, "Write one JSON document");
    command->footer(
        "Each line: FILE:LINE: SEVERITY: MESSAGE [CODE]; docs/rules.md explains the codes.\n"
        "Exit status: 0 no errors (perhaps warnings and notes), 1 errors, or warnings with --strict, 2 wrong usage.\n"
        "Examples:\n"
        "  dsw check rules.xml --text ResIDText.xml\n"
        "  dsw check rules.xml SysUpgradeConfig.xml --text ResIDText.xml --json");
    SetAction(*command, action, options, RunCheck);
}
