// The engine's own time for each file of a gather and of a clean.

#include <windows.h>

#include <algorithm>
#include <string>

#include "bench/barewalk.h"
#include "bench/memoryfiles.h"
#include "bench/ownfigure.h"
#include "bench/pieces.h"
#include "bench/rows.h"

namespace {

constexpr size_t kMostFiles = 1'000'000;

OwnWork FileWork(const Bench& bench, const char* item, const char* kind, double limit) {
    return {.item = item,
            .kind = kind,
            .unit = "ns",
            .most = kMostFiles,
            .rounds = bench.RoundsOfShort(),
            .limit = limit,
            .growth = 1.5};
}

// Engines that share the most files between them, whatever the size of a run, and that are new: what the heap gives
// back between the rounds, as it does when so much is freed, has to be had from the system again, as in a host's first
// gather. Memory at hand would cost half.
class Engines {
public:
    Engines(const Bench& bench, size_t files, const std::string& rule) {
        for (size_t run = 0; run < Runs(bench, files); ++run)
            m_engines.push_back(bench.LoadEngine(OneCategory(rule)));
    }
    static size_t Runs(const Bench& bench, size_t files) {
        return std::max(bench.Scaled(kMostFiles) / files, size_t{1});
    }
    void Gather(IDregsweepCallback* host) const {
        for (const auto& engine : m_engines)
            (void)engine->Gather(host);
    }
    void Clean(IDregsweepCallback* host) const {
        for (const auto& engine : m_engines)
            (void)engine->Clean(host);
    }

private:
    std::vector<CReference<IDregsweep>> m_engines;
};

// `walk` is the floor and returns how many files it has found.
template <class Walk>
std::vector<Figure> GatherFigures(const Bench& bench, const OwnWork& work, const wchar_t* pattern,
                                  const std::string& rule, Walk walk) {
    return OwnFigures(bench, work, [&](size_t files) {
        const size_t runs = Engines::Runs(bench, files);
        const auto floor = [=, &bench] {
            const MemoryFiles memory(bench.Module(), pattern, files);
            uint64_t found = 0;
            auto pieces = PiecesOf([&] {
                for (size_t run = 0; run < runs; ++run)
                    found += walk();
            });
            RequireSame(files * runs, found, "files of the floor");
            return pieces;
        };
        const auto gather = [=, &bench, &rule] {
            const MemoryFiles memory(bench.Module(), pattern, files);
            const Engines engines(bench, files, rule);
            CountingHost host;
            auto pieces = PiecesOf([&] { engines.Gather(&host); });
            RequireSame(files * runs, host.items, "files");
            return pieces;
        };
        return OwnSides{files * runs, floor, gather};
    });
}

}  // namespace

std::vector<Figure> BenchOwnGather(Bench& bench) {
    return GatherFigures(bench, FileWork(bench, "gathered file", ", filter \"*\"", 150), L"*",
                         FolderRule(MemoryFiles::kRoot, R"(Iteration="1")"),
                         [] { return BareWalk::All(MemoryFiles::kRoot).items; });
}

std::vector<Figure> BenchOwnPattern(Bench& bench) {
    return GatherFigures(bench, FileWork(bench, "gathered file", ", filter \"*.tmp\", exclusions", 150), L"*.tmp",
                         PatternRule(MemoryFiles::kRoot),
                         [] { return BareWalk::Matching(MemoryFiles::kRoot, L"*.tmp").items; });
}

std::vector<Figure> BenchOwnClean(Bench& bench) {
    return OwnFigures(bench, FileWork(bench, "cleaned file", "", 60), [&](size_t files) {
        const size_t all = files * Engines::Runs(bench, files);
        const auto floor = [=, &bench] {
            const MemoryFiles memory(bench.Module(), L"*", files);
            return PiecesOf([&] {
                for (size_t n = 0; n < all; ++n)
                    DeleteFileW(MemoryFiles::kRoot);
            });
        };
        const auto clean = [=, &bench] {
            const MemoryFiles memory(bench.Module(), L"*", files);
            const Engines engines(bench, files, FolderRule(MemoryFiles::kRoot, R"(Iteration="1")"));
            engines.Gather(nullptr);
            CountingHost host;
            auto pieces = PiecesOf([&] { engines.Clean(&host); });
            RequireSame(all, host.items, "deleted");
            return pieces;
        };
        return OwnSides{all, floor, clean};
    });
}
