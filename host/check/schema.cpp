#include "host/check/schema.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <utility>

#include "cleaners/emptyprocname.h"
#include "host/check/nearest.h"
#include "rules/rootkeyname.h"
#include "sysservices/text.h"

namespace {

// What an attribute may hold.
enum class AttributeType {
    Text,
    Integer,
    Flag,
    SelState,
    CatagoryType,
    FolderIndex,
    RootKey,
    EmptyProc,
    Key,
    ProductName
};

// Why a value does not fit.
struct ValueFault {
    FindingCode code;
    std::wstring message;
};
using Fault = std::optional<ValueFault>;

Fault WrongType(const wchar_t* message) {
    return ValueFault{FindingCodes::kWrongType, message};
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

Fault UnknownName(const FindingCode& code, const char* value, const std::vector<std::wstring>& known) {
    const std::wstring name = Utf8ToWide(value);
    if (std::find(known.begin(), known.end(), name) != known.end()) return {};
    return ValueFault{code, L"is not known" + NearestHint(name, known)};
}

Fault RootKeyFault(const char* value) {
    std::vector<std::wstring> known;
    for (const RootKeyName& root : kRootKeyNames)
        known.push_back(Utf8ToWide(root.name));
    return UnknownName(FindingCodes::kUnknownRoot, value, known);
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

// Nothing when the value (UTF-8, as in the file) fits the type.
Fault FindValueFault(AttributeType type, const char* value) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    switch (type) {
        case AttributeType::Text:
            return {};
        case AttributeType::Integer:
            return NumberFault(value, kMin, kMax, L"is no whole number");
        case AttributeType::Flag:
            return NumberFault(value, 0, 1, L"is no flag, it takes 0 or 1");
        case AttributeType::SelState:
            return NumberFault(value, 0, 2, L"is no state, it takes 0, 1 or 2");
        case AttributeType::CatagoryType:
            return NumberFault(value, 0, 3, L"is no type, it takes 0, 1, 2 or 3");
        case AttributeType::FolderIndex:
            return NumberFault(value, -1, kMax, L"is no folder number (CSIDL)");
        case AttributeType::RootKey:
            return RootKeyFault(value);
        case AttributeType::EmptyProc:
            return UnknownName(FindingCodes::kUnknownCleaner, value,
                               {std::begin(kEmptyProcNames), std::end(kEmptyProcNames)});
        case AttributeType::Key:
            return KeyFault(value);
        case AttributeType::ProductName:
            return ProductNameFault(value);
    }
    return {};
}

struct AttributeShape {
    const char* name;
    AttributeType type;
    bool required = false;
};

struct ElementShape {
    const char* name;
    std::span<const AttributeShape> attributes;
    std::span<const ElementShape* const> children;
};

using enum AttributeType;

constexpr AttributeShape kStepAttributes[] = {
    {"Path", Text}, {"AddPath", Text}, {"TerminalPath", Text}, {"ExactMatch", Flag}};
constexpr AttributeShape kExclusionAttributes[] = {{"Path", Text, true}, {"ExactMatch", Flag}, {"Iteration", Flag}};
constexpr AttributeShape kRuleAttributes[] = {
    {"SelState", SelState}, {"FolderEnvDir", Text},   {"FolderX86EnvDir", Text}, {"FolderIndex", FolderIndex},
    {"Path", Text},         {"GetByReg", Flag},       {"IsFolder", Flag},        {"Iteration", Flag},
    {"Filter", Text},       {"ExcludeFilter", Text},  {"SelfExclude", Flag},     {"LoopPath", Flag},
    {"ExcludePath", Flag},  {"UseShellBrowse", Flag}, {"EmptyProc", EmptyProc},  {"Registry", Flag},
    {"RootKey", RootKey},   {"KeyPath", Text},        {"Value", Text},           {"DelKey", Flag}};
constexpr AttributeShape kGarbageAttributes[] = {
    {"Name", Text, true}, {"ResID", Key}, {"SelState", SelState}, {"CatagoryID", Integer}};
constexpr AttributeShape kAppAttributes[] = {{"Name", Text, true},         {"ResID", Key},    {"SelState", SelState},
                                             {"LargeIcon", Integer},       {"Icon", Text},    {"InBuildProgram", Flag},
                                             {"ProductName", ProductName}, {"LockFile", Text}};
constexpr AttributeShape kCategoryAttributes[] = {{"Name", Text, true},   {"ResID", Key},
                                                  {"SelState", SelState}, {"LargeIcon", Integer},
                                                  {"Icon", Text},         {"CatagoryType", CatagoryType}};

constexpr ElementShape kStep{"LoopPath", kStepAttributes, {}};
constexpr ElementShape kExclusion{"ExcludePath", kExclusionAttributes, {}};
constexpr const ElementShape* kRuleChildren[] = {&kStep, &kExclusion};
constexpr ElementShape kRule{"GarbageInfo", kRuleAttributes, kRuleChildren};
constexpr const ElementShape* kXpChildren[] = {&kRule};
constexpr ElementShape kXp{"XP", {}, kXpChildren};
constexpr const ElementShape* kGarbageChildren[] = {&kRule, &kXp};
constexpr ElementShape kGarbage{"GarbageCatagory", kGarbageAttributes, kGarbageChildren};
constexpr const ElementShape* kAppChildren[] = {&kGarbage};
constexpr ElementShape kApp{"AppInfo", kAppAttributes, kAppChildren};
constexpr const ElementShape* kCategoryChildren[] = {&kApp};
constexpr ElementShape kCategory{"AppCategoryInfo", kCategoryAttributes, kCategoryChildren};
constexpr const ElementShape* kRootChildren[] = {&kCategory};
constexpr ElementShape kRoot{"Rules", {}, kRootChildren};

constexpr const ElementShape* kAllShapes[] = {&kRoot, &kCategory, &kApp, &kGarbage, &kXp, &kRule, &kStep, &kExclusion};

std::wstring NameOf(const AttributeShape& shape) {
    return Utf8ToWide(shape.name);
}

std::wstring NameOf(const ElementShape* shape) {
    return Utf8ToWide(shape->name);
}

// The nearest of what is known there, for the end of a message.
std::wstring Hint(std::wstring_view name, const auto& shapes) {
    std::vector<std::wstring> known;
    for (const auto& shape : shapes)
        known.push_back(NameOf(shape));
    return NearestHint(name, known);
}

class CSchemaCheck {
public:
    explicit CSchemaCheck(CFindings& findings) : m_findings(findings) {}

    void CheckElement(const TiXmlElement& element, const ElementShape& shape) {
        for (const TiXmlAttribute* at = element.FirstAttribute(); at; at = at->Next())
            CheckAttribute(*at, shape);
        for (const AttributeShape& attribute : shape.attributes)
            CheckRequired(element, attribute);
        for (const TiXmlNode* child = element.FirstChild(); child; child = child->NextSibling())
            CheckChild(*child, shape);
        CheckSecondXp(element);
    }

private:
    void CheckAttribute(const TiXmlAttribute& attribute, const ElementShape& shape) {
        if (&shape == &kRoot && IsSchemaReference(attribute)) return;
        const auto known = std::find_if(shape.attributes.begin(), shape.attributes.end(), [&](const auto& candidate) {
            return std::strcmp(candidate.name, attribute.Name()) == 0;
        });
        const std::wstring name = Utf8ToWide(attribute.Name());
        if (known == shape.attributes.end()) {
            m_findings.Add(
                FindingCodes::kUnknownAttribute, attribute,
                L"<" + Utf8ToWide(shape.name) + L"> has no attribute \"" + name + L"\"" + Hint(name, shape.attributes));
        } else if (const auto fault = FindValueFault(known->type, attribute.Value())) {
            m_findings.Add(fault->code, attribute,
                           name + L"=\"" + Utf8ToWide(attribute.Value()) + L"\" " + fault->message);
        }
    }

    void CheckRequired(const TiXmlElement& element, const AttributeShape& attribute) {
        if (!attribute.required || element.Attribute(attribute.name)) return;
        const bool costsFile = std::strcmp(attribute.name, "Name") == 0;
        m_findings.Add(FindingCodes::kMissingAttribute, element,
                       L"<" + Utf8ToWide(element.Value()) + L"> has no \"" + Utf8ToWide(attribute.name)
                           + (costsFile ? L"\", the engine refuses the whole file" : L"\", the engine ignores it"));
    }

    void CheckChild(const TiXmlNode& node, const ElementShape& parent) {
        if (node.ToText()) {
            m_findings.Add(FindingCodes::kStrayText, node, L"text between the elements is ignored");
        } else if (const TiXmlElement* child = node.ToElement()) {
            const ElementShape* shape = FindChildShape(*child, parent);
            if (shape)
                CheckElement(*child, *shape);
            else
                ReportUnknown(*child, parent);
        }
    }

    // The two children of a rule are known in any case, as the engine has it.
    const ElementShape* FindChildShape(const TiXmlElement& child, const ElementShape& parent) {
        for (const ElementShape* shape : parent.children) {
            if (std::strcmp(shape->name, child.Value()) == 0) return shape;
            if (&parent != &kRule || _stricmp(shape->name, child.Value()) != 0) continue;
            m_findings.Add(FindingCodes::kNameForm, child,
                           L"the usual form of this name is " + Utf8ToWide(shape->name));
            return shape;
        }
        return nullptr;
    }

    void ReportUnknown(const TiXmlElement& child, const ElementShape& parent) {
        const std::wstring name = Utf8ToWide(child.Value());
        const bool isKnown = std::any_of(std::begin(kAllShapes), std::end(kAllShapes), [&](const ElementShape* shape) {
            return std::strcmp(shape->name, child.Value()) == 0;
        });
        const std::wstring where = L"<" + name + L"> is ignored in <" + Utf8ToWide(parent.name) + L">";
        if (isKnown)
            m_findings.Add(FindingCodes::kMisplacedElement, child, where);
        else
            m_findings.Add(FindingCodes::kUnknownElement, child, where + Hint(name, parent.children));
    }

    void CheckSecondXp(const TiXmlElement& element) {
        const TiXmlElement* first = element.FirstChildElement(kXp.name);
        const TiXmlElement* second = first ? first->NextSiblingElement(kXp.name) : nullptr;
        if (second) m_findings.Add(FindingCodes::kMisplacedElement, *second, L"of several <XP> only the first is read");
    }

    CFindings& m_findings;
};

}  // namespace

void CheckRuleSchema(const TiXmlElement& root, CFindings& findings) {
    if (std::strcmp(root.Value(), kRoot.name) != 0)
        findings.Add(FindingCodes::kNameForm, root, L"the usual name of the root is " + Utf8ToWide(kRoot.name));
    if (!root.FirstChildElement(kCategory.name))
        findings.Add(FindingCodes::kNoCategory, root, L"there is no <AppCategoryInfo>, so there is nothing to load");
    CSchemaCheck(findings).CheckElement(root, kRoot);
}

bool IsSchemaReference(const TiXmlAttribute& attribute) {
    const std::string_view name = attribute.Name();
    return name == "xmlns:xsi" || name == "xsi:noNamespaceSchemaLocation";
}
