// How long a run goes on after the host's false.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/rows.h"
#include "host/common/hosterror.h"

namespace {

class StoppingHost final : public CountingHost {
public:
    explicit StoppingHost(uint64_t stopAt) : m_stopAt(stopAt) {}
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override {
        return CountingHost::FoundItem(path, size, category) && GoOn();
    }
    bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) override {
        return CountingHost::EmptiedItem(path, size, category, removed) && GoOn();
    }
    double stoppedAt = 0;

private:
    bool GoOn() {
        if (items < m_stopAt) return true;
        stoppedAt = Now();
        return false;
    }
    const uint64_t m_stopAt;
};

}  // namespace

std::vector<Figure> BenchCancel(Bench& bench) {
    const size_t files = bench.Scaled(100'000);
    const std::wstring folder = L"C:\\bench\\large";
    MakeFolders(folder);
    FillFolder(folder, files);
    const auto everything = bench.LoadEngine(OneCategory(FolderRule(folder, R"(Iteration="1")")));
    const auto pattern = bench.LoadEngine(OneCategory(FolderRule(folder, R"(Iteration="1" Filter="item_*")")));
    std::vector<double> gather;
    std::vector<double> clean;
    const auto stop = [](auto run, uint64_t at, std::vector<double>& times) {
        StoppingHost host(at);
        if (run(host)) throw CHostError(L"the run was not stopped");
        times.push_back((Now() - host.stoppedAt) * 1000);
    };
    for (int round = 0; round < bench.Rounds(); ++round) {
        for (const uint64_t at : {uint64_t{1}, files / 4, files / 2, files * 3 / 4, files * 9 / 10}) {
            for (IDregsweep* engine : {everything.get(), pattern.get()})
                stop([engine](StoppingHost& host) { return engine->Gather(&host); }, at, gather);
        }
    }
    (void)everything->Gather(nullptr);
    // Each goes on where the one before it has stopped.
    for (const uint64_t more : {uint64_t{1}, files / 4, files / 4, files / 4, files / 10})
        stop([&](StoppingHost& host) { return everything->Clean(&host); }, more, clean);
    const auto figure = [&](const char* run, std::vector<double> times) {
        return Figure{.work = std::string("from the host's false to the return of a ") + run + ", " + Thousands(files)
                              + " entries",
                      .floor = {},
                      .engine = "longest " + Fixed(*std::max_element(times.begin(), times.end()), 2) + " ms",
                      .values = std::move(times),
                      .unit = "ms",
                      .limit = 5,
                      .limitsAll = true};
    };
    return {figure("gather", gather), figure("clean", clean)};
}
