#include "host/console/ruleoptions.h"
#include "host/common/texts.h"

#include "sysservices/text.h"

namespace {

using Kind = SelectionStep::Kind;

constexpr const char* kGroup = "Selecting (in the order given; dsw list --help explains patterns)";

CLI::Option* AddFile(CLI::App& command, const char* name, std::wstring& path, const char* description) {
    return command
        .add_option_function<std::string>(
            name, [&path](const std::string& text) { path = Utf8ToWide(text); }, description)
        ->type_name("FILE");
}

void AddSelectionOptions(CLI::App& command, std::vector<SelectionStep>& steps) {
    const auto add = [&](const char* name, Kind kind, const char* description) {
        const auto append = [&steps, kind](const std::string& pattern) {
            steps.push_back({kind, Utf8ToWide(pattern)});
        };
        command.add_option_function<std::string>(name, append, description)
            ->type_name("PATTERN")
            ->group(kGroup)
            ->trigger_on_parse();
    };
    const auto addFlag = [&](const char* name, Kind kind, const char* description) {
        command
            .add_flag_callback(
                name,
                [&steps, kind] {
                    steps.push_back({kind, {}});
                },
                description)
            ->group(kGroup)
            ->trigger_on_parse();
    };
    addFlag("--all", Kind::All, "Select everything, also what the rule file leaves off");
    addFlag("--none", Kind::None, "Select nothing");
    add("--only", Kind::Only, "Select what matches, with all that is below, and nothing else; a further one adds");
    add("--select", Kind::Select, "Select what matches, with all that is below, too");
    add("--deselect", Kind::Deselect, "Deselect what matches, with all that is below");
}

}  // namespace

void AddFileOptions(CLI::App& command, EngineOptions& options) {
    options.rulesRemedy = IDS_CHECK_RULES_OPTION;
    options.textRemedy = IDS_CHECK_TEXT_OPTION;
    AddFile(command, "--rules", options.rules, "The rule file (XML)")->required();
    AddFile(command, "--text", options.text, "The file with the localised names (XML)");
}

void AddScopeOptions(CLI::App& command, EngineOptions& options) {
    AddSelectionOptions(command, options.selection);
    command.add_flag("--no-registry", options.noRegistry, "Leave out all registry rules, whatever is selected");
    command.add_flag("--present-only", options.presentOnly, "Leave out applications that are not present, likewise");
    command
        .add_option_function<std::string>(
            "--allow", [&options](const std::string& prefix) { options.allowed.push_back(Utf8ToWide(prefix)); },
            "Scan only folders whose path begins so; a further one adds. No limit for single files, registry and shell")
        ->type_name("PREFIX")
        // Every path begins with it: a variable of a script that is not set would allow everything.
        ->check([](const std::string& prefix) {
            return prefix.empty() ? WideToUtf8(Text(IDS_PREFIX_IS_EMPTY)) : std::string();
        })
        ->trigger_on_parse();
}
