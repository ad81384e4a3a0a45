#include "host/console/command.h"

#include <memory>

#include "host/common/engine.h"
#include "host/console/ruleoptions.h"
#include "host/console/treeview.h"

namespace {

struct ListOptions : EngineOptions {
    bool explain = false;
    bool json = false;
};

ExitStatus RunList(const ListOptions& options, CConsole& console) {
    const CEngine engine(options);
    options.json ? PrintTreeJson(console.out, engine) : PrintTree(console.out, engine, options.explain);
    return ExitStatus::Done;
}

}  // namespace

void AddListCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command =
        app.add_subcommand("list", "Show the categories and applications of a rule file, and what its rules do");
    const auto options = std::make_shared<ListOptions>();
    AddFileOptions(*command, *options);
    AddScopeOptions(*command, *options);
    command->add_flag("--explain", options->explain, "Show each rule: what it looks at and what else it does");
    command->add_flag("--json", options->json, "Print one JSON document, with all rules explained, and nothing else");
    AddHelp(
        *command,
        "Behind each node stands its path, by the names of the rule file, for the selecting options of all commands.\n"
        "A pattern (* any text, ? any character) is compared with the whole path, in the language of the rule file\n"
        "and in the one shown; capitals do not matter. It means all that is below what it matches.\n\n"
        "Examples:\n"
        "  dsw list --rules rules.xml --explain\n"
        "  dsw list --rules rules.xml --text text\\de\\ResIDText.xml\n"
        "  dsw list --rules rules.xml --only \"Browsers/*\" --deselect \"*/Offline content\"");
    SetAction(*command, action, options, RunList);
}
