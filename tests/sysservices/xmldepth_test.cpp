#include "sysservices/xmldepth.h"

#include <gtest/gtest.h>
#include <io.h>
#include <tinyxml.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

#include "tests/support/tempfolder.h"

namespace {

constexpr const char kUtf8Mark[] = "\xEF\xBB\xBF";

size_t DeepestElement(const TiXmlNode& node) {
    size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        deepest = std::max(deepest, DeepestElement(*child));
    return deepest + (node.ToElement() ? 1 : 0);
}

// How deep TinyXML really went, also when it gave up in the end.
struct Parsed {
    size_t depth;
    bool accepted;
};

// One scratch file, because TinyXML prepares line ends only when it loads one.
class TinyXmlParser {
public:
    Parsed Parse(const std::string& xml) {
        std::rewind(m_stream.get());
        _chsize(_fileno(m_stream.get()), 0);
        std::fwrite(xml.data(), 1, xml.size(), m_stream.get());
        TiXmlDocument document;
        const bool accepted = document.LoadFile(m_stream.get());
        return {DeepestElement(document), accepted};
    }

private:
    TempFolder m_folder;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_stream{_wfopen((m_folder / L"a.xml").c_str(), L"w+b"),
                                                             &std::fclose};
};

std::string Repeat(const std::string& text, size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0)
        all += text;
    return all;
}

}  // namespace

// Each row would be miscounted by a scanner that reads its construct in another way than TinyXML.
TEST(XmlDepth, ReadsConstructsAsTinyXmlDoes) {
    const std::string bom = kUtf8Mark;
    const struct {
        std::string xml;
        size_t depth;
    } rows[] = {
        {"", 0},
        {"text<a>", 0},
        {"<a/>", 1},
        {"<a><b/><b></b></a >", 2},
        {"<a><!--</a><b>--><c/></a>", 2},
        {"<a><!--><b>--><c/></a>", 2},
        {"<a><![CDATA[</a><b><c>]]><c/></a>", 2},
        {"<a><![cdata[</a>]]><c><d/></c></a>", 3},  // an unknown tag up to the first ">", then a text
        {"<a x='</a>' y=\"/>'\"><c/></a>", 2},
        {"<a x=b/c><d>", 1},
        {"<a x=b'><d>", 1},
        {"<a x=/><b><c/></b>", 2},
        {"<!DOCTYPE a [<!ELEMENT b>]><a><b>", 0},  // text outside the root ends the document
        {"<?XML version='>'?><a/>", 1},
        {"<?xml other='><a><b/></a>", 2},
        {"<?xml version='1.0' encoding='x'><a><?xml version='</a>'><b/></a>", 2},
        {"</a></a><a><b/></a>", 2},
        {"< a><a/>", 1},
        {std::string("<a>\0<b><c>", 10), 1},
        {"<a>&#</a><b>#34;<c/></a>", 2},  // one entity up to the semicolon
        {"<a x='&#x'></a>x34;'><c/></a>", 2},
        {"<a>&#<b><c>", 1},
        {bom + "<a>\xE4</a><b/></a>", 2},  // a three-byte character takes "</" along
        {"<?xml version='1.0'?><a>\xE4</a><b/></a>", 2},
        {"<?xml encoding='UTF-8'?><a>\xE4</a><b/></a>", 2},
        {"<?xml encoding='latin1'?><a>\xE4</a>", 1},
        {"<a><?xml encoding='UTF-8'?>\xE4</a><b/>", 1},  // too deep to count as a declaration
        {bom + "<a>\xE4\r\n</a><b/></a>", 2},            // a line end is one byte
        {bom + "<a>\xE4\r\r</a><b/>", 1},
        {bom + "<" + bom + "a x" + bom + "='" + bom + "'/>", 1},
        {"<" + bom + " a='<b>'>", 1},
        {bom + "<a>\xE4", kXmlDepthUnknown},
        {bom + "<a x='\xF0zz", kXmlDepthUnknown},
        {bom + "<a>\xE4zz", 1},
        {"<?xml encoding='UTF&#45;8'?><a/>", kXmlDepthUnknown},
        {std::string("\xFF\xFE<\0a\0>\0", 8), 0},
        {std::string("<\0a\0>\0", 6), 0},
    };
    TinyXmlParser tinyXml;
    for (const auto& row : rows) {
        const size_t depth = MeasureXmlDepth(row.xml);
        EXPECT_EQ(depth, row.depth) << row.xml;
        // TinyXML leaves its buffer when the depth cannot be told.
        if (depth == kXmlDepthUnknown) continue;
        const Parsed parsed = tinyXml.Parse(row.xml);
        EXPECT_GE(depth, parsed.depth) << row.xml;
        EXPECT_EQ(parsed.accepted ? parsed.depth : depth, depth) << row.xml;
    }
}

// Random soups of everything that means something to the parser. The depth of an accepted text must be exact, or sound
// files would be refused; that of a rejected one must not be too small.
TEST(XmlDepth, NeverFallsShortOfTinyXml) {
    const std::string starts[] = {"", kUtf8Mark, "<?xml version='1.0'?>", "<?xml encoding='x'?>", "<?xml encoding="};
    const std::string tokens[] = {
        "<a>",  "<a>",      "<a>",     "<a>", "</a>",      "</a>",     "</a>", "</a>",
        "<b/>", "<a x='",   "<a x=\"", "'",   "\"",        ">",        "'>",   "\">",
        "/>",   "<!--",     "-->",     "--",  "<![CDATA[", "]]>",      "<!",   "<",
        "/",    "=",        "x",       " y=", "<?xml ",    "version=", "?>",   " encoding='utf8'",
        "&#",   "&#x",      ";",       "#",   "1",         kUtf8Mark,  "\xE4", "\xEF\xBF\xBE",
        "\xF0", "\xC3\xA4", "\r\n",    "\r",  "\n",        " ",        "text", "&lt;",
        "\x7F", "_"};
    std::mt19937 random(20260705);
    TinyXmlParser tinyXml;
    int deep = 0;
    int accepted = 0;
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        std::string xml = starts[random() % std::size(starts)];
        const bool closed = random() % 2 == 0;
        if (closed) xml += "<a>";
        for (size_t count = random() % 16; count > 0; --count)
            xml += tokens[random() % std::size(tokens)];
        if (closed) xml += "</a>";
        const size_t depth = MeasureXmlDepth(xml);
        if (depth == kXmlDepthUnknown) continue;
        const Parsed parsed = tinyXml.Parse(xml);
        ASSERT_GE(depth, parsed.depth) << xml;
        ASSERT_EQ(parsed.accepted ? parsed.depth : depth, depth) << xml;
        deep += parsed.depth > 1;
        accepted += parsed.accepted;
    }
    // The soups are worth something only if many of them get somewhere.
    EXPECT_GT(deep, 800);
    EXPECT_GT(accepted, 500);
}

TEST(XmlDepth, MeasuresHugeTextsInLinearTime) {
    constexpr size_t kBytes = 20'000'000;
    const struct {
        const char* head;
        const char* unit;
        size_t depth;
    } rows[] = {
        {"", "<a>", kBytes / 3},   {"", "<!--", 0},  {"<a>", "<![CDATA[", 1},           {"<a>", "&#", 1},
        {"<a>", "&#x1", 1},        {"<a>", "</", 1}, {"<a b='", "\xC3\xA4 &amp; <", 1}, {"<a><!--", "-", 1},
        {"<?xml ", "version=", 0},
    };
    for (const auto& row : rows) {
        const std::string xml = row.head + Repeat(row.unit, kBytes / std::string_view(row.unit).size());
        EXPECT_EQ(MeasureXmlDepth(xml), row.depth) << row.head << row.unit;
    }
}
