// Loading a rule file, and the names of its nodes.

#include <windows.h>
#include <shlobj.h>

#include <string>

#include "bench/rows.h"
#include "bench/rulefile.h"

namespace {

// The platform calls that one of MixedRules needs.
void LocateMixedRule(size_t n) {
    wchar_t buffer[MAX_PATH];
    switch (n % 10) {
        case 0:
            (void)SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, buffer);
            break;
        case 1: {
            HKEY key = nullptr;
            DWORD bytes = sizeof buffer;
            if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion", 0, KEY_READ, &key)
                != 0)
                break;
            RegQueryValueExW(key, L"SystemRoot", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &bytes);
            RegCloseKey(key);
            break;
        }
        case 2:
            break;
        case 4:
            GetEnvironmentVariableW(L"USERPROFILE", buffer, MAX_PATH);
            break;
        case 5:
            GetEnvironmentVariableW(L"APPDATA", buffer, MAX_PATH);
            break;
        case 6:
            GetEnvironmentVariableW(L"SystemRoot", buffer, MAX_PATH);
            break;
        default:
            GetEnvironmentVariableW(L"LOCALAPPDATA", buffer, MAX_PATH);
            break;
    }
}

}  // namespace

std::vector<Figure> BenchLoad(Bench& bench) {
    const size_t count = bench.Scaled(4'000) / 100 * 100 + (bench.Scaled(4'000) < 100 ? 100 : 0);
    const std::string rules = "<Rules>" + MixedRules(count) + "</Rules>";
    const std::wstring path = WriteBenchFile(L"rules.xml", rules);
    const auto floor = [&] {
        return Seconds([&] {
            ParseXml(path);
            for (size_t n = 0; n < count; ++n)
                LocateMixedRule(n);
        });
    };
    const auto load = [&] {
        const CReference<IDregsweep> engine = bench.NewEngine();
        uint64_t code = 1;
        const double seconds = Seconds([&] { code = engine->Init(path.c_str(), L"", nullptr); });
        RequireSame(0, code, "result of Init");
        RequireSame(count / 100, CountCategories(*engine), "categories");
        return seconds;
    };
    return {RatioFigure("load a rule file of " + Thousands(count) + " rules, " + Thousands(rules.size()) + " bytes",
                        Alternate(bench.RoundsOfShort(), floor, load), 1.15)};
}

std::vector<Figure> BenchLocalise(Bench& bench) {
    const NamedNodes nodes(bench.Scaled(50));
    const std::wstring path = WriteBenchFile(L"ResIDText.xml", nodes.texts);
    const auto engine = bench.LoadEngine(nodes.rules);
    const auto floor = [&] { return Seconds([&] { ParseXml(path); }); };
    const auto localise = [&] { return Seconds([&] { (void)engine->ChangeResID(path.c_str(), nullptr); }); };
    const Rounds rounds = Alternate(bench.RoundsOfShort(), floor, localise);
    RequireLocalised(*engine);
    return {RatioFigure("localise " + Thousands(nodes.count) + " nodes from " + Thousands(nodes.count) + " entries",
                        rounds, 1.3)};
}
