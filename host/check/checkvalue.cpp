#include "host/check/checkvalue.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>
#include <vector>

#include "cleaners/emptyprocname.h"
#include "host/check/checknearest.h"
#include "rules/rootkeyname.h"
#include "sysservices/text.h"

namespace {

using Fault = std::optional<CheckValueFault>;

Fault WrongType(const wchar_t* message) {
    return CheckValueFault{CheckCodes::kWrongType, message};
}

std::string_view TrimBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

Fault NumberFault(std::string_view value, int lowest, int highest, const wchar_t* message) {
    const std::string_view digits = TrimBlanks(value);
    const char* const end = digits.data() + digits.size();
    int number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    const bool isWhole = error == std::errc() && stop == end;
    if (isWhole && number >= lowest && number <= highest) return {};
    return WrongType(message);
}

Fault UnknownName(const CheckCode& code, const char* value, const std::vector<std::wstring>& known) {
    const std::wstring name = Utf8ToWide(value);
    if (std::find(known.begin(), known.end(), name) != known.end()) return {};
    return CheckValueFault{code, L"is not known" + NearestHint(name, known)};
}

Fault RootKeyFault(const char* value) {
    std::vector<std::wstring> known;
    for (const RootKeyName& root : kRootKeyNames)
        known.push_back(Utf8ToWide(root.name));
    return UnknownName(CheckCodes::kUnknownRoot, value, known);
}

// Letters beyond ASCII are taken as TinyXML takes them: any may be part of a name.
bool IsNameByte(char c, bool first) noexcept {
    const auto byte = static_cast<unsigned char>(c);
    const bool isLetter = byte >= 0x80 || c == '_' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return isLetter || (!first && (c == '-' || c == '.' || (c >= '0' && c <= '9')));
}

Fault KeyFault(std::string_view value) {
    bool first = true;
    const bool isName =
        std::all_of(value.begin(), value.end(), [&](char c) { return IsNameByte(c, std::exchange(first, false)); });
    if (isName && !value.empty()) return {};
    return WrongType(L"cannot be the name of an XML element, so no text can have this key");
}

Fault ProductNameFault(const char* value) {
    constexpr size_t kLongest = 129;
    if (Utf8ToWide(value).size() <= kLongest) return {};
    return WrongType(L"has more than 129 characters, such a program is never seen");
}

}  // namespace

Fault FindValueFault(CheckType type, const char* value) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    switch (type) {
        case CheckType::Text:
            return {};
        case CheckType::Integer:
            return NumberFault(value, kMin, kMax, L"is no whole number");
        case CheckType::Flag:
            return NumberFault(value, 0, 1, L"is no flag, it takes 0 or 1");
        case CheckType::SelState:
            return NumberFault(value, 0, 2, L"is no state, it takes 0, 1 or 2");
        case CheckType::CatagoryType:
            return NumberFault(value, 0, 3, L"is no type, it takes 0, 1, 2 or 3");
        case CheckType::FolderIndex:
            return NumberFault(value, -1, kMax, L"is no folder number (CSIDL)");
        case CheckType::RootKey:
            return RootKeyFault(value);
        case CheckType::EmptyProc:
            return UnknownName(CheckCodes::kUnknownCleaner, value,
                               {std::begin(kEmptyProcNames), std::end(kEmptyProcNames)});
        case CheckType::Key:
            return KeyFault(value);
        case CheckType::ProductName:
            return ProductNameFault(value);
    }
    return {};
}
