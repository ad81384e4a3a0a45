// What a gather of ever more files needs: memory for each found item, and whether time and memory grow in a straight
// line.

#include <cwchar>
#include <string>

#include "bench/barewalk.h"
#include "bench/rows.h"

namespace {

class TextHost final : public CountingHost {
public:
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override {
        textBytes += std::wcslen(path) * sizeof(wchar_t);
        return CountingHost::FoundItem(path, size, category);
    }
    uint64_t textBytes = 0;  // with neither terminators nor anything else
};

std::string PerFile(double value, const char* unit) {
    return Fixed(value, 2) + ' ' + unit;
}

// The engine keeps what it found, and is returned so that it goes on keeping it: memory that was given back would serve
// the next measurement without being seen.
CReference<IDregsweep> MeasureMemory(const Bench& bench, const std::wstring& folder, std::vector<Figure>& figures) {
    auto engine = bench.LoadEngine(OneCategory(FolderRule(folder, R"(Iteration="1")")));
    TextHost host;
    const uint64_t before = PrivateBytes();
    (void)engine->Gather(&host);
    const auto grown = static_cast<double>(PrivateBytes() - before);
    const auto items = static_cast<double>(host.items);
    const double text = static_cast<double>(host.textBytes) / items;
    figures.push_back({.work = "private bytes per found item beside its text, " + Thousands(host.items) + " items",
                       .floor = PerFile(text, "bytes of text"),
                       .engine = PerFile(grown / items, "bytes"),
                       .values = {grown / items - text},
                       .unit = "bytes",
                       .limit = 100});
    return engine;
}

Figure MeasureTime(const Bench& bench, IDregsweep& engine, const std::wstring& folder) {
    CountingHost host;
    WalkCount floor;
    const Rounds rounds = Alternate(
        bench.Rounds(), [&] { return Seconds([&] { floor = BareWalk::All(folder.c_str()); }); },
        [&] {
            host.items = 0;
            return Seconds([&] { (void)engine.Gather(&host); });
        });
    RequireSame(floor.items, host.items, "files");
    const double microseconds = 1e6 / static_cast<double>(host.items);
    return {.work = "gather " + Thousands(host.items) + " files",
            .floor = PerFile(Median(rounds.floor) * microseconds, "us a file"),
            .engine = PerFile(Median(rounds.engine) * microseconds, "us a file"),
            .values = rounds.Ratios(),
            .unit = {}};
}

}  // namespace

std::vector<Figure> BenchGrowth(Bench& bench) {
    FileTree& tree = bench.Tree();
    const std::wstring folders[] = {tree.TenThousand(), tree.HundredThousand(), tree.Million()};
    // Whatever is made once, on the first use, is made here.
    (void)bench.LoadEngine(OneCategory(FolderRule(folders[0] + L"\\folder0", "")))->Gather(nullptr);

    std::vector<Figure> figures;
    std::vector<CReference<IDregsweep>> engines;
    for (const std::wstring& folder : folders)
        engines.push_back(MeasureMemory(bench, folder, figures));
    for (size_t i = 0; i < engines.size(); ++i)
        figures.push_back(MeasureTime(bench, *engines[i], folders[i]));
    return figures;
}
