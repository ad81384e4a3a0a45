#pragma once

// How much a finding weighs. Only errors make the check fail.
enum class CheckSeverity { Error, Warning, Note };

// A kind of finding. Its name is stable: scripts and editors know it.
struct CheckCode {
    const wchar_t* name;
    CheckSeverity severity;
};

// Every code; docs/rules.md explains them, docs/dsw-check.schema.json lists them.
namespace CheckCodes {

// The file
inline constexpr CheckCode kCannotRead{L"cannot-read", CheckSeverity::Error};
inline constexpr CheckCode kNotWellFormed{L"not-well-formed", CheckSeverity::Error};
inline constexpr CheckCode kEncoding{L"encoding", CheckSeverity::Warning};

// The schema
inline constexpr CheckCode kNoCategory{L"no-category", CheckSeverity::Error};
inline constexpr CheckCode kUnknownElement{L"unknown-element", CheckSeverity::Error};
inline constexpr CheckCode kMisplacedElement{L"misplaced-element", CheckSeverity::Error};
inline constexpr CheckCode kUnknownAttribute{L"unknown-attribute", CheckSeverity::Error};
inline constexpr CheckCode kMissingAttribute{L"missing-attribute", CheckSeverity::Error};
inline constexpr CheckCode kWrongType{L"wrong-type", CheckSeverity::Error};
inline constexpr CheckCode kUnknownRoot{L"unknown-root", CheckSeverity::Error};
inline constexpr CheckCode kUnknownCleaner{L"unknown-cleaner", CheckSeverity::Error};
inline constexpr CheckCode kStrayText{L"stray-text", CheckSeverity::Warning};
inline constexpr CheckCode kNameForm{L"name-form", CheckSeverity::Note};

// The texts
inline constexpr CheckCode kNoTable{L"no-table", CheckSeverity::Error};
inline constexpr CheckCode kKeyWithoutEntry{L"key-without-entry", CheckSeverity::Warning};
inline constexpr CheckCode kEmptyEntry{L"empty-entry", CheckSeverity::Warning};
inline constexpr CheckCode kDuplicateEntry{L"duplicate-entry", CheckSeverity::Warning};
inline constexpr CheckCode kUnusedEntry{L"unused-entry", CheckSeverity::Note};

// Dangerous rules
inline constexpr CheckCode kDriveRoot{L"drive-root", CheckSeverity::Error};
inline constexpr CheckCode kWholeFolder{L"whole-folder", CheckSeverity::Error};
inline constexpr CheckCode kRelativeLocation{L"relative-location", CheckSeverity::Error};
inline constexpr CheckCode kProgramFolder{L"program-folder", CheckSeverity::Warning};
inline constexpr CheckCode kAllValues{L"all-values", CheckSeverity::Warning};

// Rules, and parts of rules, that do nothing
inline constexpr CheckCode kIgnoredChildren{L"ignored-children", CheckSeverity::Error};
inline constexpr CheckCode kLoopWithoutStep{L"loop-without-step", CheckSeverity::Warning};
inline constexpr CheckCode kExcludeWithoutChild{L"exclude-without-child", CheckSeverity::Warning};
inline constexpr CheckCode kUnresolvableLocation{L"unresolvable-location", CheckSeverity::Warning};
inline constexpr CheckCode kUnreachableToken{L"unreachable-token", CheckSeverity::Warning};
inline constexpr CheckCode kImpossibleToken{L"impossible-token", CheckSeverity::Warning};
inline constexpr CheckCode kDroppedToken{L"dropped-token", CheckSeverity::Warning};
inline constexpr CheckCode kDoesNothing{L"does-nothing", CheckSeverity::Warning};
inline constexpr CheckCode kNoEffect{L"no-effect", CheckSeverity::Warning};
inline constexpr CheckCode kDuplicateRule{L"duplicate-rule", CheckSeverity::Warning};
inline constexpr CheckCode kLooseExclusion{L"loose-exclusion", CheckSeverity::Note};
inline constexpr CheckCode kWholeNameToken{L"whole-name-token", CheckSeverity::Note};

}  // namespace CheckCodes
