#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "dregsweep/idregsweep.h"
#include "host/common/amount.h"

// What is known of an action of a job.
enum class ActionState {
    Planned,     // told by its rule, before a clean
    New,         // likewise, and not told when the rules were asked before
    Gone,        // a clean was made, and the rule does not tell it any more
    Run,         // a procedure that the clean has run; nobody can tell what came of it
    Tried,       // likewise, for what the shell does
    Refused,     // told after the clean as well: its access rights do not allow it, or it was made again
    HasSubKeys,  // likewise: a key with sub-keys stays
    NotTried,    // likewise: the clean was stopped before
    LeftAlone,   // no clean does anything to it
};

// One thing that a clean does for a rule beside deleting its found items; see GarbageAction.
struct Action {
    uint32_t kind;  // a GarbageActionKind
    std::wstring target;
    std::wstring name;
    std::optional<Amount> amount;  // what is in a bin or folder, where the shell tells
    std::optional<Amount> left;    // of that, after a clean
    ActionState state = ActionState::Planned;

    // A folder that is left alone is told as well.
    bool IsWork() const noexcept { return kind != ActionLeaveFolder; }
    // Does the state say that the clean has done it?
    bool IsDone() const noexcept {
        return state == ActionState::Gone || state == ActionState::Run || state == ActionState::Tried;
    }
};
