#include "host/console/gathercommand.h"

#include "host/common/texts.h"
#include "host/console/resulttable.h"
#include "host/console/runjson.h"
#include "host/console/runview.h"

void AddGatherOptions(CLI::App& command, GatherOptions& options) {
    if (!options.upgradeMode) AddFileOptions(command, options);
    AddScopeOptions(command, options);
    command.add_flag("--items", options.items, "List every item, and what a clean would do beside, under its category");
    command.add_flag("--json", options.json, "Print one JSON document, with every item, and nothing else");
}

ExitStatus Gather(const CEngine& engine, CConsole& console, const CCancel& cancel, bool listItems) {
    if (!IsAnythingSelected(*engine)) console.Complain(Text(IDS_NOTHING_SELECTED));
    CRunView view(console, cancel, listItems);
    return view.Finish(CRunObserver(*engine, view).Run(&IDregsweep::Gather));
}

namespace {

ExitStatus RunGather(const GatherOptions& options, CConsole& console) {
    const CCancel cancel;
    const CEngine engine(options);
    const bool listItems = options.items && !options.json;
    const ExitStatus status = Gather(engine, console, cancel, listItems);
    const CWorkList work(*engine);
    const RunResult result = CollectResult(engine, work, nullptr, options.json);
    if (options.json) {
        PrintRunJson(console.out, "gather", status, /*cleaned=*/false, result);
    } else {
        PrintFound(console.out, result, work, listItems);
    }
    return status;
}

}  // namespace

void AddGatherCommand(CLI::App& parent, CommandAction& action, bool upgradeMode) {
    CLI::App* command = parent.add_subcommand("gather", "Find what the selected rules describe; delete nothing");
    const auto options = std::make_shared<GatherOptions>();
    options->upgradeMode = upgradeMode;
    AddGatherOptions(*command, *options);
    AddHelp(*command, upgradeMode ? "Example:\n"
                                    "  dsw upgrade-leftovers gather --items"
                                  : "Examples:\n"
                                    "  dsw gather --rules rules.xml --text text\\de\\ResIDText.xml\n"
                                    "  dsw gather --rules rules.xml --only \"Browsers/*\" --items\n"
                                    "  dsw gather --rules rules.xml --json >found.json");
    SetAction(*command, action, options, RunGather);
}
