#include <optional>

#include "tests/tree/treenode.h"
#include "tree/residtexttable.h"

namespace {

constexpr const char* kTree =
    "<A Name='a' ResID='key'><AppInfo Name='b'><GarbageCatagory Name='c' ResID='KEY'/></AppInfo>"
    "<AppInfo Name='d' ResID='\xC3\xA4'><GarbageCatagory Name='e' ResID=''/></AppInfo></A>";

class Selector final : public ITextSelector {
public:
    explicit Selector(std::optional<std::wstring> replacement) : m_replacement(std::move(replacement)) {}
    const wchar_t* Select(const wchar_t* text) override {
        seen += text;
        return m_replacement ? m_replacement->c_str() : nullptr;
    }
    std::wstring seen;

private:
    const std::optional<std::wstring> m_replacement;
};

std::wstring Names(const Category& category) {
    std::wstring names = category->GetInfo()->NameText;
    for (const size_t app : {0u, 1u}) {
        names += std::wstring(L" ") + category.App(app).GetInfo()->NameText;
        names += std::wstring(L" ") + category.Garbage(app).GetInfo()->NameText;
    }
    return names;
}

void Localise(const Category& category, const std::string& entries, ITextSelector* selector = nullptr) {
    TiXmlDocument document;
    document.Parse(("<T>" + entries + "</T>").c_str());
    ASSERT_TRUE(document.RootElement()) << entries;
    category->ChangeResID(CResIdTextTable(*document.RootElement()), selector);
}

}  // namespace

TEST(LocalisedNames, ComeFromTheFirstEntryWithAText) {
    const struct {
        const char* entries;
        const wchar_t* names;
    } kCases[] = {
        {"", L"a b c d e"},
        {"<key>1</key><KEY>2</KEY>", L"1 b 2 d e"},
        {"<key x='y'>1</key><key>2</key>", L"1 b c d e"},
        {"<key/><key>2</key>", L"a b c d e"},
        {"<key><KEY>2</KEY></key>", L"a b c d e"},
        {"<key>\xE6\xB8\x85 \xE7\x90\x86</key>", L"清 理 b c d e"},
        {"<\xC3\xA4>u</\xC3\xA4>", L"a b c u e"},
        {"<Key>1</Key><kEY>2</kEY>", L"a b c d e"},
    };
    for (const auto& test : kCases) {
        const Category category(kTree);
        Localise(category, test.entries);
        EXPECT_EQ(Names(category), test.names) << test.entries;
    }
}

TEST(LocalisedNames, WithoutAnEntryStayInThePreviousLanguage) {
    const Category category(kTree);
    Localise(category, "<key>un</key><KEY>deux</KEY>");
    Localise(category, "<key>one</key>");
    EXPECT_EQ(Names(category), L"one b deux d e");
    TiXmlElement saved("S");
    category->SaveXml(&saved);
    EXPECT_STREQ(saved.Attribute("Name"), "one");
}

TEST(LocalisedNames, MayBeReplacedByTheHost) {
    const std::string entries = "<key>1</key><KEY>2</KEY>";
    const Category category(kTree);
    Selector keeps({});
    Localise(category, entries, &keeps);
    EXPECT_EQ(keeps.seen, L"12") << "asked for texts that were found only";
    EXPECT_EQ(Names(category), L"1 b 2 d e");
    Selector replaces(L"");
    Localise(category, entries, &replaces);
    EXPECT_EQ(Names(category), L" b  d e");
}
