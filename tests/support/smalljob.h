#pragma once

#include <windows.h>

#include <algorithm>

#include "sysservices/reference.h"
#include "sysservices/text.h"
#include "tests/support/recordinghost.h"
#include "tests/support/tempfolder.h"

// A small job with real files, one registry value, and every kind of notification. Its rules find its folder by the
// environment variable DSW_JOB. The bystander is found by an unselected rule only: it survives everything.
struct SmallJob {
    static constexpr const wchar_t* kFiles[] = {L"a\\1.tmp", L"a\\2.tmp", L"b\\3.log", L"c\\4.dat"};
    static constexpr size_t kSizes[] = {10, 20, 5, 7};
    const std::string key = "Software\\DswTest" + std::to_string(GetCurrentProcessId());

    SmallJob() {
        SetEnvironmentVariableW(L"DSW_JOB", folder.path().c_str());
        Seed();
    }
    ~SmallJob() { RegDeleteKeyW(HKEY_CURRENT_USER, Utf8ToWide(key).c_str()); }

    // Puts all files and the registry value (back) in place.
    void Seed() const {
        for (size_t i = 0; i < std::size(kFiles); ++i)
            folder.Write(kFiles[i], std::string(kSizes[i], 'x'));
        folder.Write(L"bystander\\5.dat");
        RegSetKeyValueW(HKEY_CURRENT_USER, Utf8ToWide(key).c_str(), L"v", REG_SZ, L"x", 4);
    }
    bool HasRegistryValue() const {
        return !RegGetValueW(HKEY_CURRENT_USER, Utf8ToWide(key).c_str(), L"v", RRF_RT_ANY, nullptr, nullptr, nullptr);
    }
    bool HasBystander() const { return folder.Has(L"bystander\\5.dat"); }
    // How many of the four files that the selected rules find are there.
    ptrdiff_t FilesLeft() const {
        return std::count_if(std::begin(kFiles), std::end(kFiles), [this](auto* name) { return folder.Has(name); });
    }

    static constexpr uint64_t kTotalSize = 42;

    // Every notification of a whole run, in order. Here "-" and "*" stand for
    // "progress ", the second for the range of a rule, which it reports in a gather only.
    static Lines Expected(bool clean) {
        Lines all;
        for (const std::wstring& line : Split(
                 L"-0-50|3 A|-0-25|2 A1|-0-12|1 G1|*0-12|found a\\1.tmp 10 G1|found a\\2.tmp 20 G1|-12-25|1 G2|*12-25|"
                 L"found b\\3.log 5 G2|-25-50|2 A2|-25-50|1 G3|*25-50|-50-100|3 B|-50-100|2 B1|-50-100|1 G5|*50-75|"
                 L"found c\\4.dat 7 G5|*75-100",
                 L"|")) {
            if (line[0] == L'-' || (line[0] == L'*' && !clean)) all.push_back(L"progress " + line.substr(1));
            if (line[0] == L'f') all.push_back(clean ? L"emptied" + line.substr(5) + L" 1" : line);
            if (iswdigit(line[0])) all.push_back(line);
        }
        return all;
    }

    const TempFolder folder;
    const std::wstring rules =
        folder.Write(L"rules.xml", R"(<Rules>
<AppCategoryInfo Name="not A" ResID="KeyOfA" SelState="2"><AppInfo Name="A1">
<GarbageCatagory Name="G1"><GarbageInfo FolderEnvDir="DSW_JOB" Path="a" IsFolder="1"/></GarbageCatagory>
<GarbageCatagory Name="G2"><GarbageInfo FolderEnvDir="DSW_JOB" Path="b\3.log"/></GarbageCatagory></AppInfo>
<AppInfo Name="A2"><GarbageCatagory Name="G3"><GarbageInfo FolderEnvDir="DSW_JOB" Path="none" IsFolder="1"/>
</GarbageCatagory></AppInfo></AppCategoryInfo><AppCategoryInfo Name="U" SelState="0"><AppInfo Name="U1">
<GarbageCatagory Name="G4"><GarbageInfo FolderEnvDir="DSW_JOB" Path="bystander" IsFolder="1"/></GarbageCatagory>
</AppInfo></AppCategoryInfo><AppCategoryInfo Name="B" SelState="2"><AppInfo Name="B1"><GarbageCatagory Name="G5">
<GarbageInfo FolderEnvDir="DSW_JOB" Path="c" IsFolder="1"/>
<GarbageInfo Registry="1" RootKey="HKCU" Value="v" KeyPath=")"
                                       + key + R"("/></GarbageCatagory></AppInfo></AppCategoryInfo></Rules>)");
    const std::wstring texts = folder.Write(L"text.xml", "<R><Dregsweep><KeyOfA>A</KeyOfA></Dregsweep></R>");
};

// The children of a node, each with a reference; the engine's are its categories.
template <class Node>
auto ChildrenOf(Node& node) {
    std::vector<CReference<std::remove_pointer_t<decltype(node.GetFirstChild())>>> children;
    for (CReference child(node.GetFirstChild()); child; child = CReference(node.GetNextChild(children.back().get())))
        children.push_back(std::move(child));
    return children;
}

template <class Act>
void ForEachRule(IDregsweep& engine, Act act) {
    for (const auto& category : ChildrenOf(engine))
        for (const auto& app : ChildrenOf(*category))
            for (const auto& garbage : ChildrenOf(*app))
                for (const auto& rule : ChildrenOf(*garbage))
                    act(*rule);
}

// The names of all children, each followed by ";".
template <class Node>
std::wstring NamesOf(Node& node) {
    std::wstring names;
    for (const auto& child : ChildrenOf(node))
        names += child->GetInfo()->NameText + std::wstring(L";");
    return names;
}
