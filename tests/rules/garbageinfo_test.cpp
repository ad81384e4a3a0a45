#include "rules/garbageinfo.h"

#include "tests/rules/recordingrule.h"

namespace {

// The set flags (R registry, F folder, I iteration, L loop, S shell), folder index, path and filter.
CString Describe(const CGarbageInfo& rule) {
    const auto flag = [](bool set, const wchar_t* letter) { return CString(set ? letter : L""); };
    return flag(rule.IsRegistry, L"R") + flag(rule.IsFolder, L"F") + flag(rule.Iteration, L"I")
           + flag(rule.LoopPath, L"L") + flag(rule.UseShellBrowse, L"S") + L" " + std::to_wstring(rule.FolderIndex)
           + L" <" + rule.Path + L"> <" + rule.Filter + L">";
}

}  // namespace

TEST_F(RuleTest, ReadsAttributes) {
    struct Case {
        const char* attributes;
        bool loads;
        const wchar_t* members;
    } const cases[] = {
        {"", false, L" -1 <> <*>"},
        {"Path='ä' IsFolder='1' Iteration='1' LoopPath='1' UseShellBrowse='1'", true, L"FILS -1 <ä> <*>"},
        {"Path='x' IsFolder='-2' Iteration='-2' LoopPath='2' UseShellBrowse='2' Filter=''", true, L"FS -1 <x> <>"},
        {"Path='x' Registry='t' GetByReg='u' IsFolder='a' Iteration='' FolderIndex='q' UseShellBrowse='z'", true,
         L" -1 <x> <*>"},
        {"Path='x' GetByReg='2'", true, L"F -1 <x> <*>"},  // stands in for a missing "IsFolder"
        {"Path='x' GetByReg='1' FolderX86EnvDir='DSW_BASE'", true, L"F -1 <> <*>"},
        {"Registry='1'", true, L"R -1 <> <>"},
        {"Registry='1' Path='x' KeyPath='K' Filter='F' Iteration='1' IsFolder='1' FolderIndex='5' FolderEnvDir='E' "
         "LoopPath='1' UseShellBrowse='1'",
         true, L"RI -1 <K> <F>"},
    };
    for (const Case& c : cases) {
        RecordingRule rule;
        EXPECT_EQ(rule.Load(c.attributes), c.loads) << c.attributes;
        EXPECT_EQ(Describe(rule), c.members) << c.attributes;
    }
}

TEST_F(RuleTest, ResolvesTheLocation) {
    const CString longest(259, L'x');
    struct Case {
        CString base;
        const char* attributes;
        CString path;  // empty: does not load
    } const cases[] = {
        {L"C:\\missing", "Path='Temp'", L"C:\\missing\\Temp"},
        {L"C:\\base\\", "Path='Temp'", L"C:\\base\\Temp"},
        {L"C:\\base", "Path=''", L"C:\\base"},
        {longest, "Path='Temp'", longest + L"\\Temp"},
        {longest + L"x", "Path='Temp'", L""},
        {L"", "Path='Temp'", L""},
        {L"C:\\base", "FolderIndex='38' Path='Temp'", L"C:\\Program Files\\Temp"},
    };
    for (const Case& c : cases) {
        SetEnvironmentVariableW(L"DSW_BASE", c.base.empty() ? nullptr : c.base.c_str());
        RecordingRule rule;
        EXPECT_EQ(rule.Load(std::string("FolderEnvDir='DSW_BASE' ") + c.attributes), !c.path.empty()) << c.attributes;
        EXPECT_EQ(rule.Path, c.path.empty() ? L"Temp" : c.path) << c.attributes;
    }
}
