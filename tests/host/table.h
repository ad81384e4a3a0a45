#pragma once

#include <string>
#include <utility>
#include <vector>

#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

// A table of this folder: a paragraph that explains it, then rows "EXPECTED: CASE; CASE", with more cases in lines that
// begin with a blank. Returns each case behind what is expected of it.
inline std::vector<std::pair<std::string, CString>> ReadTable(const CString& name) {
    const CString text = Utf8ToWide(ReadFileBytes(L"S:\\tests\\host\\" + name));
    std::vector<std::pair<std::string, CString>> cases;
    std::string expected;
    for (const CString& line : Split(text.substr(text.find(L"\n\n")), L"\n")) {
        const size_t begin = line[0] == L' ' ? 0 : line.rfind(L": ") + 1;
        if (begin > 0) expected = WideToUtf8(line.substr(0, begin - 1));
        for (size_t at = begin, end = begin; end != line.npos; at = end + 1) {
            end = line.find(L"; ", at);
            cases.emplace_back(expected, line.substr(at + 1, end == line.npos ? end : end - at - 1));
        }
    }
    return cases;
}

// The text with every word of the table replaced by what it stands for.
inline CString Expand(CString text, const std::vector<std::pair<CString, CString>>& words) {
    for (const auto& [word, meaning] : words)
        for (size_t at; (at = text.find(word)) != text.npos;)
            text.replace(at, word.size(), meaning);
    return text;
}
