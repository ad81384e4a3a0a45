#pragma once

#include <map>
#include <tuple>
#include <vector>

#include "host/common/action.h"
#include "sysservices/reference.h"

// What a clean would do at this moment beside deleting found items: the actions of the selected rules, in its order.
// One that several rules tell (same kind, target and name, letters' case apart) is that of the first. A bin and a shell
// folder that hold nothing are left out.
class CWorkList {
public:
    // Nothing at all.
    CWorkList() = default;
    // Asks the selected rules. Throws CHostError when one of them cannot tell all.
    explicit CWorkList(IDregsweep& engine);

    // Gives the actions that `before` lacks the state New, also that of a bin that holds more by now; true when there
    // is any.
    bool MarkNew(const CWorkList& before);
    // Gives each action the state in which a clean has left it; `after` was made behind the clean.
    void Settle(const CWorkList& after);

    std::vector<Action> Actions() const;
    // Those of the rules of one garbage category.
    std::vector<Action> ActionsOf(const IGarbageCatagory& category) const;
    // Of the items that a gather has found, those that are not deleted by their paths: the content of a bin, and what
    // is left alone.
    const Amount& FoundApart() const noexcept { return m_foundApart; }

private:
    struct Entry {
        Action action;
        CReference<IGarbageInfo> rule;
        const IGarbageCatagory* category;
    };
    using Key = std::tuple<uint32_t, std::wstring, std::wstring>;

    static Key KeyOf(const Action& action);
    void Add(IGarbageInfo& rule, const IGarbageCatagory& category);
    const Action* Find(const Action& action) const;

    std::vector<Entry> m_entries;
    std::map<Key, size_t> m_places;
    Amount m_foundApart;
};
