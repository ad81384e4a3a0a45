#include <windows.h>
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <span>

#include "host/checkpack.h"
#include "host/checkreport.h"
#include "sysservices/handle.h"
#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

namespace {

// "LINE SEVERITY CODE" of each finding.
std::string Brief(std::span<const CheckFinding> findings) {
    std::string all;
    for (const CheckFinding& finding : findings) {
        const char* const severities[] = {"error", "warning", "note"};
        all += (all.empty() ? "" : ", ") + std::to_string(finding.line) + ' '
               + severities[static_cast<size_t>(finding.code.severity)] + ' ' + WideToUtf8(finding.code.name);
    }
    return all;
}

std::string CheckRules(const std::string& xml) {
    const TempFolder folder;
    return Brief(CheckPack({folder.Write(L"Prüfung.xml", xml)}, L""));
}

struct Row {
    std::string xml;
    const char* findings;
};

}  // namespace

TEST(Check, FindsFaultsOfTheFile) {
    std::string deep = "<Rules>";
    for (int i = 0; i < 300; ++i)
        deep += "<a>";
    const Row rows[] = {
        {"", "0 error cannot-read"},
        {deep, "0 error cannot-read"},
        {"<Rules>\n<AppCategoryInfo Name='C'>\n</Rules>", "3 error not-well-formed"},
        {"<!-- -->", "1 error not-well-formed"},
        {"<Rules xmlns:xsi='http://x' xsi:noNamespaceSchemaLocation='x.xsd'><AppCategoryInfo Name=''/></Rules>", ""},
        {"<?xml version='1.0' encoding='gbk'?>\n<R>\n<AppCategoryInfo Name='C'/></R><R/>",
         "1 warning encoding, 2 note name-form, 3 error not-well-formed"},
        {"<Rules><AppInfo Name='A'/></Rules>", "1 error no-category, 1 error misplaced-element"},
        {"<Rules><AppCategoryInfo Name='C' Nam='x'\nCatagoryType='4'>x<AppInfos/><AppInfo ResID='1'/></AppCategoryInfo>"
         "</Rules>",
         "1 error unknown-attribute, 2 error wrong-type, 2 warning stray-text, 2 error unknown-element, "
         "2 error wrong-type, 2 error missing-attribute"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(CheckRules(row.xml), row.findings) << row.xml.substr(0, 200);
}

TEST(Check, FindsFaultsOfARule) {
    const std::string tool = "<GarbageInfo IsFolder='1' FolderEnvDir='LOCALAPPDATA' Path='Tool' ";
    const Row rows[] = {
        {tool + "ExcludePath='1' Iteration='1'><excludepath Path='a'/></GarbageInfo>", "2 note name-form"},
        // Danger, and its harmless neighbours.
        {"<GarbageInfo FolderEnvDir='SystemDrive' IsFolder='1'/>", "2 error drive-root"},
        {"<GarbageInfo Path='D:\\' IsFolder='1' Filter='*.tmp' Iteration='1'/>", "2 error drive-root"},
        {"<GarbageInfo Path='D:\\' IsFolder='1' Filter='*.tmp'/>", ""},
        {"<GarbageInfo FolderEnvDir='TEMP' IsFolder='1' Iteration='1'/>", ""},
        {"<GarbageInfo FolderEnvDir='TEMP' Path='..\\..' IsFolder='1' Filter='*.*'/>", "2 error whole-folder"},
        {"<GarbageInfo Path='E:/Users/Bob/./Documents/' IsFolder='1'/>", "2 error whole-folder"},
        {"<GarbageInfo FolderIndex='40' IsFolder='1' Filter='*.log'/>", ""},
        {"<GarbageInfo FolderIndex='26' IsFolder='1' LoopPath='1'><LoopPath Path='*'/></GarbageInfo>",
         "2 error whole-folder"},
        {"<GarbageInfo FolderIndex='26' IsFolder='1' LoopPath='1'><LoopPath Path='*' AddPath='Cache'/></GarbageInfo>",
         ""},
        {"<GarbageInfo FolderIndex='40' GetByReg='1' RootKey='HKCU' Path='K' Value='V'/>", "2 error whole-folder"},
        {"<GarbageInfo Path='Temp\\x'/>", "2 error relative-location"},
        {"<GarbageInfo FolderEnvDir='ProgramFiles' Path='Cache Tool\\bin' IsFolder='1'/>", "2 warning program-folder"},
        {"<GarbageInfo FolderEnvDir='ProgramFiles' Path='Tool\\Logs' IsFolder='1'/>", ""},
        {"<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='x' Value='|'/>", "2 warning all-values"},
        // What does nothing.
        {tool + "LoopPath='1'/>", "2 warning loop-without-step"},
        {tool + "LoopPath='1'><LoopPath TerminalPath='x'/></GarbageInfo>", "2 warning loop-without-step"},
        {tool + "LoopPath='1'><LoopPath Path='a\\b'/>\n<LoopPath Path='.x'/></GarbageInfo>",
         "2 warning does-nothing, 3 warning does-nothing"},
        {tool + "Iteration='1' ExcludePath='1'/>", "2 warning exclude-without-child"},
        {tool + "Iteration='1'><ExcludePath Path='keep'/></GarbageInfo>", "2 error ignored-children"},
        {"<GarbageInfo Path='C:\\D' IsFolder='1' Iteration='1' ExcludePath='1'><ExcludePath Path='x'/></GarbageInfo>",
         "2 error ignored-children"},
        {tool
             + "Iteration='1' ExcludePath='1'><ExcludePath Path='a\\b'/><ExcludePath Path='a' ExactMatch='1'/>"
               "</GarbageInfo>",
         "2 warning no-effect, 2 note loose-exclusion"},
        {"<GarbageInfo FolderEnvDir='LOCALAPDATA' Path='x'/>", "2 warning unresolvable-location"},
        {"<GarbageInfo FolderIndex='99' Path='x'/>", "2 warning unresolvable-location"},
        {"<GarbageInfo FolderEnvDir='APPDATA'\nPath='%X%\\y'/>", "3 warning unresolvable-location"},
        {"<GarbageInfo/>", "2 warning unresolvable-location"},
        {"<GarbageInfo Path=''/>", "2 warning does-nothing"},
        {"<GarbageInfo Path='' EmptyProc='NT_ClearHistory'/>", ""},
        {"<GarbageInfo FolderEnvDir='APPDATA' Path='x\\*.log' Filter='*'/>",
         "2 warning no-effect, 2 warning does-nothing"},
        {tool + "Filter='*.a|*.b'/>", "2 warning does-nothing"},
        {tool + "SelfExclude='1'/>", "2 warning does-nothing"},
        {"<GarbageInfo FolderIndex='10'/>", ""},
        {"<GarbageInfo FolderIndex='4' Path='x'/>", "2 warning no-effect, 2 warning does-nothing"},
        {"<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='x' Filter='y'/>", "2 warning no-effect"},
        {"<GarbageInfo Registry='1' RootKey='HKCU'/>", "2 error missing-attribute"},
        // Four parts of names, of which two are found; two in either order; a part of another; whole names.
        {tool + "ExcludeFilter='.tmp|.log|.bak|.old'/>", "2 warning unreachable-token, 2 warning unreachable-token"},
        {tool + "ExcludeFilter='.log|.tmp'/>", ""},
        {tool + "ExcludeFilter='.tmp|.log'/>", "2 warning unreachable-token"},
        {tool + "ExcludeFilter='.log1|.log'/>", "2 warning dropped-token"},
        {tool + "ExcludeFilter='.log|.log1'/>", ""},
        {tool + "ExcludeFilter='desktop.ini|index.dat|thumbs.db'/>", ""},
        {tool + "ExcludeFilter='Cookies|History'/>", "2 note whole-name-token"},
        {tool + "/>\n<GarbageInfo FolderEnvDir='USERPROFILE' Path='appdata\\local\\tool' IsFolder='1' SelState='0'/>",
         "3 warning duplicate-rule"},
        {tool + "/>" + tool + "Filter='*.x'/><XP>" + tool + "/></XP>", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CheckRules("<Rules><AppCategoryInfo Name='C'><AppInfo Name='A'><GarbageCatagory Name='G'>\n" + row.xml
                             + "</GarbageCatagory></AppInfo></AppCategoryInfo></Rules>"),
                  row.findings)
            << row.xml;
    }
}

TEST(Check, ComparesKeysWithTheTextsOfAllRuleFiles) {
    const TempFolder folder;
    const std::wstring one = folder.Write(L"1", "<Rules><AppCategoryInfo Name='C' ResID='Systm'/></Rules>");
    const std::wstring two = folder.Write(L"2", "<Rules><AppCategoryInfo Name='C' ResID='Logs'/></Rules>");
    const std::wstring text = folder.Write(L"t",
                                           "<Texts><Dregsweep>\n<System>S</System>\n<Logs/>\n<Logs>x</Logs>"
                                           "</Dregsweep></Texts>");
    const auto findings = CheckPack({one, two}, text);
    ASSERT_EQ(findings.size(), 4U);
    EXPECT_EQ(FindingLine(findings[0]), one + L":1: warning: the text file has no entry <Systm>, did you mean "
                                              L"\"System\"? [key-without-entry]");
    EXPECT_EQ(Brief(std::span(findings).subspan(1)),
              "2 note unused-entry, 3 warning empty-entry, 4 warning duplicate-entry");

    const CHandle file(
        CreateFileW((folder / L"out").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    COutput out(file.get());
    PrintFindingsJson(out, findings);
    out.Flush();
    const auto json = nlohmann::json::parse(ReadFileBytes(folder / L"out"));
    EXPECT_EQ(json["warnings"], 3);
    EXPECT_EQ(json["findings"][1]["file"], WideToUtf8(text));
}
