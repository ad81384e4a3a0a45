// A loop rule: the folders of many profiles, three steps, terminal paths.

#include <windows.h>

#include <cwchar>
#include <string>

#include "bench/barewalk.h"
#include "bench/rows.h"
#include "host/common/hosterror.h"
#include "sysservices/filesearch.h"

namespace {

constexpr wchar_t kRoot[] = L"C:\\bench\\profiles";

// profiles\userN\Local\Vendor\Profile\{Cache, Code Cache, Settings\Old}: two of four folders at the end are terminal.
void MakeProfiles(size_t count) {
    for (size_t n = 0; n < count; ++n) {
        const std::wstring profile = kRoot + (L"\\user" + std::to_wstring(n)) + L"\\Local\\Vendor\\Profile";
        for (const wchar_t* folder : {L"\\Cache", L"\\Code Cache", L"\\Settings\\Old"})
            MakeFolders(profile + folder);
        for (const wchar_t* folder : {L"\\Cache", L"\\Code Cache"}) {
            for (int file = 0; file < 3; ++file)
                MakeFile(profile + folder + L"\\data_" + std::to_wstring(file), 0);
        }
    }
}

// The same searches without an engine: a step of the loop is one search, and so is every folder on the way to a
// terminal one.
class ProfileWalk {
public:
    uint64_t Run() {
        wcscpy(m_path, kRoot);
        Step(m_path + std::wcslen(kRoot), 0);
        return m_files;
    }

private:
    static wchar_t* Append(wchar_t* end, const wchar_t* name) {
        const size_t length = std::wcslen(name);
        *end = L'\\';
        std::wmemcpy(end + 1, name, length + 1);
        return end + 1 + length;
    }

    template <class Visit>
    void EachFolder(wchar_t* end, const wchar_t* pattern, Visit visit) {
        WIN32_FIND_DATAW entry;
        Append(end, pattern);
        const HANDLE search = FindFirstFileW(m_path, &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            constexpr DWORD kKinds = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
            if ((entry.dwFileAttributes & kKinds) == FILE_ATTRIBUTE_DIRECTORY && entry.cFileName[0] != L'.')
                visit(Append(end, entry.cFileName), entry.cFileName);
        } while (FindNextFileW(search, &entry));
        FindClose(search);
    }

    void Step(wchar_t* end, int step) {
        static const wchar_t* const kPatterns[] = {L"user*", L"V*", L"Pro*"};
        if (step == 3) return Terminal(end);
        EachFolder(end, kPatterns[step], [&](wchar_t* below, const wchar_t*) {
            Step(step == 0 ? Append(below, L"Local") : below, step + 1);
        });
    }

    void Terminal(wchar_t* end) {
        EachFolder(end, L"*", [&](wchar_t* below, const wchar_t* name) {
            if (_wcsicmp(name, L"cache") == 0 || _wcsicmp(name, L"code cache") == 0)
                CountFiles();
            else
                Terminal(below);
        });
    }

    void CountFiles() { m_files += BareWalk::All(m_path).items; }

    uint64_t m_files = 0;
    wchar_t m_path[MAX_PATH] = {};
};

}  // namespace

std::vector<Figure> BenchLoop(Bench& bench) {
    const size_t profiles = bench.Scaled(5'000);
    MakeProfiles(profiles);
    const auto engine = bench.LoadEngine(
        OneCategory(FolderRule(kRoot, R"(Iteration="1" LoopPath="1")",
                               R"(<LoopPath Path="user*" AddPath="Local"/><LoopPath Path="V*"/><LoopPath Path="Pro*"/>)"
                               R"(<LoopPath TerminalPath="Cache|Code Cache" ExactMatch="1"/>)")));
    CountingHost host;
    uint64_t files = 0;
    const Rounds rounds = Alternate(
        bench.Rounds(), [&] { return Seconds([&] { files = ProfileWalk().Run(); }); },
        [&] {
            host.items = 0;
            return Seconds([&] { (void)engine->Gather(&host); });
        });
    RequireSame(files, host.items, "files");
    RequireSame(profiles * 6, host.items, "files");
    return {RatioFigure("loop rule over " + Thousands(profiles) + " profile folders, three steps, terminal paths",
                        rounds, 1.2)};
}
