#include "host/cleancommand.h"

#include <memory>

#include "host/gathercommand.h"
#include "host/hosterror.h"
#include "host/runobserver.h"
#include "host/totals.h"

namespace {

struct CleanOptions : EngineOptions {
    bool items = false;
    bool yes = false;
};

bool UserAgrees(CConsole& console) {
    const CEndOnCancel endOnCancel;
    const auto answer = console.Ask(L"Delete these items, and what the selected registry rules name? [y/N] ");
    return answer && (ToLower(*answer) == L"y" || ToLower(*answer) == L"yes");
}

// The first few, or a program that keeps its cache open would fill the screen.
void PrintRefused(COutput& out, const std::vector<std::wstring>& refused) {
    constexpr size_t kShown = 20;
    if (!refused.empty()) out.Line(L"In use, refused or gone:");
    for (size_t i = 0; i < refused.size() && i < kShown; ++i)
        out.Line(L"  " + refused[i]);
    if (refused.size() > kShown)
        out.Line(L"  and " + ItemCount(refused.size() - kShown) + L" more; --items lists them all");
}

// Freed is only what was reported as deleted. What is left is the engine's own count: items that were refused, but also
// those that were passed over or that a stopped run did not reach.
void PrintResult(COutput& out, CEngine& engine, const CRunObserver& observer) {
    const Amount deleted =
        PrintTotals(out, L"Deleted", *engine, [&](IGarbageCatagory& category) { return observer.Deleted(category); });
    Amount left;
    if (engine->GetTotalCount() != 0) left = PrintTotals(out, L"Not deleted", *engine, EngineAmount);
    PrintRefused(out, observer.Refused());
    out.Line(L"Freed " + FullSize(deleted.bytes) + L" in " + ItemCount(deleted.items) + L"; not deleted: "
             + ItemCount(left.items) + L", " + FullSize(left.bytes) + L".");
}

ExitStatus DeleteFound(CEngine& engine, CConsole& console, const CCancel& cancel, bool listItems) {
    CRunObserver observer(console, cancel, listItems);
    const bool finished = engine->Clean(&observer);
    observer.Finish();
    PrintResult(console.out, engine, observer);
    if (finished) return ExitStatus::Done;
    if (!cancel.Requested()) throw CHostError(L"the engine gave up the clean, memory ran out: the result is partial");
    console.err.Line(L"dsw: stopped, the items that were not reached are still there");
    return ExitStatus::Stopped;
}

ExitStatus RunClean(const CleanOptions& options, CConsole& console) {
    const CCancel cancel;
    CEngine engine(options);
    // What is found is listed before the question; with --yes the list of what became of it says the same.
    const ExitStatus gathered = RunGather(engine, console, cancel, options.items && !options.yes);
    if (gathered != ExitStatus::Done) return gathered;
    if (!options.yes && !UserAgrees(console)) {
        console.err.Line(L"dsw: nothing was deleted");
        return ExitStatus::Stopped;
    }
    return DeleteFound(engine, console, cancel, options.items);
}

}  // namespace

void AddCleanCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("clean", "Find what the selected rules describe and delete it");
    const auto options = std::make_shared<CleanOptions>();
    AddEngineOptions(*command, *options);
    command->add_flag("--items", options->items, "List every item and what became of it");
    command->add_flag("--yes", options->yes, "Delete without asking");
    command->footer("Example:\n  dsw clean --rules rules.xml --yes");
    command->callback(
        [&action, options] { action = [options](CConsole& console) { return RunClean(*options, console); }; });
}
