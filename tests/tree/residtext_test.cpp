#include "tests/tree/treenode.h"
#include "tree/residtexttable.h"

namespace {

struct Selector final : ITextSelector {
    const wchar_t* Select(const wchar_t* text) override {
        seen += text;
        return replacement;
    }
    const wchar_t* replacement = nullptr;
    std::wstring seen;
};

}  // namespace

TEST(LocalisedNames, ComeFromTheFirstEntryWithATextAndStayWithoutOne) {
    const struct {
        const char* entries;
        const wchar_t* names;
        const wchar_t* replacement = nullptr;
        const wchar_t* seen = L"";
    } kCases[] = {
        {"", L"a b c"},
        {"<key>1</key><KEY>2</KEY>", L"1 2 c", nullptr, L"12"},
        {"<key>3</key><key>4</key>", L"3 2 c"},  // the other in its previous language
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
        Selector selector;
        selector.replacement = test.replacement;
        category->ChangeResID(CResIdTextTable(*document.RootElement()), *test.seen ? &selector : nullptr);
        EXPECT_EQ(selector.seen, test.seen);
        const std::wstring name = category->GetInfo()->NameText, app = category.App().GetInfo()->NameText;
        EXPECT_EQ(name + L" " + app + L" " + category.Garbage().GetInfo()->NameText, test.names) << test.entries;
    }
}
