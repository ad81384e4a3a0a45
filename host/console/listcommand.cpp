#include "host/console/command.h"

#include <memory>

#include "host/common/engine.h"
#include "host/console/ruleoptions.h"
#include "host/console/treeview.h"

namespace {

ExitStatus RunList(const EngineOptions& options, CConsole& console) {
    const CEngine engine(options);
    PrintTree(console.out, engine);
    return ExitStatus::Done;
}

}  // namespace

void AddListCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("list", "Show the categories, applications and rules of a rule file");
    const auto options = std::make_shared<EngineOptions>();
    AddFileOptions(*command, *options);
    AddScopeOptions(*command, *options);
    AddHelp(
        *command,
        "Behind each node stands its path, by the names of the rule file, for the selecting options of all commands.\n"
        "A pattern (* any text, ? any character) is compared with the whole path, in the language of the rule file\n"
        "and in the one shown; capitals do not matter. It means all that is below what it matches.\n\n"
        "Examples:\n"
        "  dsw list --rules rules.xml --text text\\de\\ResIDText.xml\n"
        "  dsw list --rules rules.xml --only \"Browsers/*\" --deselect \"*/Offline content\"");
    SetAction(*command, action, options, RunList);
}
