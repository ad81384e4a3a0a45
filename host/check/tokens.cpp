#include "host/check/rulechecks.h"

#include <cwctype>

#include "rules/containment.h"

namespace {

// How names begin that end in a token: enough to go every way through the set.
constexpr std::wstring_view kBeginnings = L"0123456789abcdefghijklmnopqrstuvwxyz_\u00E4\u4E2D";

// A name that ends in the token and is not excluded all the same; empty when there is none.
std::wstring FindUnprotected(const ContainmentSet& tokens, const std::wstring& token) {
    for (const wchar_t beginning : kBeginnings) {
        std::wstring name = beginning + token;
        if (!tokens.contains(std::wstring_view(name))) return name;
    }
    return {};
}

// How a token reads: as a part that names end in (".log", "_old"), as a whole name ("index.dat"), or as either.
enum class TokenForm { Part, WholeName, Either };

TokenForm FormOf(const std::wstring& token) noexcept {
    if (!std::iswalnum(token.front())) return TokenForm::Part;
    return token.find(L'.') != std::wstring::npos ? TokenForm::WholeName : TokenForm::Either;
}

void CheckReach(const ContainmentSet& tokens, const std::wstring& token, const TiXmlBase& place, CFindings& findings) {
    if (token.find_first_of(L"*?\"<>:/\\") != std::wstring::npos) {
        findings.Add(FindingCodes::kImpossibleToken, place,
                     L"\"" + token + L"\" keeps nothing: tokens are parts of names, without wildcards");
        return;
    }
    const TokenForm form = FormOf(token);
    // A name that equals its token is always found.
    if (form == TokenForm::WholeName) return;
    const std::wstring name = FindUnprotected(tokens, token);
    if (name.empty()) return;
    findings.Add(form == TokenForm::Part ? FindingCodes::kUnreachableToken : FindingCodes::kWholeNameToken, place,
                 L"\"" + token + L"\" does not keep \"" + name + L"\": the order of the tokens hides it");
}

}  // namespace

void CheckTokens(const CheckedRule& rule, CFindings& findings) {
    const TiXmlBase& place = rule.PlaceOf("ExcludeFilter");
    ContainmentSet tokens;
    for (const std::wstring& token : rule.excludedNames) {
        const auto [equivalent, isNew] = tokens.insert(token);
        // What contains a dropped token that contains the other is excluded all the same.
        if (isNew || token.find(*equivalent) != std::wstring::npos) continue;
        findings.Add(FindingCodes::kDroppedToken, place,
                     L"\"" + token + L"\" is dropped, since \"" + *equivalent + L"\" stands before it");
    }
    for (const std::wstring& token : tokens)
        CheckReach(tokens, token, place, findings);
}
