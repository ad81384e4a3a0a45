#include "bench/rulefile.h"

#include <tinyxml.h>

#include <cstdio>
#include <memory>

#include "host/common/hosterror.h"
#include "sysservices/reference.h"

namespace {

struct StreamCloser {
    void operator()(std::FILE* stream) const noexcept { static_cast<void>(std::fclose(stream)); }
};

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

}  // namespace

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

NamedNodes::NamedNodes(size_t categories) {
    for (size_t c = 0; c < categories; ++c) {
        Open("AppCategoryInfo");
        for (int a = 0; a < 9; ++a) {
            Open("AppInfo");
            for (int g = 0; g < 10; ++g) {
                Open("GarbageCatagory");
                rules += "</GarbageCatagory>";
            }
            rules += "</AppInfo>";
        }
        rules += "</AppCategoryInfo>\n";
    }
    texts = "<R>\n  <Dregsweep>\n" + texts + "  </Dregsweep>\n</R>\n";
}

void NamedNodes::Open(const std::string& element) {
    const std::string key = Numbered("TextOfNode", count++, "");
    texts +=
        "    <" + key + ">" + Numbered("The name of the node ", count, " in another language") + "</" + key + ">\n";
    rules += "<" + element + " Name=\"x\" ResID=\"" + key + "\">";
}

void ParseXml(const std::wstring& path) {
    const std::unique_ptr<std::FILE, StreamCloser> stream(_wfopen(path.c_str(), L"rb"));
    TiXmlDocument document;
    if (!stream || !document.LoadFile(stream.get())) throw CHostError(L"cannot parse " + path);
}

size_t CountCategories(IDregsweep& engine) {
    size_t count = 0;
    CReference<IAppCatagory> category(engine.GetFirstCategory());
    for (; category; ++count)
        category = CReference<IAppCatagory>(engine.GetNextCategory(category.get()));
    return count;
}

void RequireLocalised(IDregsweep& engine) {
    const CReference<IAppCatagory> first(engine.GetFirstCategory());
    if (first->GetInfo()->NameText != std::wstring(L"The name of the node 1 in another language"))
        throw CHostError(L"the nodes were not localised");
}
