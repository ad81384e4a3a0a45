#include "host/common/ruledetails.h"

#include <algorithm>

#include "host/common/hosterror.h"
#include "host/common/texts.h"

namespace {

std::optional<Amount> AmountOf(const GarbageAction& action) {
    const bool hasAmount =
        action.Kind == ActionEmptyBin || action.Kind == ActionShellItems || action.Kind == ActionLeaveFolder;
    if (!hasAmount || action.Items == kGarbageUnknown || action.Bytes == kGarbageUnknown) return {};
    return Amount{action.Items, action.Bytes};
}

class CDetailCollector final : public IGarbageInfo::IExplanationVisitor {
public:
    explicit CDetailCollector(RuleDetails& details) noexcept : m_details(details) {}

    bool OnScope(const GarbageScope* scope) override {
        m_details.scopes.push_back({scope->Kind, scope->Flags, scope->Text, scope->Pattern});
        return true;
    }
    bool OnAction(const GarbageAction* action) override {
        m_details.actions.push_back({action->Kind, action->Target, action->Name, AmountOf(*action), {}});
        return true;
    }

private:
    RuleDetails& m_details;
};

}  // namespace

RuleDetails DetailsOf(IGarbageInfo& rule) {
    RuleDetails details;
    CDetailCollector collector(details);
    if (!rule.Explain(&collector)) throw CHostError(Text(IDS_RULE_TELLS_NOT_ALL));
    return details;
}

bool IsRegistryRule(IGarbageInfo& rule) {
    const std::vector<Scope> scopes = DetailsOf(rule).scopes;
    return std::any_of(scopes.begin(), scopes.end(), [](const Scope& scope) { return scope.kind == ScopeKey; });
}
