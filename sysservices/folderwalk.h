#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "sysservices/filesearch.h"
#include "sysservices/foundpath.h"

// A walk through folders, depth first, each entry in the order of its folder. Whoever walks decides which folders to
// enter:
//
//     CFolderWalk walk(location);
//     for (walk.Enter(); walk.Next();)
//         if (walk.IsAtEntry() && IsWanted(walk.Entry())) walk.Enter();
//
// Nothing recurses, and one path serves all levels: a path of 32,000 characters can be 16,000 folders deep. Throws
// std::bad_alloc and what CFoundPath throws.
class CFolderWalk {
public:
    enum class Entries { All, Folders };

    explicit CFolderWalk(CFoundPath start) : m_path(std::move(start)) {}

    // Of the entry at hand, of the folder that has just been left, or where the walk starts.
    const CFoundPath& Path() const;
    const WIN32_FIND_DATAW& Entry() const noexcept { return m_open.back().search.Entry(); }
    // The name of the entry at hand, as the end of Path; only at an entry.
    std::wstring_view Name() const { return std::wstring_view(Path().Text()).substr(m_open.back().place.text + 1); }
    // False when Next has left a folder behind its last entry.
    bool IsAtEntry() const noexcept { return m_isAtEntry; }

    // A search in the folder that Path names.
    CFileSearch Search(std::wstring_view pattern) const;
    // Goes below Path, to what the search finds there, or to the folders alone; one that found nothing makes an empty
    // folder.
    void Enter(CFileSearch search, Entries entries = Entries::All);
    void Enter() { Enter(Search(L"*")); }
    // Moves to the next entry of the innermost open folder, "." and ".." passed over, or leaves it behind the last one.
    // False when no folder is open.
    bool Next();
    // Leaves the innermost open folder, whatever is still in it. False when none is open.
    bool Leave();

private:
    struct OpenFolder {
        CFileSearch search;
        CFoundPath::Place place;
        Entries entries;
        bool isBegun = false;
    };

    std::vector<OpenFolder> m_open;
    bool m_isAtEntry = false;
    // Of most entries nobody asks for the path: the name comes behind that of the folder when somebody does.
    mutable CFoundPath m_path;
    mutable bool m_hasName = false;
};
