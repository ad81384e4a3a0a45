// Gathering: one rule over a large tree, the same with a pattern and exclusions, and many rules over one folder.

#include <string>

#include "bench/barewalk.h"
#include "bench/rows.h"

namespace {

// Gathers with the engine; returns the seconds.
double Gather(IDregsweep& engine, CountingHost& host) {
    host.items = host.bytes = 0;
    return Seconds([&] { (void)engine.Gather(&host); });
}

std::string FilesText(const FileTree& tree) {
    return Thousands(2000 * tree.FilesPerFolder()) + " files in 2,000 folders";
}

}  // namespace

std::vector<Figure> BenchGather(Bench& bench) {
    const std::wstring folder = bench.Tree().TwoHundredThousand();
    const auto engine = bench.LoadEngine(OneCategory(FolderRule(folder, R"(Iteration="1")")));
    CountingHost host;
    WalkCount floor;
    const Rounds rounds = Alternate(
        bench.Rounds(), [&] { return Seconds([&] { floor = BareWalk::All(folder.c_str()); }); },
        [&] { return Gather(*engine, host); });
    RequireSame(floor.items, host.items, "files");
    RequireSame(floor.bytes, host.bytes, "bytes");
    RequireSame(floor.bytes, engine->GetTotalSize(), "total");
    return {RatioFigure("gather " + FilesText(bench.Tree()) + ", filter \"*\"", rounds, 1.15)};
}

std::vector<Figure> BenchPattern(Bench& bench) {
    const std::wstring folder = bench.Tree().TwoHundredThousand();
    const auto engine = bench.LoadEngine(OneCategory(PatternRule(folder)));
    CountingHost host;
    WalkCount floor;
    const Rounds rounds = Alternate(
        bench.Rounds(), [&] { return Seconds([&] { floor = BareWalk::Matching(folder.c_str(), L"*.tmp"); }); },
        [&] { return Gather(*engine, host); });
    // One folder has at most one file with a kept token.
    RequireSame(floor.items, host.items + 2000, "files and kept files");
    return {RatioFigure("the same, filter \"*.tmp\", exclusions and four kept tokens", rounds, 1.25)};
}

std::vector<Figure> BenchManyRules(Bench& bench) {
    const std::wstring folder = L"C:\\bench\\one";
    const size_t files = bench.Scaled(10'000);
    MakeFolders(folder);
    FillFolder(folder, files);
    constexpr int kRules = 200;
    static const wchar_t* const kPatterns[] = {L"*.tmp", L"item_1*", L"*.log", L"*5*.dat", L"keep_*"};
    std::string rules;
    for (int i = 0; i < kRules; ++i) {
        rules += FolderRule(folder,
                            "Filter=\"" + WideToUtf8(kPatterns[static_cast<size_t>(i) % std::size(kPatterns)]) + "\"");
    }
    const auto engine = bench.LoadEngine(OneCategory(rules));
    CountingHost host;
    uint64_t found = 0;
    const auto walkAll = [&] {
        found = 0;
        for (int i = 0; i < kRules; ++i)
            found +=
                BareWalk::OneFolder(folder.c_str(), kPatterns[static_cast<size_t>(i) % std::size(kPatterns)]).items;
    };
    const Rounds rounds = Alternate(
        bench.Rounds(), [&] { return Seconds(walkAll); }, [&] { return Gather(*engine, host); });
    RequireSame(found, host.items, "files");
    return {RatioFigure("200 rules over one folder of " + Thousands(files) + " files", rounds, 1.15)};
}
