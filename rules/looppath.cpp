#include "rules/looppath.h"

#include <algorithm>

#include "sysservices/filesearch.h"

namespace {

// A folder whose name does not begin with "." and that is no link.
bool IsLoopFolder(const WIN32_FIND_DATAW& entry) noexcept {
    constexpr DWORD kKinds = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return (entry.dwFileAttributes & kKinds) == FILE_ATTRIBUTE_DIRECTORY && entry.cFileName[0] != L'.';
}

void ExpandStep(const CString& folder, const LoopStep& step, std::vector<CString>& matches) {
    for (CFileSearch search(JoinPath(folder, step.path).c_str()); search; search.Next()) {
        if (!IsLoopFolder(search.Entry())) continue;
        CString match = JoinPath(folder, search.Entry().cFileName);
        if (!step.addPath.empty()) match = JoinPath(match, step.addPath);
        matches.push_back(std::move(match));
    }
}

bool IsTerminal(const TerminalSearch& terminals, const wchar_t* name) {
    const CString lower = ToLower(name);
    return std::any_of(terminals.names.begin(), terminals.names.end(), [&](const CString& terminal) {
        return terminals.exactMatch ? lower == terminal : lower.find(terminal) != CString::npos;
    });
}

// Walks everything below `start`, depth first; a match is not descended into. The stack of open searches lives on the
// heap: folders may nest as deep as paths allow.
void FindTerminals(const CString& start, const TerminalSearch& terminals, std::vector<CString>& matches) {
    struct OpenFolder {
        CFileSearch search;
        size_t pathLength;
    };
    CString path = start;
    std::vector<OpenFolder> open;
    const auto enter = [&] {
        const size_t length = path.size();
        path += L"\\*";
        open.push_back({CFileSearch(path.c_str()), length});
    };

    enter();
    while (!open.empty()) {
        OpenFolder& folder = open.back();
        if (!folder.search) {
            open.pop_back();
            continue;
        }
        path.resize(folder.pathLength);
        const bool isFolder = IsLoopFolder(folder.search.Entry());
        if (isFolder) path.append(1, L'\\').append(folder.search.Entry().cFileName);
        const bool isTerminal = isFolder && IsTerminal(terminals, folder.search.Entry().cFileName);
        folder.search.Next();
        if (isTerminal) {
            matches.push_back(path);
        } else if (isFolder) {
            enter();
        }
    }
}

}  // namespace

std::vector<CString> ExpandLoop(const CString& start, const std::list<LoopStep>& steps,
                                const TerminalSearch& terminals) {
    std::vector<CString> current;
    std::vector<CString> previous;
    for (const LoopStep& step : steps) {
        current.clear();
        if (previous.empty()) {
            ExpandStep(start, step, current);
        } else {
            for (const CString& folder : previous)
                ExpandStep(folder, step, current);
        }
        if (current.empty()) break;
        previous = current;
    }
    if (terminals.names.empty()) return current;

    current.clear();
    for (const CString& folder : previous)
        FindTerminals(folder, terminals, current);
    return current;
}
