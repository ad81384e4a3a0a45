#pragma once

#include <tinyxml.h>

#include <string>
#include <utility>
#include <vector>

// How much a finding weighs. Only errors make the check fail.
enum class Severity { Error, Warning, Note };

// A kind of finding. Its name is stable: scripts and editors know it.
struct FindingCode {
    const wchar_t* name;
    Severity severity;
};

// Every code; docs/rules.md explains them, docs/dsw-check.schema.json lists them.
namespace FindingCodes {

// The file
inline constexpr FindingCode kCannotRead{L"cannot-read", Severity::Error};
inline constexpr FindingCode kNotWellFormed{L"not-well-formed", Severity::Error};
inline constexpr FindingCode kEncoding{L"encoding", Severity::Warning};

// The schema
inline constexpr FindingCode kNoCategory{L"no-category", Severity::Error};
inline constexpr FindingCode kUnknownElement{L"unknown-element", Severity::Error};
inline constexpr FindingCode kMisplacedElement{L"misplaced-element", Severity::Error};
inline constexpr FindingCode kUnknownAttribute{L"unknown-attribute", Severity::Error};
inline constexpr FindingCode kMissingAttribute{L"missing-attribute", Severity::Error};
inline constexpr FindingCode kWrongType{L"wrong-type", Severity::Error};
inline constexpr FindingCode kUnknownRoot{L"unknown-root", Severity::Error};
inline constexpr FindingCode kUnknownCleaner{L"unknown-cleaner", Severity::Error};
inline constexpr FindingCode kStrayText{L"stray-text", Severity::Warning};
inline constexpr FindingCode kNameForm{L"name-form", Severity::Note};

// The texts
inline constexpr FindingCode kNoTable{L"no-table", Severity::Error};
inline constexpr FindingCode kKeyWithoutEntry{L"key-without-entry", Severity::Warning};
inline constexpr FindingCode kEmptyEntry{L"empty-entry", Severity::Warning};
inline constexpr FindingCode kDuplicateEntry{L"duplicate-entry", Severity::Warning};
inline constexpr FindingCode kUnusedEntry{L"unused-entry", Severity::Note};

// Dangerous rules
inline constexpr FindingCode kDriveRoot{L"drive-root", Severity::Error};
inline constexpr FindingCode kWholeFolder{L"whole-folder", Severity::Error};
inline constexpr FindingCode kRelativeLocation{L"relative-location", Severity::Error};
inline constexpr FindingCode kProgramFolder{L"program-folder", Severity::Warning};
inline constexpr FindingCode kProgramFiles{L"program-files", Severity::Warning};
inline constexpr FindingCode kPersonalFiles{L"personal-files", Severity::Warning};
inline constexpr FindingCode kSystemKey{L"system-key", Severity::Error};
inline constexpr FindingCode kSystemValue{L"system-value", Severity::Warning};
inline constexpr FindingCode kAllValues{L"all-values", Severity::Warning};

// Rules, and parts of rules, that do nothing
inline constexpr FindingCode kIgnoredChildren{L"ignored-children", Severity::Error};
inline constexpr FindingCode kLoopWithoutStep{L"loop-without-step", Severity::Warning};
inline constexpr FindingCode kExcludeWithoutChild{L"exclude-without-child", Severity::Warning};
inline constexpr FindingCode kUnresolvableLocation{L"unresolvable-location", Severity::Warning};
inline constexpr FindingCode kUnreachableToken{L"unreachable-token", Severity::Warning};
inline constexpr FindingCode kImpossibleToken{L"impossible-token", Severity::Warning};
inline constexpr FindingCode kImpossibleExclusion{L"impossible-exclusion", Severity::Warning};
inline constexpr FindingCode kImpossibleKey{L"impossible-key", Severity::Warning};
inline constexpr FindingCode kDroppedToken{L"dropped-token", Severity::Warning};
inline constexpr FindingCode kDoesNothing{L"does-nothing", Severity::Warning};
inline constexpr FindingCode kNoEffect{L"no-effect", Severity::Warning};
inline constexpr FindingCode kDuplicateRule{L"duplicate-rule", Severity::Warning};
inline constexpr FindingCode kLooseExclusion{L"loose-exclusion", Severity::Note};
inline constexpr FindingCode kWholeNameToken{L"whole-name-token", Severity::Note};

}  // namespace FindingCodes

// Something that a check has to say about one place of a file.
struct Finding {
    std::wstring file;
    int line;  // from 1; 0 for the file as a whole
    FindingCode code;
    std::wstring message;
};

// What the checks of one file found, in the order of the checks.
class CFindings {
public:
    explicit CFindings(std::wstring file) : m_file(std::move(file)) {}

    void Add(const FindingCode& code, int line, std::wstring message) {
        m_list.push_back({m_file, line, code, std::move(message)});
    }
    void Add(const FindingCode& code, const TiXmlBase& place, std::wstring message) {
        Add(code, place.Row(), std::move(message));
    }
    const std::vector<Finding>& List() const noexcept { return m_list; }

private:
    const std::wstring m_file;
    std::vector<Finding> m_list;
};
