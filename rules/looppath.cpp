#include "rules/looppath.h"

#include <algorithm>

#include "sysservices/folderwalk.h"

namespace {

// A folder whose name does not begin with "." and that is no link.
bool IsLoopFolder(const WIN32_FIND_DATAW& entry) noexcept {
    constexpr DWORD kKinds = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return (entry.dwFileAttributes & kKinds) == FILE_ATTRIBUTE_DIRECTORY && entry.cFileName[0] != L'.';
}

using Folders = std::vector<CFoundPath>;

void ExpandStep(const CFoundPath& folder, const LoopStep& step, Folders& matches) {
    CFolderWalk walk(folder);
    for (walk.Enter(walk.Search(step.path)); walk.Next();) {
        if (!walk.IsAtEntry() || !IsLoopFolder(walk.Entry())) continue;
        CFoundPath& match = matches.emplace_back(walk.Path());
        if (!step.addPath.empty()) match.AppendWritten(step.addPath);
    }
}

bool IsTerminal(const TerminalSearch& terminals, const wchar_t* name) {
    const CString lower = ToLower(name);
    return std::any_of(terminals.names.begin(), terminals.names.end(), [&](const CString& terminal) {
        return terminals.exactMatch ? lower == terminal : lower.find(terminal) != CString::npos;
    });
}

// A match is not descended into.
void FindTerminals(const CFoundPath& start, const TerminalSearch& terminals, Folders& matches) {
    CFolderWalk walk(start);
    for (walk.Enter(); walk.Next();) {
        if (!walk.IsAtEntry() || !IsLoopFolder(walk.Entry())) continue;
        if (IsTerminal(terminals, walk.Entry().cFileName))
            matches.push_back(walk.Path());
        else
            walk.Enter();
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
