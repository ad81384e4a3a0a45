#include <windows.h>
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <filesystem>
#include <set>

#include "dregsweep/dregsweep.h"
#include "host/common/treewalk.h"
#include "rules/garbageinfo.h"
#include "sysservices/xmlattribute.h"
#include "sysservices/xmldocument.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tempfolder.h"
#include "tests/support/tracerecorder.h"

namespace {

// The base folders of the sample rules, laid out below the test's folder as on a drive, so that rules overlap here
// where they would overlap there. By CSIDL number, or by environment variable.
struct BaseFolder {
    int index;
    const wchar_t *variable, *folder;
} constexpr kBaseFolders[] = {
    {-1, L"SystemDrive", L""},
    {-1, L"SystemRoot", L"\\Windows"},
    {-1, L"ProgramData", L"\\ProgramData"},
    {-1, L"USERPROFILE", L"\\Users\\me"},
    {-1, L"LOCALAPPDATA", L"\\Users\\me\\AppData\\Local"},
    {-1, L"APPDATA", L"\\Users\\me\\AppData\\Roaming"},
    {CSIDL_RECENT, nullptr, L"\\Users\\me\\AppData\\Roaming\\Microsoft\\Windows\\Recent"},
    {CSIDL_HISTORY, nullptr, L"\\Users\\me\\AppData\\Local\\Microsoft\\Windows\\History"},
    {CSIDL_PROGRAM_FILESX86, nullptr, L"\\Program Files (x86)"},
};

const TempFolder* g_drive;

HRESULT WINAPI FolderBelowRoot(HWND, int index, HANDLE, DWORD, wchar_t* path) {
    for (const auto& base : kBaseFolders)
        if (base.index == index) return wcscpy(path, (g_drive->path() + base.folder).c_str()), S_OK;
    return E_FAIL;  // as for the recycle bin
}

CString Text(const TiXmlElement& element, const char* name) {
    CString text;
    ReadText(element, name, text);
    return text;
}

// A name that the pattern matches.
CString Match(CString pattern) {
    for (size_t at; (at = pattern.find(L'*')) != CString::npos;)
        pattern.replace(at, 1, L"seed");
    return pattern;
}

CString ScannedFolder(const CGarbageInfo& rule, const TiXmlElement& element) {
    CString folder = rule.Path;
    for (auto step = element.FirstChildElement("LoopPath"); step; step = step->NextSiblingElement("LoopPath")) {
        const auto terminals = Split(Text(*step, "TerminalPath"), L"|");
        folder += L"\\" + (terminals.empty() ? Match(Text(*step, "Path")) : L"deeper\\" + terminals.front());
        if (step->Attribute("AddPath")) folder += L"\\" + Text(*step, "AddPath");
    }
    return folder;
}

// A subfolder that an "ExcludePath" child leaves out: what the end of the folder lacks of the child's path.
CString ExcludedFolder(const CString& folder, const TiXmlElement& child) {
    const CString path = Text(child, "Path");
    if (!child.Attribute("ExactMatch")) return JoinPath(folder, path + L"1");
    size_t shared = path.size();
    while (!folder.ends_with(path.substr(0, shared)))
        --shared;
    return folder + path.substr(shared);
}

class SamplePack : public testing::TestWithParam<const wchar_t*> {
protected:
    SamplePack() {
        g_drive = &m_folder;
        for (const auto& base : kBaseFolders)
            if (base.variable) SetEnvironmentVariableW(base.variable, (m_folder.path() + base.folder).c_str());
    }

    CString Write(const CString& path) const { return m_folder.Write(path.substr(m_folder.path().size() + 1)); }
    void Keep(const CString& path) { m_kept.insert(Write(path)); }

    // One file that the rule must find, and neighbours that it must not.
    void Seed(const CGarbageInfo& rule, const TiXmlElement& element) {
        ASSERT_TRUE(rule.Path.starts_with(m_folder.path())) << "a base folder that this test lacks";
        if (!rule.IsFolder) return Write(rule.Path), Keep(rule.Path + L".keep");
        const CString location = ScannedFolder(rule, element);
        const CString folder = rule.Iteration ? location + L"\\deep" : location;
        Write(JoinPath(folder, Match(rule.Filter)));
        Keep(rule.Filter == L"*" ? location + L" neighbour\\file" : folder + L"\\neighbour.keep");
        for (const CString& token : Split(Text(element, "ExcludeFilter"), L"|"))
            Keep(JoinPath(folder, token));
        for (auto kept = element.FirstChildElement("ExcludePath"); kept; kept = kept->NextSiblingElement("ExcludePath"))
            Keep(ExcludedFolder(location, *kept) + L"\\file");
    }

    TempFolder m_folder;
    std::set<CString> m_kept;
};

// Calls `use` with every rule below the node and its element.
template <class Node, class Use>
void ForEachRule(Node& node, const TiXmlElement& element, const Use& use) {
    const TiXmlElement* at = element.FirstChildElement();
    for (const auto& child : Children(node)) {
        if constexpr (std::is_same_v<Node, IGarbageCatagory>)
            use(dynamic_cast<CGarbageInfo&>(*child), *at);
        else
            ForEachRule(*child, *at, use);
        at = at->NextSiblingElement();
    }
    EXPECT_FALSE(at) << "line " << at->Row() << " did not load";
}

}  // namespace

TEST_P(SamplePack, DeletesWhatItsRulesAreAboutAndNothingElse) {
    const IatPatch patch(nullptr, nullptr, "SHGetFolderPathW", reinterpret_cast<const void*>(&FolderBelowRoot));
    ASSERT_TRUE(patch.ok());
    const std::wstring file = std::wstring(L"S:\\samples\\") + GetParam();
    TiXmlDocument document;
    ASSERT_TRUE(LoadXmlDocument(file.c_str(), document));
    const CReference<IDregsweep> engine(new CDregsweep(/*upgradeMode=*/false));
    ASSERT_EQ(engine->Init(file.c_str(), L"S:\\samples\\text\\en\\ResIDText.xml", nullptr), 0U);
    const auto isForFiles = [](const CGarbageInfo& rule) { return !rule.IsRegistry && !rule.Path.empty(); };
    ForEachRule(*engine, *document.RootElement(), [&](const CGarbageInfo& rule, const TiXmlElement& element) {
        if (isForFiles(rule)) Seed(rule, element);
    });
    ASSERT_FALSE(HasFailure());

    engine->SetAllChecked(true);
    ASSERT_TRUE(engine->Gather(nullptr));
    ForEachRule(*engine, *document.RootElement(), [&](CGarbageInfo& rule, const TiXmlElement& element) {
        EXPECT_EQ(rule.GetTotalCount(), isForFiles(rule) ? 1U : 0U) << "line " << element.Row();
    });
    ASSERT_TRUE(engine->Clean(nullptr));
    std::set<CString> left;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder.path()))
        if (entry.is_regular_file()) left.insert(entry.path().wstring());
    EXPECT_EQ(left, m_kept);
    engine->Uninit();
    TakeTraceLines();
}

INSTANTIATE_TEST_SUITE_P(Each, SamplePack, testing::Values(L"rules.xml", L"SysUpgradeConfig.xml"));
