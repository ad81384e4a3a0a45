#include <optional>

#include "tests/tree/treenode.h"
#include "tree/residtexttable.h"

namespace {

struct Selector final : ITextSelector {
    explicit Selector(std::optional<std::wstring> text) : replacement(std::move(text)) {}
    const wchar_t* Select(const wchar_t* text) override {
        seen += text;
        return replacement ? replacement->c_str() : nullptr;
    }
    const std::optional<std::wstring> replacement;
    std::wstring seen;
};

}  // namespace

TEST(LocalisedNames, ComeFromTheFirstEntryWithATextAndStayWithoutOne) {
    const struct {
        const char* entries;
        const wchar_t* names;
        std::optional<std::wstring> replacement = {};
        const wchar_t* seen = L"";
    } kCases[] = {
        {"", L"a b c"},
        {"<key>1</key><KEY>2</KEY>", L"1 2 c", {}, L"12"},
        {"<key>3</key><key>4</key>", L"3 2 c"},  // the other in its previous language
        {"<key/><key>2</key>", L"3 2 c"},
        {"<key><KEY>9</KEY></key>", L"3 2 c"},
        {"<key>\xE6\xB8\x85 \xE7\x90\x86</key>", L"清 理 2 c"},
        {"<\xC3\xA4>u</\xC3\xA4>", L"清 理 2 u"},
        {"<Key>1</Key><kEY>2</kEY>", L"清 理 2 u"},
        {"<key>1</key><KEY>2</KEY>", L"  u", L"", L"12"},
    };
    const Category category(
        "<A Name='a' ResID='key'><AppInfo Name='b' ResID='KEY'><GarbageCatagory Name='c' "
        "ResID='\xC3\xA4'/></AppInfo></A>");
    for (const auto& test : kCases) {
        TiXmlDocument document;
        document.Parse((std::string("<T>") + test.entries + "</T>").c_str());
        Selector selector(test.replacement);
        category->ChangeResID(CResIdTextTable(*document.RootElement()), *test.seen ? &selector : nullptr);
        EXPECT_EQ(selector.seen, test.seen);
        EXPECT_EQ(std::wstring(category->GetInfo()->NameText) + L" " + category.App().GetInfo()->NameText + L" "
                      + category.Garbage().GetInfo()->NameText,
                  test.names)
            << test.entries;
    }
}
