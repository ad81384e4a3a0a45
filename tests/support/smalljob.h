#pragma once

#include <windows.h>

#include <string>

#include "sysservices/reference.h"
#include "sysservices/text.h"
#include "tests/support/recordinghost.h"
#include "tests/support/tempfolder.h"

// A small job with real files, one registry value, and every kind of notification. Its rules find its folder by the
// environment variable DSW_JOB. The bystander is found by an unselected rule only: it survives everything.
class SmallJob {
public:
    SmallJob() {
        SetEnvironmentVariableW(L"DSW_JOB", folder.path().c_str());
        Seed();
    }
    ~SmallJob() { RegDeleteKeyW(HKEY_CURRENT_USER, Utf8ToWide(m_key).c_str()); }
    SmallJob(const SmallJob&) = delete;
    SmallJob& operator=(const SmallJob&) = delete;

    // Puts all files and the registry value (back) in place.
    void Seed() const {
        folder.Write(L"a\\1.tmp", std::string(10, 'x'));
        folder.Write(L"a\\2.tmp", std::string(20, 'x'));
        folder.Write(L"b\\3.log", std::string(5, 'x'));
        folder.Write(L"c\\4.dat", std::string(7, 'x'));
        folder.Write(L"bystander\\5.dat");
        RegSetKeyValueW(HKEY_CURRENT_USER, Utf8ToWide(m_key).c_str(), L"v", REG_SZ, L"x", 4);
    }
    bool HasRegistryValue() const {
        return RegGetValueW(HKEY_CURRENT_USER, Utf8ToWide(m_key).c_str(), L"v", RRF_RT_ANY, nullptr, nullptr, nullptr)
               == ERROR_SUCCESS;
    }
    bool HasBystander() const { return folder.Has(L"bystander\\5.dat"); }
    // How many of the four files that the selected rules find are there.
    size_t FilesLeft() const {
        size_t left = 0;
        for (const wchar_t* name : {L"a\\1.tmp", L"a\\2.tmp", L"b\\3.log", L"c\\4.dat"})
            left += folder.Has(name);
        return left;
    }

    static constexpr uint64_t kTotalSize = 42;

    // Every notification of a whole run, in order.
    static Lines Expected(bool clean) {
        Lines all = Split(
            L"progress 0-50|3 A|progress 0-25|2 A1|progress 0-12|1 G1|progress 0-12|found a\\1.tmp 10 G1|"
            L"found a\\2.tmp 20 G1|progress 12-25|1 G2|progress 12-25|found b\\3.log 5 G2|progress 25-50|2 A2|"
            L"progress 25-50|1 G3|progress 25-50|progress 50-100|3 B|progress 50-100|2 B1|progress 50-100|1 G5|"
            L"progress 50-75|found c\\4.dat 7 G5|progress 75-100",
            L"|");
        for (std::wstring& line : all) {
            if (clean && line.starts_with(L"found ")) line = L"emptied " + line.substr(6) + L" 1";
        }
        return all;
    }
    static constexpr size_t kNotifications = 27;
    // The first notification of the last category, which holds the registry rule.
    static constexpr size_t kFirstOfLastCategory = 18;

private:
    const std::string m_key = "Software\\DswTest" + std::to_string(GetCurrentProcessId());

public:
    const TempFolder folder;
    const std::wstring rules = folder.Write(L"rules.xml", R"(<Rules>
  <AppCategoryInfo Name="not A" ResID="KeyOfA" SelState="2">
    <AppInfo Name="A1" InBuildProgram="1">
      <GarbageCatagory Name="G1"><GarbageInfo FolderEnvDir="DSW_JOB" Path="a" IsFolder="1"/></GarbageCatagory>
      <GarbageCatagory Name="G2"><GarbageInfo FolderEnvDir="DSW_JOB" Path="b\3.log"/></GarbageCatagory>
    </AppInfo>
    <AppInfo Name="A2" InBuildProgram="1">
      <GarbageCatagory Name="G3"><GarbageInfo FolderEnvDir="DSW_JOB" Path="none" IsFolder="1"/></GarbageCatagory>
    </AppInfo>
  </AppCategoryInfo>
  <AppCategoryInfo Name="U" SelState="0">
    <AppInfo Name="U1"><GarbageCatagory Name="G4">
      <GarbageInfo FolderEnvDir="DSW_JOB" Path="bystander" IsFolder="1"/>
    </GarbageCatagory></AppInfo>
  </AppCategoryInfo>
  <AppCategoryInfo Name="B" SelState="2">
    <AppInfo Name="B1" InBuildProgram="1"><GarbageCatagory Name="G5">
      <GarbageInfo FolderEnvDir="DSW_JOB" Path="c" IsFolder="1"/>
      <GarbageInfo Registry="1" RootKey="HKCU" Value="v" KeyPath=")"
                                                              + m_key + R"("/>
    </GarbageCatagory></AppInfo>
  </AppCategoryInfo>
</Rules>)");
    const std::wstring texts = folder.Write(L"text.xml", "<R><Dregsweep><KeyOfA>A</KeyOfA></Dregsweep></R>");
};

// The children of a node, each with a reference; the engine's are its categories.
template <class Node>
auto ChildrenOf(Node& node) {
    using Child = std::remove_pointer_t<decltype(node.GetFirstChild())>;
    std::vector<CReference<Child>> children;
    for (CReference child(node.GetFirstChild()); child;) {
        Child* last = child.get();
        children.push_back(std::move(child));
        child = CReference(node.GetNextChild(last));
    }
    return children;
}

// The names of all children, each followed by ";".
template <class Node>
std::wstring NamesOf(Node& node) {
    std::wstring names;
    for (const auto& child : ChildrenOf(node))
        names += child->GetInfo()->NameText + std::wstring(L";");
    return names;
}
