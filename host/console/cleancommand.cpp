#include "host/common/actiontext.h"
#include "host/common/hosterror.h"
#include "host/common/printable.h"
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
    if (result.left.items + result.left.actions != 0)
        PrintTable(out, Text(IDS_TITLE_NOT_DELETED), result, &RunResult::left);
    std::wstring reasons;
    for (const Headline& headline : kNotDeleted) {
        const std::wstring reason = PrintNotDeleted(out, result, headline);
        if (!reason.empty() && !reasons.empty()) reasons += Text(IDS_LIST_SEPARATOR);
        reasons += reason;
    }
    if (result.found.actions != 0) out.Line(Text(IDS_ACTIONS_BECAME));
    PrintActions(out, result);
    out.Line(Text(reasons.empty() ? IDS_SUM_FREED : IDS_SUM_FREED_WITH_REASONS,
                  {FullSize(result.deleted.bytes), ItemCount(result.deleted.items), ItemCount(result.left.items),
                   FullSize(result.left.bytes), reasons}));
}

std::wstring Capitalised(std::wstring text) {
    if (!text.empty()) CharUpperBuffW(text.data(), 1);
    return text;
}

uint64_t LessBy(uint64_t number, uint64_t part) noexcept {
    return number > part ? number - part : 0;
}

// One gather, what it found shown, and the clean when that was agreed to.
class CCleanJob {
public:
    CCleanJob(const CleanOptions& options, CConsole& console)
        : m_options(options),
          m_console(console),
          m_engine(options) {}

    ExitStatus Run();

private:
    // What a clean would do, as the question names it; empty when there is nothing to do.
    std::wstring Work() const;
    void ShowFound(bool listItems);
    bool UserAgrees();
    // Puts the question, once more when something came up meanwhile. Nothing when the clean may begin.
    std::optional<ExitStatus> Agree();
    void TellNew();
    ExitStatus Clean();
    // Ends the job with nothing deleted.
    ExitStatus Leave(ExitStatus status);

    const CleanOptions& m_options;
    CConsole& m_console;
    const CCancel m_cancel;
    const CEngine m_engine;
    CWorkList m_work;  // as it was shown
};

ExitStatus CCleanJob::Run() {
    // With --yes the list of what became of the items says the same as one of what was found.
    const bool listItems = m_options.items && !m_options.json && (m_options.dryRun || !m_options.yes);
    const ExitStatus status = Gather(m_engine, m_console, m_cancel, listItems);
    m_work = CWorkList(*m_engine);
    if (!m_options.json) ShowFound(listItems);
    if (status != ExitStatus::Done || m_options.dryRun) return Leave(status);
    if (Work().empty()) {
        if (!m_options.json) m_console.out.Line(Text(IDS_NOTHING_TO_DO));
        return Leave(status);
    }
    if (const auto disagreed = Agree()) return Leave(*disagreed);
    return Clean();
}

std::wstring CCleanJob::Work() const {
    const Amount& apart = m_work.FoundApart();
    return WorkText({LessBy(m_engine->GetTotalCount(), apart.items), LessBy(m_engine->GetTotalSize(), apart.bytes)},
                    m_work.Actions());
}

void CCleanJob::ShowFound(bool listItems) {
    PrintFound(m_console.out, CollectResult(m_engine, m_work, nullptr, /*withItems=*/false), m_work, listItems);
    if (m_options.dryRun) m_console.out.Line(Text(IDS_DRY_RUN));
}

bool CCleanJob::UserAgrees() {
    const auto answer = m_console.Ask(Printable(Text(IDS_CLEAN_QUESTION, {Capitalised(Work())})), m_cancel);
    return answer && (ToLower(*answer) == L"y" || ToLower(*answer) == L"yes");
}

std::optional<ExitStatus> CCleanJob::Agree() {
    for (;;) {
        if (!m_options.yes && !UserAgrees()) {
            m_console.Complain(Text(IDS_NOTHING_DELETED));
            return ExitStatus::Stopped;
        }
        CWorkList now(*m_engine);
        if (!now.MarkNew(m_work)) return {};
        m_work = std::move(now);
        TellNew();
        if (m_options.yes) return ExitStatus::Failed;
    }
}

void CCleanJob::TellNew() {
    std::vector<Action> actions = m_work.Actions();
    std::erase_if(actions, [](const Action& action) { return action.state != ActionState::New; });
    if (!m_options.json) {
        m_console.out.Line(Text(IDS_NEW_WORK));
        for (const Action& action : actions)
            m_console.out.Line(L"    " + ActionText(action));
    }
    if (m_options.yes) m_console.Complain(Text(IDS_NEW_WORK_UNASKED, {WorkText({}, actions)}));
}

ExitStatus CCleanJob::Clean() {
    CRunView view(m_console, m_cancel, m_options.items && !m_options.json);
    CRunObserver observer(*m_engine, view);
    const ExitStatus status = view.Finish(observer.Run(&IDregsweep::Clean));
    m_work.Settle(CWorkList(*m_engine));
    const RunResult result = CollectResult(m_engine, m_work, &observer, /*withItems=*/true);
    if (m_options.json) {
        PrintRunJson(m_console.out, "clean", status, /*cleaned=*/true, result);
    } else {
        PrintResult(m_console.out, result);
    }
    return status;
}

ExitStatus CCleanJob::Leave(ExitStatus status) {
    if (m_options.json) {
        const RunResult found = CollectResult(m_engine, m_work, nullptr, /*withItems=*/true);
        PrintRunJson(m_console.out, "clean", status, /*cleaned=*/false, found);
    }
    return status;
}

ExitStatus RunClean(const CleanOptions& options, CConsole& console) {
    if (options.json && !options.yes && !options.dryRun) throw CUsageError(Text(IDS_JSON_ASKS_NOTHING));
    return CCleanJob(options, console).Run();
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
