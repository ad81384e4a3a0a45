// Cleaning: files that a gather has found.

#include <windows.h>

#include <string>

#include "bench/rows.h"

namespace {

constexpr size_t kFilesPerFolder = 100;

std::wstring MakeFiles(size_t count) {
    const std::wstring root = L"C:\\bench\\clean";
    for (size_t folder = 0; folder < count / kFilesPerFolder; ++folder) {
        const std::wstring path = root + L"\\folder" + std::to_wstring(folder);
        MakeFolders(path);
        FillFolder(path, kFilesPerFolder);
    }
    return root;
}

class NamingHost final : public CountingHost {
public:
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override {
        names.emplace_back(path);
        return CountingHost::FoundItem(path, size, category);
    }
    std::vector<std::wstring> names;
};

}  // namespace

std::vector<Figure> BenchClean(Bench& bench) {
    const size_t count = bench.Scaled(50'000);
    const auto engine = bench.LoadEngine(OneCategory(FolderRule(MakeFiles(count), R"(Iteration="1")")));
    // The floor deletes the same names in the same order.
    NamingHost found;
    (void)engine->Gather(&found);
    uint64_t floorDeleted = 0;
    CountingHost host;
    // Both sides delete what has just been made and gathered.
    const auto prepare = [&] {
        MakeFiles(count);
        (void)engine->Gather(nullptr);
    };
    const auto floor = [&] {
        prepare();
        floorDeleted = 0;
        return Seconds([&] {
            for (const std::wstring& name : found.names)
                floorDeleted += DeleteFileW(name.c_str()) != FALSE;
        });
    };
    const auto clean = [&] {
        prepare();
        host.items = 0;
        return Seconds([&] { (void)engine->Clean(&host); });
    };
    const Rounds rounds = Alternate(bench.Rounds(), floor, clean);
    RequireSame(floorDeleted, host.items, "deleted");
    return {RatioFigure("clean " + Thousands(count) + " files", rounds, 1.05)};
}
