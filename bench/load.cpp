// Loading a rule file, and the names of its nodes.

#include <windows.h>
#include <shlobj.h>
#include <tinyxml.h>

#include <cstdio>
#include <memory>
#include <string>

#include "bench/rows.h"
#include "host/hosterror.h"

namespace {

struct StreamCloser {
    void operator()(std::FILE* stream) const noexcept { static_cast<void>(std::fclose(stream)); }
};

void Parse(const std::wstring& path, TiXmlDocument& document) {
    const std::unique_ptr<std::FILE, StreamCloser> stream(_wfopen(path.c_str(), L"rb"));
    if (!stream || !document.LoadFile(stream.get())) throw CHostError(L"cannot parse " + path);
}

std::string Numbered(const char* before, size_t number, const char* after) {
    return before + std::to_string(number) + after;
}

// What ten rules in a row look like, by their number's last digit: seven name a folder by an environment variable, one
// of them with a loop and one with exclusions, one by a shell folder, one by a registry value, and one is a registry
// rule. All that they name is what every Windows has.
std::string MixedRule(size_t n) {
    const std::string path =
        Numbered(R"(Path="Vendor Name\Product Line\Version )", n,
                 R"(\User Data\Default\Service Worker\Storage\Cached Files of the Product Itself")");
    const std::string common =
        path
        + R"( IsFolder="1" Iteration="1" Filter="*.cache;*.tmp" ExcludeFilter="keep_|session|.lock|index" )"
          R"(SelState="2" SelfExclude="0" UseShellBrowse="0" )";
    switch (n % 10) {
        case 0:
            return R"(<GarbageInfo FolderIndex="28" )" + common + "/>";
        case 1:
            return R"(<GarbageInfo RootKey="HKLM" GetByReg="1" Path="Software\Microsoft\Windows NT\CurrentVersion" )"
                   R"(Value="SystemRoot" IsFolder="1" Iteration="1" Filter="*.log" SelState="2"/>)";
        case 2:
            return R"(<GarbageInfo Registry="1" RootKey="HKCU" KeyPath="Software\Vendor Name\Product Line\Version )"
                   + std::to_string(n)
                   + R"(\Recent Documents" Filter="Most Recently Used" Iteration="1" Value="MRUList|a|b|c"/>)";
        case 3:
            return R"(<GarbageInfo FolderEnvDir="LOCALAPPDATA" LoopPath="1" )" + common
                   + R"(><LoopPath Path="*" AddPath="User Data"/><LoopPath Path="Profile*"/>)"
                     R"(<LoopPath TerminalPath="Cache|Code Cache|GPUCache" ExactMatch="1"/></GarbageInfo>)";
        case 4:
            return R"(<GarbageInfo FolderEnvDir="USERPROFILE" ExcludePath="1" )" + common
                   + R"(><ExcludePath Path="\Cached Files\Keep" ExactMatch="1" Iteration="1"/>)"
                     R"(<ExcludePath Path="_mei"/></GarbageInfo>)";
        case 5:
            return R"(<GarbageInfo FolderEnvDir="APPDATA" )" + common + "/>";
        case 6:
            return R"(<GarbageInfo FolderEnvDir="SystemRoot" )" + common + "/>";
        default:
            return R"(<GarbageInfo FolderEnvDir="LOCALAPPDATA" )" + common + "/>";
    }
}

// The platform calls that one such rule needs.
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

std::string MixedRules(size_t count) {
    std::string rules;
    for (size_t n = 0; n < count; ++n) {
        if (n % 100 == 0)
            rules += Numbered(R"(<AppCategoryInfo SelState="2" CatagoryType="2" Name="Category )", n, "\">\n");
        if (n % 20 == 0) rules += Numbered(R"(<AppInfo ProductName="Some Product" Name="Product )", n, "\">\n");
        if (n % 5 == 0) rules += Numbered(R"(<GarbageCatagory Name="Garbage )", n, "\">\n");
        rules +=
            Numbered("  <!-- Files that version ", n,
                     " of the product makes anew by itself when they are gone: it starts a little slower once, and "
                     "fetches again over the network what it had kept. -->\n  ")
            + MixedRule(n) + "\n";
        if (n % 5 == 4) rules += "</GarbageCatagory>\n";
        if (n % 20 == 19) rules += "</AppInfo>\n";
        if (n % 100 == 99) rules += "</AppCategoryInfo>\n";
    }
    return rules;
}

// Init answers 0 for a file that it cannot read, too.
size_t CountCategories(IDregsweep& engine) {
    size_t count = 0;
    CReference<IAppCatagory> category(engine.GetFirstCategory());
    for (; category; ++count)
        category = CReference<IAppCatagory>(engine.GetNextCategory(category.get()));
    return count;
}

}  // namespace

std::vector<Figure> BenchLoad(Bench& bench) {
    const size_t count = bench.Scaled(4'000) / 100 * 100 + (bench.Scaled(4'000) < 100 ? 100 : 0);
    const std::string rules = "<Rules>" + MixedRules(count) + "</Rules>";
    const std::wstring path = WriteBenchFile(L"rules.xml", rules);
    const auto floor = [&] {
        return Seconds([&] {
            TiXmlDocument document;
            Parse(path, document);
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
    // 50 categories of 9 applications of 10 garbage categories.
    const size_t categories = bench.Scaled(50);
    std::string rules;
    std::string texts;
    size_t keys = 0;
    const auto node = [&](const std::string& element) {
        const std::string key = Numbered("TextOfNode", keys++, "");
        texts +=
            "    <" + key + ">" + Numbered("The name of the node ", keys, " in another language") + "</" + key + ">\n";
        rules += "<" + element + " Name=\"x\" ResID=\"" + key + "\">";
    };
    for (size_t c = 0; c < categories; ++c) {
        node("AppCategoryInfo");
        for (int a = 0; a < 9; ++a) {
            node("AppInfo");
            for (int g = 0; g < 10; ++g) {
                node("GarbageCatagory");
                rules += "</GarbageCatagory>";
            }
            rules += "</AppInfo>";
        }
        rules += "</AppCategoryInfo>\n";
    }
    const std::wstring path =
        WriteBenchFile(L"ResIDText.xml", "<R>\n  <Dregsweep>\n" + texts + "  </Dregsweep>\n</R>\n");
    const auto engine = bench.LoadEngine(rules);
    const auto floor = [&] {
        return Seconds([&] {
            TiXmlDocument document;
            Parse(path, document);
        });
    };
    const auto localise = [&] { return Seconds([&] { (void)engine->ChangeResID(path.c_str(), nullptr); }); };
    const Rounds rounds = Alternate(bench.RoundsOfShort(), floor, localise);
    const CReference<IAppCatagory> first(engine->GetFirstCategory());
    if (first->GetInfo()->NameText != std::wstring(L"The name of the node 1 in another language"))
        throw CHostError(L"the nodes were not localised");
    return {RatioFigure("localise " + Thousands(keys) + " nodes from " + Thousands(keys) + " entries", rounds, 1.3)};
}
