#include "rules/excludepath.h"

#include <gtest/gtest.h>

#include "tests/support/iatpatch.h"

namespace {

decltype(&LCMapStringEx) g_map;

// Windows lower-cases these letters to others that do not upper-case to them again; here they are left alone.
int WINAPI MapAsWindows(const wchar_t* locale, DWORD flags, const wchar_t* from, int length, wchar_t* to, int room,
                        NLSVERSIONINFO* version, void* reserved, LPARAM handle) {
    const int mapped = g_map(locale, flags, from, length, to, room, version, reserved, handle);
    for (int i = 0; i < mapped; ++i) {
        if (to[i] == L'\u1E9E') to[i] = L'\u00DF';
        if (to[i] == L'\u212A') to[i] = L'k';
        if (to[i] == L'\u2126') to[i] = L'\u03C9';
    }
    return mapped;
}

}  // namespace

TEST(ExcludePath, MatchesTheFolderThatItWasCopiedFromWhateverItsLetters) {
    const IatPatch patch("LCMapStringEx", &MapAsWindows);
    g_map = patch.original<decltype(&LCMapStringEx)>();
    for (wchar_t letter = L' '; letter < 0xFFFF; ++letter) {
        const CString name = CString(L"x") + letter;
        for (const bool exactMatch : {false, true}) {
            const std::list<ExcludePathEntry> entries = {{.path = ToLower(name), .exactMatch = exactMatch}};
            EXPECT_TRUE(FindExcludePath(entries, L"C:\\" + name, ToLower(name))) << std::hex << int{letter};
        }
    }
    const std::list<ExcludePathEntry> entries = {{.path = L"\\ä", .exactMatch = true}};
    EXPECT_TRUE(FindExcludePath(entries, L"C:\\Ä", L"ä") && !FindExcludePath(entries, L"C:\\A", L"a"));
}
