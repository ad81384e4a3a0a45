#pragma once

#include "sysservices/text.h"

// A path that a walk puts together: a location that somebody wrote, then names that searches return, and what else was
// written for the folders found.
//
// The names that searches return are exact: Windows would take a folder or file "a." for its neighbour "a".
// From the first name downwards that ends in a dot or blank the path has a second, literal form, which alone names what
// was found; before that its text does, read as Windows reads every written path.
class CFoundPath {
public:
    explicit CFoundPath(std::wstring_view written) : m_text(written) {}

    // As put together; what hosts are told and exclusions are compared with.
    const CString& Text() const noexcept { return m_text; }
    // Empty while the text will do.
    const CString& Literal() const noexcept { return m_literal; }
    // For the file functions: the one of the two that names what was found.
    const CString& Exact() const noexcept { return m_literal.empty() ? m_text : m_literal; }

    // Both append a separator before. Throw what LiteralPath throws.
    void AppendReturned(std::wstring_view name);
    void AppendWritten(std::wstring_view names);

    // To go back to a folder after what was appended below it. Once there is a literal form, only returned names can be
    // taken back like that: a ".." that was written took away from it.
    struct Place {
        size_t text;
        size_t literal;
    };
    Place Here() const noexcept { return {m_text.size(), m_literal.size()}; }
    void Return(Place place) noexcept {
        m_text.resize(place.text);
        m_literal.resize(place.literal);
    }

private:
    CString m_text;
    CString m_literal;
};
