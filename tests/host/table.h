#pragma once

#include <string>
#include <utility>
#include <vector>

#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

// A table of this folder: a paragraph that explains it, then rows "EXPECTED: CASE; CASE", with more cases in lines that
// begin with a blank. Returns each case behind what is expected of it, with what stands for the words in it: those of
// rows "word WORD: MEANING", then the given ones.
inline std::vector<std::pair<std::string, CString>> ReadTable(const CString& name,
                                                              const std::vector<std::pair<CString, CString>>& given) {
    const CString text = Utf8ToWide(ReadFileBytes(L"S:\\tests\\host\\" + name));
    std::vector<std::pair<CString, CString>> rows, words;
    CString expected;
    for (const CString& line : Split(text.substr(text.find(L"\n\n")), L"\n")) {
        const size_t begin = line[0] == L' ' ? 0 : line.rfind(L": ") + 1;
        if (begin > 0) expected = line.substr(0, begin - 1);
        const bool isWord = expected.starts_with(L"word ");
        for (size_t at = begin, end = begin; end != line.npos; at = end + 1) {
            end = line.find(L"; ", at);
            (isWord ? words : rows)
                .emplace_back(expected.substr(isWord ? 5 : 0),
                              line.substr(at + 1, end == line.npos ? end : end - at - 1));
        }
    }
    words.insert(words.end(), given.begin(), given.end());
    std::vector<std::pair<std::string, CString>> cases;
    for (auto& [wanted, example] : rows) {
        for (const auto& [word, meaning] : words)
            for (size_t at; (at = example.find(word)) != example.npos;)
                example.replace(at, word.size(), meaning);
        cases.emplace_back(WideToUtf8(wanted), example);
    }
    return cases;
}
