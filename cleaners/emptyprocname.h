#pragma once

// The names by which rules ask for cleaning procedures, compared exactly.
inline constexpr const wchar_t* kClearHistoryName = L"NT_ClearHistory";

inline constexpr const wchar_t* kEmptyProcNames[] = {kClearHistoryName};
