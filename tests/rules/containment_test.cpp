#include "rules/containment.h"

#include <gtest/gtest.h>

TEST(Containment, LookUpFollowsThePathThroughTheSet) {
    const struct {
        const wchar_t *tokens, *excluded, *kept;
    } cases[] = {
        {L".tmp|.log|.bak|.old", L"a.tmp|a.log", L"a.bak|a.old"},  // the look-up goes right past the other two
        {L".log|.tmp", L"a.log|a.tmp", L"!a.tmp"},
        {L".log|.log1", L"a.log|a.log1", L"a.lo"},                // the second token was dropped
        {L".log", L"setup.log|a.logx|log|g", L"SETUP.LOG|logx"},  // a name may also be a part of the token
        {L"a.log", L"A.LOG", L"A.LOGX"},                          // equal when folded
        {L"ä.log", L"xä.log", L"Ä.LOG"},                          // ASCII only
        // Letters fold to lower case for the order: "_" and its neighbours stand before "b".
        {L"[m|z", L"Bz", L"B"},
        {L"`m|z", L"Bz", L"B"},
        {L"", L"", L"a.log"},
    };
    for (const auto& [tokens, excluded, kept] : cases) {
        ContainmentSet set;
        for (CString& token : Split(tokens, L"|"))
            set.insert(std::move(token));
        for (const CString& name : Split(excluded, L"|"))
            EXPECT_TRUE(set.contains(name)) << WideToUtf8(name);
        for (const CString& name : Split(kept, L"|"))
            EXPECT_FALSE(set.contains(name)) << WideToUtf8(name);
    }
}
