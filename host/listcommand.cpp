#include "host/listcommand.h"

#include <memory>

#include "host/engine.h"
#include "host/treeview.h"

namespace {

ExitStatus RunList(const EngineOptions& options, CConsole& console) {
    const CEngine engine(options);
    PrintTree(console.out, *engine);
    return ExitStatus::Done;
}

}  // namespace

void AddListCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("list", "Show the categories, applications and rules of a rule file");
    const auto options = std::make_shared<EngineOptions>();
    AddEngineOptions(*command, *options);
    command->footer("Example:\n  dsw list --rules rules.xml --text ResIDText.xml");
    command->callback(
        [&action, options] { action = [options](CConsole& console) { return RunList(*options, console); }; });
}
