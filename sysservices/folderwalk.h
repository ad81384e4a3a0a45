#pragma once

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
    const CFoundPath& Path();
    const WIN32_FIND_DATAW& Entry() const noexcept { return m_open.back().search.Entry(); }
    // The entry's name as the end of Path.
    std::wstring_view Name() { return std::wstring_view(Path().Text()).substr(m_open.back().place.text + 1); }
    // False when Next has left a folder behind its last entry.
    bool IsAtEntry() const noexcept { return m_isAtEntry; }

    // A search in the folder that Path names.
    CFileSearch Search(std::wstring_view pattern);
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

    CFoundPath m_path;
    std::vector<OpenFolder> m_open;
    bool m_isAtEntry = false;
    bool m_hasName = false;  // the entry's, behind the path of its folder: of most entries nobody asks for the path
};
