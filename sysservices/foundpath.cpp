#include "sysservices/foundpath.h"

#include "sysservices/literalpath.h"

namespace {

bool IsReadDifferently(std::wstring_view name) noexcept {
    return name.ends_with(L'.') || name.ends_with(L' ');
}

}  // namespace

void CFoundPath::AppendReturned(std::wstring_view name) {
    if (m_literal.empty() && IsReadDifferently(name)) {
        // With the separator: in its middle Windows reads a path differently than at its end.
        m_literal = LiteralPath(m_text + L'\\');
    }
    m_text.append(1, L'\\').append(name);
    if (m_literal.empty()) return;
    // No system joins doubled separators in a literal path.
    while (m_literal.ends_with(L'\\'))
        m_literal.pop_back();
    m_literal.append(1, L'\\').append(name);
}

void CFoundPath::AppendWritten(std::wstring_view names) {
    m_text.append(1, L'\\').append(names);
    if (!m_literal.empty()) AppendToLiteral(m_literal, names);
}
