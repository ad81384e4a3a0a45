#include <gmock/gmock.h>

#include <span>

#include "host/check/pack.h"
#include "host/check/report.h"
#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

namespace {

// "LINE", the first letter of the severity, " CODE" of each finding.
std::string Brief(std::span<const Finding> findings) {
    std::string all;
    for (const Finding& finding : findings)
        all += (all.empty() ? "" : ", ") + std::to_string(finding.line) + "EWN"[static_cast<int>(finding.code.severity)]
               + ' ' + WideToUtf8(finding.code.name);
    return all;
}

std::string CheckRules(const std::string& xml) {
    const TempFolder folder;
    return Brief(CheckPack({folder.Write(L"Prüfung.xml", xml)}, L""));
}

// One rule in line 2, of its attributes and, behind a ">", its children.
std::string CheckRule(const std::string& rule) {
    return CheckRules("<Rules><AppCategoryInfo Name='C'><AppInfo Name='A'><GarbageCatagory Name='G'>\n<GarbageInfo "
                      + rule + (rule.find('>') == rule.npos ? "/>" : "</GarbageInfo>")
                      + "</GarbageCatagory></AppInfo></AppCategoryInfo></Rules>");
}

// What is found in rules, and the rules.
const std::string kTool = "IsFolder='1' FolderEnvDir='LOCALAPPDATA' Path='Tool' ";
const std::string kExcluding = kTool + "Iteration='1' ExcludePath='1'><ExcludePath ";
const std::pair<const char*, std::vector<std::string>> kRuleRows[] = {
    // The harmless neighbours of what follows.
    {"",
     {"Path='D:\\' IsFolder='1' Filter='*.tmp'", "FolderEnvDir='TEMP' IsFolder='1' Iteration='1'",
      "FolderIndex='40' IsFolder='1' Filter='*.log'", "Path='' EmptyProc='NT_ClearHistory'", "FolderIndex='10'",
      "FolderIndex='26' IsFolder='1' LoopPath='1'><LoopPath Path='*' AddPath='Cache'/>",
      "FolderEnvDir='ProgramFiles' Path='Tool\\Logs' IsFolder='1'",
      "FolderEnvDir='USERPROFILE' Path='Documents ' IsFolder='1'",  // which is not "Documents"
      "FolderEnvDir='SystemDrive' Path='\\Windows.old' IsFolder='1' Iteration='1'", kTool + "ExcludeFilter='.log|.tmp'",
      kTool + "ExcludeFilter='.log|.log1'", kTool + "ExcludeFilter='desktop.ini|index.dat|thumbs.db'",
      kTool + "/><GarbageInfo " + kTool + "Filter='*.x'/><XP><GarbageInfo " + kTool
          + "/></XP><GarbageInfo Path='C:\\x'>"}},
    {"2N name-form", {kTool + "ExcludePath='1' Iteration='1'><excludepath Path='a'/>"}},
    {"2E drive-root",
     {"FolderEnvDir='SystemDrive' IsFolder='1'", "FolderEnvDir='SystemDrive' Path='\\' IsFolder='1'",
      "Path='D:\\' IsFolder='1' Filter='*.tmp' Iteration='1'"}},
    {"2E whole-folder",
     {"FolderEnvDir='TEMP' Path='..\\..' IsFolder='1' Filter='*.*'",
      "FolderEnvDir='SystemDrive' Path='\\Windows\\System32' IsFolder='1'",
      "Path='E:/Users/Bob/./Documents./' IsFolder='1'",
      "FolderIndex='26' IsFolder='1' LoopPath='1'><LoopPath Path='*' AddPath='.'/>",
      "FolderIndex='40' GetByReg='1' RootKey='HKCU' Path='K' Value='V'"}},
    {"2E relative-location", {"Path='Temp\\x'"}},
    {"2W program-folder", {"FolderEnvDir='ProgramFiles' Path='Cache Tool\\bin' IsFolder='1'"}},
    {"2W all-values", {"Registry='1' RootKey='HKCU' KeyPath='x' Value='|'"}},
    {"2W loop-without-step", {kTool + "LoopPath='1'", kTool + "LoopPath='1'><LoopPath TerminalPath='x'/>"}},
    {"2W does-nothing, 3W does-nothing", {kTool + "LoopPath='1'><LoopPath Path='a\\b'/>\n<LoopPath Path='.x'/>"}},
    {"2W exclude-without-child", {kTool + "Iteration='1' ExcludePath='1'"}},
    {"2E ignored-children",
     {kTool + "Iteration='1'><ExcludePath Path='keep'/>",
      "Path='C:\\D' IsFolder='1' Iteration='1' ExcludePath='1'><ExcludePath Path='x'/>"}},
    {"2W impossible-exclusion, 2N loose-exclusion",
     {kTool + "Iteration='1' ExcludePath='1'><ExcludePath Path='a\\b'/><ExcludePath Path='a' ExactMatch='1'/>"}},
    {"2W impossible-exclusion",
     {kExcluding + "Path='*keep*'/>", kExcluding + "Path='\\a\\' ExactMatch='1'/>",
      kExcluding + "Path='\\a ' ExactMatch='1'/>", kExcluding + "Path='/a/b' ExactMatch='1'/>",
      kExcluding + "Path='\\a\\.\\b' ExactMatch='1'/>",
      "IsFolder='1' Iteration='1' ExcludePath='1' FolderEnvDir='TEMP' Path='T/'><ExcludePath Path='\\T\\a' "
      "ExactMatch='1'/>"}},
    {"",
     {kExcluding + "Path='v1. '/>", kExcluding + "Path='\\T\\a' ExactMatch='1'/>", "Path='\\\\?\\C:\\T\\x'",
      "FolderIndex='5' IsFolder='1' Filter='*.tmp'", "Registry='1' RootKey='HKUR' KeyPath='S-1-5-18\\Software\\Tool'"}},
    {"2W program-files", {"FolderEnvDir='windir' IsFolder='1' Iteration='1' Filter='*.dll'"}},
    {"2W personal-files",
     {"FolderIndex='5' IsFolder='1' Filter='*.doc'",
      "FolderEnvDir='USERPROFILE' IsFolder='1' Iteration='1' Filter='*.jpg'"}},
    {"2E system-key",
     {"Registry='1' RootKey='HKLM' KeyPath='SYSTEM\\ControlSet001\\Services\\x' DelKey='1'",
      "Registry='1' RootKey='HKLM' KeyPath='SYSTEM\\CurrentControlSet' Iteration='1'",
      "Registry='1' RootKey='HKUR' KeyPath='S-1-5-18\\Software\\Microsoft\\Windows\\CurrentVersion\\Run'",
      "Registry='1' RootKey='HKLM' KeyPath='Software\\Wow6432Node\\Microsoft' Iteration='1'"}},
    {"2W system-value", {"Registry='1' RootKey='HKLM' KeyPath='SYSTEM\\CurrentControlSet\\Services\\x' Value='y'"}},
    {"2W impossible-key",
     {"Registry='1' RootKey='HKCU' KeyPath='\\Software\\Tool'", "Registry='1' RootKey='HKCU' KeyPath='HKCU\\Tool\\a'",
      "Registry='1' RootKey='HKCU' KeyPath='Software/Tool'",
      "Registry='1' RootKey='HKCU' KeyPath='Software\\*\\Tool'"}},
    {"2W unresolvable-location", {"FolderEnvDir='LOCALAPDATA' Path='x'", "FolderIndex='99' Path='x'", ""}},
    {"3W unresolvable-location", {"FolderEnvDir='APPDATA'\nPath='%X%\\y'"}},
    {"2W does-nothing",
     {"Registry='1' RootKey='HKCU' KeyPath='x' Value='a*'", "Path=''", kTool + "Filter='*.a;*.b'",
      kTool + "Filter='*.a|*.b'", kTool + "SelfExclude='1'"}},
    {"2W no-effect, 2W does-nothing",
     {"FolderEnvDir='APPDATA' Path='x\\*.log' Filter='*'", "FolderIndex='4' Path='x'"}},
    {"2W no-effect",
     {"Registry='1' RootKey='HKCU' KeyPath='x' Filter='y'",
      "Registry='1' RootKey='HKCU' KeyPath='x' ExcludeFilter='.tmp|.log'"}},
    {"2E missing-attribute", {"Registry='1' RootKey='HKCU'"}},
    // Of four parts of names two are found, of two in the wrong order one.
    {"2W unreachable-token, 2W unreachable-token", {kTool + "ExcludeFilter='.tmp|.log|.bak|.old'"}},
    {"2W unreachable-token", {kTool + "ExcludeFilter='.tmp|.log'"}},
    {"2W dropped-token", {kTool + "ExcludeFilter='.log1|.log'"}},
    {"2W impossible-token", {kTool + "ExcludeFilter='*.bak'"}},
    {"2N whole-name-token", {kTool + "ExcludeFilter='Cookies|History'"}},
    {"3W duplicate-rule",
     {kTool + "/>\n<GarbageInfo SelState='0' FolderEnvDir='USERPROFILE' Path='appdata\\local\\tool' IsFolder='1'>"}},
};

}  // namespace

TEST(Check, FindsFaultsOfTheFile) {
    std::string deep = "<Rules>";
    for (int i = 0; i < 300; ++i)
        deep += "<a>";
    const std::pair<std::string, const char*> rows[] = {
        {"", "0E cannot-read"},
        {deep, "0E cannot-read"},
        {"<Rules>\n<AppCategoryInfo Name='C'>\n</Rules>", "3E not-well-formed"},
        {"<!-- -->", "1E not-well-formed"},
        {"<Rules xmlns:xsi='http://x' xsi:noNamespaceSchemaLocation='x.xsd'><AppCategoryInfo Name=''/></Rules>", ""},
        {"<?xml version='1.0' encoding='gbk'?>\n<R>\n<AppCategoryInfo Name='C'/></R><R/>",
         "1W encoding, 2N name-form, 3E not-well-formed"},
        {"<Rules><AppInfo Name='A'/></Rules>", "1E no-category, 1E misplaced-element"},
        {"<Rules><AppCategoryInfo Name='C' Nam='x'\nCatagoryType='4'>x<AppInfos/><AppInfo ResID='1'/></AppCategoryInfo>"
         "</Rules>",
         "1E unknown-attribute, 2E wrong-type, 2W stray-text, 2E unknown-element, 2E wrong-type, 2E missing-attribute"},
    };
    for (const auto& [xml, findings] : rows)
        EXPECT_EQ(CheckRules(xml), findings) << xml.substr(0, 200);
}

TEST(Check, FindsFaultsOfARule) {
    for (const auto& [findings, rules] : kRuleRows)
        for (const std::string& rule : rules)
            EXPECT_EQ(CheckRule(rule), findings) << rule;
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
    EXPECT_EQ(Brief(std::span(findings).subspan(1)), "2N unused-entry, 3W empty-entry, 4W duplicate-entry");
}
