#include "sysservices/xmldocument.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <io.h>
#include <tinyxml.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>
#include <sstream>

#include "sysservices/handle.h"
#include "sysservices/xmldepth.h"
#include "tests/support/tempfolder.h"

using namespace std::string_literals;

namespace {

bool Loads(const std::wstring& path) {
    TiXmlDocument document;
    return LoadXmlDocument(path.c_str(), document);
}

std::string Nested(int depth) {
    return depth == 0 ? "" : "<a>" + Nested(depth - 1) + "</a>";
}

size_t DeepestElement(const TiXmlNode& node) {
    size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        deepest = std::max(deepest, DeepestElement(*child));
    return deepest + (node.ToElement() ? 1 : 0);
}

std::string Printed(const TiXmlDocument& document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    return printer.CStr();
}

std::string WithoutCr(std::string xml) {
    for (size_t at = 0; (at = xml.find('\r', at)) != xml.npos;)
        xml.replace(at, xml.compare(at, 2, "\r\n") == 0 ? 2 : 1, "\n");
    return xml;
}

struct XmlDepth : testing::Test {
    // TinyXML, which prepares line ends when it loads a file itself, is the judge: the depth of a text that it accepts
    // must be exact, or sound files would be refused; any other must not be too small. What our loading makes of the
    // file must be the same document.
    void Compare(const std::string& xml) {
        const size_t depth = MeasureXmlDepth(WithoutCr(xml));
        if (depth == kXmlDepthUnknown) return;  // TinyXML leaves its buffer
        std::rewind(m_stream.get());
        _chsize(_fileno(m_stream.get()), 0);
        std::fwrite(xml.data(), 1, xml.size(), m_stream.get());
        TiXmlDocument document, loaded;
        const bool accepted = document.LoadFile(m_stream.get());
        if (xml.find('\r') != xml.npos) {
            EXPECT_EQ(LoadXmlDocument(m_path.c_str(), loaded), accepted) << xml;
            EXPECT_EQ(Printed(loaded), Printed(document)) << xml;
        }
        const size_t parsed = DeepestElement(document);
        EXPECT_GE(depth, parsed) << xml;
        EXPECT_EQ(accepted && parsed > 0 ? parsed : depth, depth) << xml;
        m_accepted += accepted && parsed > 1;
    }
    TempFolder m_folder;
    const std::wstring m_path = m_folder / L"a.xml";
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_stream{_wfopen(m_path.c_str(), L"w+b"), &std::fclose};
    int m_accepted = 0;
};

}  // namespace

TEST(XmlDocument, LoadsWhatCanBeParsedSafely) {
    const TempFolder folder;
    const std::string sound = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<root/>\r\n";
    for (const std::string& xml : {sound, "<!-- no element -->"s, Nested(256)})
        EXPECT_TRUE(Loads(folder.Write(L"a.xml", xml))) << xml;
    for (const std::string& xml :
         {Nested(257), ""s, "not XML"s, "<root><child></root>"s, "\xEF\xBB\xBF<root>\xE6"s, "\xFF\xFE<\0r\0/\0>\0"s})
        EXPECT_FALSE(Loads(folder.Write(L"a.xml", xml))) << xml.substr(0, 60);
    for (const std::wstring& path : {folder / L"missing.xml", folder.path(), std::wstring(L"NUL"), std::wstring()})
        EXPECT_FALSE(Loads(path));

    const std::wstring part(120, L'p'), path = folder.Write(part + L"\\" + part + L"\\" + part + L"\\清理.xml", sound);
    EXPECT_TRUE(Loads(path) && Loads(L"\\\\?\\" + path));
    const CHandle writer(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(Loads(path)) << "somebody else may be writing to it";
}

TEST_F(XmlDepth, NeverFallsShortOfTinyXml) {
    const std::string starts[] = {"", "\xEF\xBB\xBF", "<?xml version='1.0'?>", "<?xml encoding='x'?>",
                                  "<?xml encoding="};
    std::istringstream all(
        "<a>|<a>|<a>|<a>|</a>|</a>|</a>|</a>|<b/>|<a x='|<a x=\"|'|\"|>|'>|\">|/>|<!--|-->|--|"
        "<![CDATA[|<![cdata[|]]>|<!|<|/|=|x| y=|<?xml |version=|?>| encoding='utf8'|&#|&#x|;|#|1|"
        "\xEF\xBB\xBF|\xE4|\xEF\xBF\xBE|\xF0|\xC3\xA4|\r\n|\r|\n| |text|&lt;|\x7F|_");
    std::vector<std::string> tokens;
    for (std::string token; std::getline(all, token, '|');)
        tokens.push_back(token);
    std::mt19937 random(20260705);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const bool closed = random() % 2 == 0;
        std::string xml = starts[random() % std::size(starts)] + (closed ? "<a>" : "");
        for (size_t count = random() % 16; count > 0; --count)
            xml += tokens[random() % tokens.size()];
        Compare(xml + (closed ? "</a>" : ""));
    }
    EXPECT_GT(m_accepted, 300) << "the soups are worth something only if many of them get somewhere";
    // Here TinyXML would read beyond the end, or nobody knows.
    for (const char* xml : {"\xEF\xBB\xBF<a>\xE4", "\xEF\xBB\xBF<a x='\xF0zz", "<?xml encoding='UTF&#45;8'?><a/>"})
        EXPECT_EQ(MeasureXmlDepth(xml), kXmlDepthUnknown) << xml;
}
