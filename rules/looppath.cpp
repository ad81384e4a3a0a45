#include "rules/looppath.h"

#include <algorithm>

#include "sysservices/filesearch.h"

namespace {

// A folder whose name does not begin with "." and that is no link.
bool IsLoopFolder(const WIN32_FIND_DATAW& entry) noexcept {
    constexpr DWORD kKinds = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return (entry.dwFileAttributes & kKinds) == FILE_ATTRIBUTE_DIRECTORY && entry.cFileName[0] != L'.';
}

using Folders = std::vector<CFoundPath>;

void ExpandStep(const CFoundPath& folder, const LoopStep& step, Folders& matches) {
    CFoundPath pattern = folder;
    pattern.AppendWritten(step.path);
    for (CFileSearch search(pattern.Exact().c_str()); search; search.Next()) {
        if (!IsLoopFolder(search.Entry())) continue;
        CFoundPath match = folder;
        match.AppendReturned(search.Entry().cFileName);
        if (!step.addPath.empty()) match.AppendWritten(step.addPath);
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
void FindTerminals(const CFoundPath& start, const TerminalSearch& terminals, Folders& matches) {
    struct OpenFolder {
        CFileSearch search;
        CFoundPath::Place place;
    };
    CFoundPath path = start;
    std::vector<OpenFolder> open;
    const auto enter = [&] {
        const CFoundPath::Place place = path.Here();
        path.AppendWritten(L"*");
        open.push_back({CFileSearch(path.Exact().c_str()), place});
    };

    enter();
    while (!open.empty()) {
        OpenFolder& folder = open.back();
        if (!folder.search) {
            open.pop_back();
            continue;
        }
        path.Return(folder.place);
        const bool isFolder = IsLoopFolder(folder.search.Entry());
        if (isFolder) path.AppendReturned(folder.search.Entry().cFileName);
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

std::vector<CFoundPath> ExpandLoop(const CString& start, const std::list<LoopStep>& steps,
                                   const TerminalSearch& terminals) {
    Folders current;
    Folders previous;
    for (const LoopStep& step : steps) {
        current.clear();
        if (previous.empty()) {
            ExpandStep(CFoundPath(start), step, current);
        } else {
            for (const CFoundPath& folder : previous)
                ExpandStep(folder, step, current);
        }
        if (current.empty()) break;
        previous = current;
    }
    if (terminals.names.empty()) return current;

    current.clear();
    for (const CFoundPath& folder : previous)
        FindTerminals(folder, terminals, current);
    return current;
}
