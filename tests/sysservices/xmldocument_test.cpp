#include "sysservices/xmldocument.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "sysservices/xmlattribute.h"
#include "tests/support/allocguard.h"
#include "tests/support/tempfolder.h"

namespace {

std::string Nested(int depth) {
    std::string xml;
    for (int level = 0; level < depth; ++level)
        xml += "<a>";
    for (int level = 0; level < depth; ++level)
        xml += "</a>";
    return xml;
}

}  // namespace

TEST(XmlDocument, RefusesWhatCannotBeParsed) {
    const TempFolder folder;
    const struct {
        std::string content;
        bool loads;
    } rows[] = {
        {"<root><child/></root>", true},
        {"\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<root/>\r\n", true},
        {"<!-- no element at all -->", true},
        {Nested(256), true},
        {Nested(257), false},
        {Nested(100'000), false},
        {Nested(100'000).substr(0, 300'000), false},
        {"", false},
        {" \r\n", false},
        {"not XML", false},
        {"<root><child></root>", false},
        {"<root><child", false},
        {"\xEF\xBB\xBF<root>\xE6", false},
        {std::string("\xFF\xFE<\0r\0/\0>\0", 10), false},
    };
    for (const auto& row : rows) {
        TiXmlDocument document;
        EXPECT_EQ(LoadXmlDocument(folder.Write(L"a.xml", row.content).c_str(), document), row.loads)
            << row.content.substr(0, 60);
    }
    TiXmlDocument document;
    EXPECT_FALSE(LoadXmlDocument((folder / L"missing.xml").c_str(), document));
    EXPECT_FALSE(LoadXmlDocument(folder.path().c_str(), document));
    EXPECT_FALSE(LoadXmlDocument(L"NUL", document));
    EXPECT_FALSE(LoadXmlDocument(L"", document));
    EXPECT_FALSE(LoadXmlDocument(nullptr, document));
}

TEST(XmlDocument, OpensAnyPath) {
    const TempFolder folder;
    const std::wstring part(120, L'p');
    const std::wstring longName = part + L"\\" + part + L"\\" + part + L"\\清理.xml";
    for (const std::wstring& name : {std::wstring(L"清理 Ärger.xml"), longName}) {
        const std::wstring path = folder.Write(name, "<root/>");
        TiXmlDocument document;
        EXPECT_TRUE(LoadXmlDocument(path.c_str(), document)) << path.size();
        EXPECT_TRUE(LoadXmlDocument((L"\\\\?\\" + path).c_str(), document)) << path.size();
    }
    SetCurrentDirectoryW(folder.path().c_str());
    TiXmlDocument document;
    EXPECT_TRUE(LoadXmlDocument(L".\\清理 Ärger.xml", document));
    SetCurrentDirectoryW(L"C:\\");
}

TEST(XmlDocument, NeedsMemoryAndNoWriter) {
    const TempFolder folder;
    const std::wstring path = folder.Write(L"a.xml", "<root/>");
    TiXmlDocument document;
    // The path, the measured bytes and TinyXML's copy of them; what TinyXML loses later is beyond anybody's reach.
    for (int count = 0; count < 4; ++count) {
        alloc_guard::FailAfter(count);
        const bool loaded = LoadXmlDocument(path.c_str(), document);
        alloc_guard::FailAfter(-1);
        EXPECT_FALSE(loaded) << count;
    }
    {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> writer(_wfopen(path.c_str(), L"ab"), &std::fclose);
        EXPECT_FALSE(LoadXmlDocument(path.c_str(), document));
    }
    EXPECT_TRUE(LoadXmlDocument(path.c_str(), document));
}

TEST(XmlAttribute, ReadsTextAndIntegers) {
    TiXmlDocument document;
    document.Parse(
        "<a text='\xE6\xB8\x85&amp;&#x7406;' empty='' n='-3' mixed='12x' hex='0x10' word='x' huge='99999999999'/>",
        nullptr, TIXML_ENCODING_UTF8);
    TiXmlElement& element = *document.RootElement();

    CString text = L"before";
    EXPECT_FALSE(ReadText(element, "Text", text));
    EXPECT_EQ(text, L"before");
    EXPECT_TRUE(ReadText(element, "text", text));
    EXPECT_EQ(text, L"清&理");
    EXPECT_TRUE(ReadText(element, "empty", text));
    EXPECT_EQ(text, L"");
    WriteText(element, "text", L"äöü<\U0001F5D1");
    EXPECT_TRUE(ReadText(element, "text", text));
    EXPECT_EQ(text, L"äöü<\U0001F5D1");

    const std::pair<const char*, int32_t> rows[] = {{"n", -3},    {"mixed", 12}, {"hex", 0},         {"word", 7},
                                                    {"empty", 7}, {"none", 7},   {"huge", INT32_MAX}};
    for (const auto& [name, value] : rows)
        EXPECT_EQ(ReadInteger(element, name, 7), value) << name;
}
