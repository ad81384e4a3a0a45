#include "host/common/hosterror.h"
#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/console/gathercommand.h"
#include "host/console/resulttable.h"
#include "host/console/runjson.h"
#include "host/console/runview.h"

namespace {

struct CleanOptions : GatherOptions {
    bool yes = false;
    bool dryRun = false;
};

bool UserAgrees(CConsole& console, const CCancel& cancel) {
    const auto answer = console.Ask(Text(IDS_DELETE_QUESTION), cancel);
    return answer && (ToLower(*answer) == L"y" || ToLower(*answer) == L"yes");
}

// Adds the paths of the items in that state, of this node and those below, to `paths`, and returns how many items they
// stand for.
uint64_t CollectPaths(const RunResult& result, ItemState state, std::vector<std::wstring>& paths) {
    uint64_t items = 0;
    for (const ItemResult& item : result.items) {
        if (item.state != state) continue;
        paths.push_back(item.path.empty() ? Text(IDS_ALL_OF, {result.path}) : item.path);
        items += item.amount.items;
    }
    for (const RunResult& child : result.children)
        items += CollectPaths(child, state, paths);
    return items;
}

struct Headline {
    ItemState state;
    unsigned text;
};
constexpr Headline kNotDeleted[] = {{ItemState::InUse, IDS_ITEMS_IN_USE},
                                    {ItemState::Refused, IDS_ITEMS_REFUSED},
                                    {ItemState::Gone, IDS_ITEMS_GONE},
                                    {ItemState::NotTried, IDS_ITEMS_NOT_TRIED}};

// Lists the items in that state and returns what to say of them in the summary. Only the first few, or a program that
// keeps its cache open would fill the screen.
std::wstring PrintNotDeleted(COutput& out, const RunResult& result, const Headline& headline) {
    constexpr size_t kShown = 20;
    std::vector<std::wstring> paths;
    const uint64_t items = CollectPaths(result, headline.state, paths);
    if (paths.empty()) return {};
    out.Line(Text(headline.text));
    for (size_t i = 0; i < paths.size() && i < kShown; ++i)
        out.Line(L"  " + paths[i]);
    if (paths.size() > kShown) out.Line(L"  " + Text(IDS_AND_MORE, {ItemCount(paths.size() - kShown)}));
    return Text(IDS_COUNT_IN_STATE, {GroupedNumber(items), StateText(headline.state)});
}

void PrintResult(COutput& out, const RunResult& result) {
    PrintTable(out, Text(IDS_TITLE_DELETED), result, &RunResult::deleted);
    if (result.left.items != 0) PrintTable(out, Text(IDS_TITLE_NOT_DELETED), result, &RunResult::left);
    std::wstring reasons;
    for (const Headline& headline : kNotDeleted) {
        const std::wstring reason = PrintNotDeleted(out, result, headline);
        if (!reason.empty() && !reasons.empty()) reasons += Text(IDS_LIST_SEPARATOR);
        reasons += reason;
    }
    out.Line(Text(reasons.empty() ? IDS_SUM_FREED : IDS_SUM_FREED_WITH_REASONS,
                  {FullSize(result.deleted.bytes), ItemCount(result.deleted.items), ItemCount(result.left.items),
                   FullSize(result.left.bytes), reasons}));
}

// What is found is shown before the question. Nothing when the clean may begin.
std::optional<ExitStatus> Prepare(const CEngine& engine, const CleanOptions& options, CConsole& console,
                                  const CCancel& cancel) {
    // With --yes the list of what became of the items says the same as one of what was found.
    const bool listItems = options.items && !options.json && (options.dryRun || !options.yes);
    const ExitStatus status = Gather(engine, console, cancel, listItems);
    const bool goOn = status == ExitStatus::Done && !options.dryRun;
    const RunResult found = CollectResult(engine, nullptr, options.json && !goOn);
    if (!options.json) {
        PrintFound(console.out, found);
    } else if (!goOn) {
        PrintRunJson(console.out, "clean", status, /*cleaned=*/false, found);
    }
    if (options.dryRun && !options.json) console.out.Line(Text(IDS_DRY_RUN));
    if (!goOn) return status;
    if (options.yes || UserAgrees(console, cancel)) return {};
    console.Complain(Text(IDS_NOTHING_DELETED));
    return ExitStatus::Stopped;
}

ExitStatus RunClean(const CleanOptions& options, CConsole& console) {
    if (options.json && !options.yes && !options.dryRun) throw CUsageError(Text(IDS_JSON_ASKS_NOTHING));
    const CCancel cancel;
    const CEngine engine(options);
    if (const auto status = Prepare(engine, options, console, cancel)) return *status;
    CRunView view(console, cancel, options.items && !options.json);
    CRunObserver observer(*engine, view);
    const ExitStatus status = view.Finish(observer.Run(&IDregsweep::Clean));
    const RunResult result = CollectResult(engine, &observer, /*withItems=*/true);
    if (options.json) {
        PrintRunJson(console.out, "clean", status, /*cleaned=*/true, result);
    } else {
        PrintResult(console.out, result);
    }
    return status;
}

}  // namespace

void AddCleanCommand(CLI::App& parent, CommandAction& action, bool upgradeMode) {
    CLI::App* command = parent.add_subcommand("clean", "Find what the selected rules describe and delete it");
    const auto options = std::make_shared<CleanOptions>();
    options->upgradeMode = upgradeMode;
    AddGatherOptions(*command, *options);
    command->add_flag("--yes", options->yes, "Delete without asking; --json needs it");
    command->add_flag("--dry-run", options->dryRun, "Show what would be deleted, and stop before the question");
    AddHelp(*command, upgradeMode ? "Examples:\n"
                                    "  dsw upgrade-leftovers clean --dry-run --items\n"
                                    "  dsw upgrade-leftovers clean"
                                  : "Examples:\n"
                                    "  dsw clean --rules rules.xml --dry-run --items\n"
                                    "  dsw clean --rules rules.xml --only \"System/*/Temporary files\"\n"
                                    "  dsw clean --rules rules.xml --yes --json >deleted.json");
    SetAction(*command, action, options, RunClean);
}
