#include "host/common/ruletext.h"

#include "host/common/cleanaction.h"
#include "host/common/texts.h"

namespace {

constexpr unsigned kScopeTexts[] = {
    IDS_SCOPE_FOLDER, IDS_SCOPE_FILE, IDS_SCOPE_SHELL_ITEMS, IDS_SCOPE_SHELL_FOLDER, IDS_SCOPE_KEY,
    IDS_SCOPE_VALUE,  IDS_SCOPE_STEP, IDS_SCOPE_END,         IDS_SCOPE_KEPT_FILES,   IDS_SCOPE_KEPT_FOLDER};

struct FlagText {
    uint32_t flag;
    unsigned text;
};
constexpr FlagText kFlagTexts[] = {{ScopeDeletesKey, IDS_SCOPE_DELETES_KEY},
                                   {ScopeExact, IDS_SCOPE_EXACT},
                                   {ScopeBelow, IDS_SCOPE_BELOW},
                                   {ScopeNotItself, IDS_SCOPE_NOT_ITSELF}};

std::wstring ScopeText(const GarbageScope& scope) {
    if (scope.Kind == ScopeKey && (scope.Flags & ScopeBelow))
        return Text(IDS_SCOPE_SUBKEYS, {scope.Text, scope.Pattern});
    std::wstring text = Text(kScopeTexts[scope.Kind - ScopeFolder], {scope.Text, scope.Pattern});
    for (const auto& [flag, added] : kFlagTexts)
        if (scope.Flags & flag) text += Text(added);
    return text;
}

class CRuleText final : public IGarbageInfo::IExplanationVisitor {
public:
    bool OnScope(const GarbageScope* scope) override {
        lines.push_back(ScopeText(*scope));
        return true;
    }
    bool OnAction(const GarbageAction* action) override {
        lines.push_back(Text(IDS_WILL_NOW, {ActionText({.kind = static_cast<GarbageActionKind>(action->Kind),
                                                        .target = action->Target,
                                                        .name = action->Name,
                                                        .amount = {action->Items, action->Bytes},
                                                        .path = {},
                                                        .key = {}})}));
        return true;
    }
    std::vector<std::wstring> lines;
};

}  // namespace

std::vector<std::wstring> RuleText(IGarbageInfo& rule) {
    CRuleText text;
    (void)rule.Explain(&text);
    return std::move(text.lines);
}
