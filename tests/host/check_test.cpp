#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>

#include "host/check/pack.h"
#include "host/check/report.h"
#include "sysservices/text.h"
#include "tests/host/table.h"
#include "tests/support/tempfolder.h"

namespace {

// "LINE", the first letter of the severity, " CODE" of each finding; one that is repeated has its number behind it.
std::string Brief(const std::vector<Finding>& findings) {
    std::map<std::string, std::string> letters = {{"error", "E "}, {"warning", "W "}, {"note", "N "}};
    std::vector<std::pair<std::string, size_t>> found;
    for (const auto json = nlohmann::json::parse(FindingsJson(findings)); const auto& at : json["findings"]) {
        const std::string one = at["line"].dump() + letters[at["severity"]] + at["code"].get<std::string>();
        if (found.empty() || found.back().first != one) found.emplace_back(one, 0);
        ++found.back().second;
    }
    std::string all;
    for (const auto& [one, times] : found)
        all += (all.empty() ? "" : ", ") + one + (times > 1 ? "*" + std::to_string(times) : "");
    return all.empty() ? "nothing" : all;
}

std::vector<Finding> CheckRules(const std::string& xml) {
    const TempFolder folder;
    return CheckPack({folder.Write(L"Prüfung.xml", xml)}, L"");
}

// One rule in line 2, of its attributes and, behind a ">", its children.
std::vector<Finding> CheckRule(const std::string& rule) {
    return CheckRules("<Rules><AppCategoryInfo Name='C'><AppInfo Name='A'><GarbageCatagory Name='G'>\n<GarbageInfo "
                      + rule + (rule.find('>') == rule.npos ? "/>" : "</GarbageInfo>")
                      + "</GarbageCatagory></AppInfo></AppCategoryInfo></Rules>");
}

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
        {"<?xml version='1.0' encoding='UTF-8'?><Rules xmlns:xsi='http://x' "
         "xsi:noNamespaceSchemaLocation='x.xsd'><AppCategoryInfo Name=''/></Rules>",
         "nothing"},
        {"<?xml version='1.0' encoding='gbk'?>\n<R>\n<AppCategoryInfo Name='C'/></R><R/>",
         "1W encoding, 2N name-form, 3E not-well-formed"},
        {"<?xml version='1.0'?><Rules><AppInfo Name='A'/></Rules>", "1E no-category, 1E misplaced-element"},
        {"<?xml version='1.0' encoding='utf8'?><Rules x=''><AppCategoryInfo Name='C' "
         "Nam='x'\nCatagoryType='4'>x<appInfo/><AppInfo ResID='1'/></AppCategoryInfo>"
         "</Rules>",
         "1E unknown-attribute*2, 2E wrong-type, 2W stray-text, 2E unknown-element, 2E wrong-type, 2E "
         "missing-attribute"},
    };
    for (const auto& [xml, findings] : rows)
        EXPECT_EQ(Brief(CheckRules(xml)), findings) << xml.substr(0, 200);
}

TEST(Check, FindsFaultsOfARule) {
    for (const auto& [expected, rule] : ReadTable(L"findings.txt", {{L"LINE", L"\n"}})) {
        const auto findings = CheckRule(WideToUtf8(rule));
        std::string messages;
        for (const Finding& finding : findings)
            messages += WideToUtf8(finding.message) + '\n';
        if (expected[0] != '"')
            EXPECT_EQ(Brief(findings), expected) << WideToUtf8(rule);
        else
            EXPECT_THAT(messages, testing::HasSubstr(expected.substr(1, expected.size() - 2))) << WideToUtf8(rule);
    }
}

TEST(Check, ComparesKeysWithTheTextsOfAllRuleFiles) {
    const TempFolder folder;
    const std::wstring one = folder.Write(L"1", "<Rules><AppCategoryInfo Name='C' ResID='Systm'/></Rules>");
    const std::wstring two = folder.Write(L"2", "<Rules><AppCategoryInfo Name='C' ResID='Logs'/></Rules>");
    const auto check = [&](const std::vector<std::wstring>& rules, const std::string& texts) {
        return CheckPack(rules, folder.Write(L"t", texts));
    };
    const std::string texts = "<Texts><Dregsweep>\n<System>S</System>\n<Logs/>\n<Logs>x</Logs></Dregsweep></Texts>";
    const auto findings = check({one, two}, texts);
    ASSERT_EQ(Brief(findings), "1W key-without-entry, 2N unused-entry, 3W empty-entry, 4W duplicate-entry");
    const std::string name = WideToUtf8(one), message = "the text file has no entry <Systm>, did you mean \"System\"?";
    EXPECT_EQ(WideToUtf8(FindingLine(findings[0])), name + ":1: warning: " + message + " [key-without-entry]");
    EXPECT_EQ(SummaryLine(findings), L"0 errors, 3 warnings, 1 note");
    EXPECT_EQ(nlohmann::json::parse(FindingsJson({findings[0]})).dump(),
              R"({"errors":0,"findings":[{"code":"key-without-entry","file":)" + nlohmann::json(name).dump()
                  + R"(,"line":1,"message":)" + nlohmann::json(message).dump()
                  + R"(,"severity":"warning"}],"notes":0,"warnings":1})");
    EXPECT_EQ(Brief(check({two, folder / L"none"}, texts)), "0E cannot-read, 3W empty-entry, 4W duplicate-entry");
    const std::pair<const char*, const char*> rows[] = {
        {"<T xmlns:xsi='x' a=''>\n<Dregsweep b=''><Logs>x</Logs></Dregsweep>\n<Other/>\n<Dregsweep/></T>",
         "1N name-form, 1E unknown-attribute, 2E unknown-attribute, 3E unknown-element, 4E unknown-element"},
        {"<Texts><Other/></Texts>", "1W key-without-entry, 1E no-table"},
        {"<Texts>\n<Dregsweep>x</Dregsweep></Texts>", "1W key-without-entry, 2W stray-text"},
        {"<Texts>\n<Dregsweep/></Texts>", "1W key-without-entry"},
        {"", "0E cannot-read"},
    };
    for (const auto& [xml, brief] : rows)
        EXPECT_EQ(Brief(check({two}, xml)), brief) << xml;
}
