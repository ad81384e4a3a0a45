#pragma once

#include <tinyxml.h>

#include <string>
#include <utility>
#include <vector>

#include "host/check/checkcode.h"

// Something that a check has to say about one place of a file.
struct CheckFinding {
    std::wstring file;
    int line;  // from 1; 0 for the file as a whole
    CheckCode code;
    std::wstring message;
};

// What the checks of one file found, in the order of the checks.
class CCheckFindings {
public:
    explicit CCheckFindings(std::wstring file) : m_file(std::move(file)) {}

    void Add(const CheckCode& code, int line, std::wstring message) {
        m_list.push_back({m_file, line, code, std::move(message)});
    }
    void Add(const CheckCode& code, const TiXmlBase& place, std::wstring message) {
        Add(code, place.Row(), std::move(message));
    }
    const std::vector<CheckFinding>& List() const noexcept { return m_list; }

private:
    const std::wstring m_file;
    std::vector<CheckFinding> m_list;
};
