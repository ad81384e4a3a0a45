#include "host/gathercommand.h"

#include <memory>

#include "host/hosterror.h"
#include "host/runobserver.h"
#include "host/totals.h"

namespace {

struct GatherOptions : EngineOptions {
    bool items = false;
};

}  // namespace

void AddGatherCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("gather", "Find what the selected rules describe; delete nothing");
    const auto options = std::make_shared<GatherOptions>();
    AddEngineOptions(*command, *options);
    command->add_flag("--items", options->items, "List every item that is found");
    command->footer("Example:\n  dsw gather --rules rules.xml --items");
    command->callback([&action, options] {
        action = [options](CConsole& console) {
            const CCancel cancel;
            CEngine engine(*options);
            return RunGather(engine, console, cancel, options->items);
        };
    });
}

ExitStatus RunGather(CEngine& engine, CConsole& console, const CCancel& cancel, bool listItems) {
    CRunObserver observer(console, cancel, listItems);
    const bool finished = engine->Gather(&observer);
    observer.Finish();
    const Amount found = PrintTotals(console.out, L"Found", *engine, EngineAmount);
    console.out.Line(L"Found " + ItemCount(found.items) + L", " + FullSize(found.bytes) + L".");
    if (finished) return ExitStatus::Done;
    if (!cancel.Requested()) throw CHostError(L"the engine gave up the scan, memory ran out: the totals are partial");
    console.err.Line(L"dsw: stopped, the totals are those of the items found so far");
    return ExitStatus::Stopped;
}
