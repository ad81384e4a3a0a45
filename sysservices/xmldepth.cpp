#include "sysservices/xmldepth.h"

#include <tinyxml.h>

#include <algorithm>
#include <array>
#include <cctype>

// The scanner mirrors this version to the byte.
static_assert(TIXML_MAJOR_VERSION == 2 && TIXML_MINOR_VERSION == 6 && TIXML_PATCH_VERSION == 2);

namespace {

// Steps through a text token by token exactly as TinyXML does, its oddities included: whoever skips one byte more or
// less than TinyXML can be fooled about what is an element. Where TinyXML rejects the text it ends at once, so there
// the scanner may stop too, or run on and count too much; it never has to tell whether a text is well-formed.
class CXmlScanner {
public:
    explicit CXmlScanner(std::string_view xml) noexcept;
    size_t Measure() noexcept;

private:
    enum class Encoding { unknown, utf8, legacy };

    void SkipNode() noexcept;
    void SkipDeclaration() noexcept;
    void SkipStartTag() noexcept;
    void SkipEndTag() noexcept;
    std::string_view SkipAttribute() noexcept;
    void SkipValue() noexcept;
    void SkipName() noexcept;
    void SkipText() noexcept;
    void SkipPlain() noexcept;
    void SkipCharacter() noexcept;
    void SkipBytes(size_t count) noexcept;
    void SkipBlanks() noexcept;
    void SkipPast(std::string_view mark, size_t from) noexcept;
    void ChooseEncoding(std::string_view name) noexcept;

    bool IsByteOrderMark() const noexcept;
    bool IsBlank() const noexcept { return m_blank[static_cast<unsigned char>(m_rest.front())]; }
    bool IsNameStart(size_t at) const noexcept;
    bool StartsWithAnyCase(std::string_view lower) const noexcept { return HasPrefix(m_rest, lower); }
    static bool IsPlain(char c) noexcept { return (c & 0x80) == 0 && c != '<' && c != '&' && c != '"' && c != '\''; }
    static bool HasPrefix(std::string_view text, std::string_view lower) noexcept;

    bool AtEnd() const noexcept { return m_rest.empty(); }
    bool Is(char c) const noexcept { return !m_rest.empty() && m_rest.front() == c; }
    void Advance(size_t count) noexcept { m_rest.remove_prefix(count); }
    // TinyXML ends here.
    void Stop() noexcept { m_rest = {}; }
    // Nobody knows what TinyXML does here.
    void GiveUp() noexcept {
        m_deepest = kXmlDepthUnknown;
        Stop();
    }

    std::string_view m_rest;
    Encoding m_encoding = Encoding::unknown;
    size_t m_depth = 0;
    size_t m_deepest = 0;
    // What TinyXML takes for blanks, letters and digits depends on the host's locale, so it is asked once per text.
    std::array<bool, 256> m_blank;
    std::array<bool, 256> m_nameStart;
    std::array<bool, 256> m_nameByte;
};

// A text ends at its first NUL, as in TinyXML.
CXmlScanner::CXmlScanner(std::string_view xml) noexcept : m_rest(xml.substr(0, xml.find('\0'))) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto at = static_cast<size_t>(byte);
        m_blank[at] = std::isspace(byte) != 0;
        m_nameStart[at] = byte >= 127 || byte == '_' || std::isalpha(byte) != 0;
        m_nameByte[at] = m_nameStart[at] || byte == '-' || byte == '.' || byte == ':' || std::isalnum(byte) != 0;
    }
}

size_t CXmlScanner::Measure() noexcept {
    if (m_rest.starts_with("\xEF\xBB\xBF")) m_encoding = Encoding::utf8;
    for (SkipBlanks(); !AtEnd(); SkipBlanks())
        SkipNode();
    return m_deepest;
}

void CXmlScanner::SkipNode() noexcept {
    if (!Is('<')) return m_depth > 0 ? SkipText() : Stop();
    if (StartsWithAnyCase("<?xml")) return SkipDeclaration();
    if (m_rest.starts_with("<!--")) return SkipPast("-->", 4);
    if (m_rest.starts_with("<![CDATA[")) return SkipPast("]]>", 9);
    if (m_rest.starts_with("</")) return SkipEndTag();
    if (IsNameStart(1)) return SkipStartTag();
    SkipPast(">", 1);
}

// Ends at the first ">" outside the values of the three attributes that TinyXML reads.
void CXmlScanner::SkipDeclaration() noexcept {
    std::string_view encoding;
    Advance(5);
    for (SkipBlanks(); !AtEnd() && !Is('>'); SkipBlanks()) {
        if (StartsWithAnyCase("version") || StartsWithAnyCase("standalone")) {
            SkipAttribute();
        } else if (StartsWithAnyCase("encoding")) {
            encoding = SkipAttribute();
        } else {
            while (!AtEnd() && !Is('>') && !IsBlank())
                Advance(1);
        }
    }
    if (AtEnd()) return;
    Advance(1);
    if (m_depth == 0 && m_encoding == Encoding::unknown) ChooseEncoding(encoding);
}

void CXmlScanner::ChooseEncoding(std::string_view name) noexcept {
    // TinyXML would decode the entity; no real encoding has one in its name.
    if (name.find('&') != std::string_view::npos) return GiveUp();
    const bool isUtf8 = name.empty() || HasPrefix(name, "utf-8") || HasPrefix(name, "utf8");
    m_encoding = isUtf8 ? Encoding::utf8 : Encoding::legacy;
}

void CXmlScanner::SkipStartTag() noexcept {
    m_deepest = std::max(m_deepest, ++m_depth);
    Advance(1);
    SkipBlanks();
    SkipName();
    for (SkipBlanks(); !AtEnd() && !Is('>') && !Is('/'); SkipBlanks())
        SkipAttribute();
    if (Is('>')) return Advance(1);
    if (!m_rest.starts_with("/>")) return Stop();
    Advance(2);
    --m_depth;
}

// The name is not compared: TinyXML ends at a wrong one, and the next ">" closes a right one.
void CXmlScanner::SkipEndTag() noexcept {
    if (m_depth > 0) --m_depth;
    SkipPast(">", 2);
}

// Returns the value as it is written, without its quotes.
std::string_view CXmlScanner::SkipAttribute() noexcept {
    SkipName();
    SkipBlanks();
    if (!Is('=')) {
        Stop();
        return {};
    }
    Advance(1);
    SkipBlanks();
    const char quote = Is('"') ? '"' : '\'';
    if (!Is(quote)) {
        const std::string_view value = m_rest;
        SkipValue();
        return value.substr(0, value.size() - m_rest.size());
    }
    Advance(1);
    const std::string_view value = m_rest;
    for (SkipPlain(); !AtEnd() && !Is(quote); SkipPlain())
        SkipCharacter();
    if (AtEnd()) return {};
    const size_t length = value.size() - m_rest.size();
    Advance(1);
    return value.substr(0, length);
}

// A value without quotes; a quote inside is an error.
void CXmlScanner::SkipValue() noexcept {
    while (!AtEnd() && !IsBlank() && !Is('/') && !Is('>')) {
        if (Is('"') || Is('\'')) return Stop();
        Advance(1);
    }
}

void CXmlScanner::SkipName() noexcept {
    if (!IsNameStart(0)) return Stop();
    while (!AtEnd() && m_nameByte[static_cast<unsigned char>(m_rest.front())])
        Advance(1);
}

void CXmlScanner::SkipText() noexcept {
    for (SkipPlain(); !AtEnd() && !Is('<'); SkipPlain()) {
        if (IsBlank())  // beyond ASCII: in some of a host's locales
            Advance(1);
        else
            SkipCharacter();
    }
}

// Most of every file: ASCII that starts nothing and ends nothing.
void CXmlScanner::SkipPlain() noexcept {
    Advance(static_cast<size_t>(std::find_if_not(m_rest.begin(), m_rest.end(), IsPlain) - m_rest.begin()));
}

// One character of a text or a quoted value. A numeric entity reaches to the next ";", whatever stands between:
// TinyXML reads the digits backwards from there.
void CXmlScanner::SkipCharacter() noexcept {
    if (m_encoding == Encoding::utf8) {
        const int length = TiXmlBase::utf8ByteTable[static_cast<unsigned char>(m_rest.front())];
        if (length > 1) return SkipBytes(static_cast<size_t>(length));
    }
    if (m_rest.starts_with("&#") && m_rest.size() > 2) return SkipPast(";", 2);
    Advance(1);
}

// The bytes of one UTF-8 character, which TinyXML does not check: it passes over a "<" or a quote, and over the end of
// the text into whatever follows it in memory.
void CXmlScanner::SkipBytes(size_t count) noexcept {
    if (count > m_rest.size()) return GiveUp();
    Advance(count);
}

void CXmlScanner::SkipBlanks() noexcept {
    while (!AtEnd()) {
        if (m_encoding == Encoding::utf8 && IsByteOrderMark())
            Advance(3);
        else if (IsBlank())
            Advance(1);
        else
            return;
    }
}

void CXmlScanner::SkipPast(std::string_view mark, size_t from) noexcept {
    const size_t at = m_rest.find(mark, from);
    if (at == std::string_view::npos) return Stop();
    Advance(at + mark.size());
}

// The byte order mark and the two noncharacters U+FFFE and U+FFFF are blanks to TinyXML, anywhere.
bool CXmlScanner::IsByteOrderMark() const noexcept {
    if (!Is('\xEF')) return false;
    return m_rest.starts_with("\xEF\xBB\xBF") || m_rest.starts_with("\xEF\xBF\xBE")
           || m_rest.starts_with("\xEF\xBF\xBF");
}

bool CXmlScanner::IsNameStart(size_t at) const noexcept {
    return at < m_rest.size() && m_nameStart[static_cast<unsigned char>(m_rest[at])];
}

bool CXmlScanner::HasPrefix(std::string_view text, std::string_view lower) noexcept {
    const auto fold = [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); };
    return text.size() >= lower.size()
           && std::equal(lower.begin(), lower.end(), text.begin(), [&](char a, char b) { return a == fold(b); });
}

}  // namespace

size_t MeasureXmlDepth(std::string_view xml) noexcept {
    return CXmlScanner(xml).Measure();
}
