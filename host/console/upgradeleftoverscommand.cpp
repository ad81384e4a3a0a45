#include "host/console/command.h"

void AddUpgradeLeftoversCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command =
        app.add_subcommand("upgrade-leftovers", "Find or delete what an upgrade of Windows left behind");
    command->require_subcommand(1);
    AddGatherCommand(*command, action, /*upgradeMode=*/true);
    AddCleanCommand(*command, action, /*upgradeMode=*/true);
    AddHelp(
        *command,
        "The rules are those of SysUpgradeConfig.xml and the names those of ResIDText.xml, both in the folder of\n"
        "dsw.exe. Folders and files that refuse are unlocked: everyone is granted access to them, for good, also by a\n"
        "gather. Run it as an administrator.\n"
        "dsw list --rules SysUpgradeConfig.xml shows the paths to select by.\n\n"
        "Examples:\n"
        "  dsw upgrade-leftovers gather --items\n"
        "  dsw upgrade-leftovers clean");
}
