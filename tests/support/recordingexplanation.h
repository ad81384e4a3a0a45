#pragma once

#include <string>
#include <vector>

#include "rules/igarbageinfo.h"

// Notes what a rule tells of itself: "scope KIND FLAGS text|pattern", "action KIND target|name" and, where it has any,
// " ITEMS".
struct RecordingExplanation final : IGarbageInfo::IExplanationVisitor {
    bool OnScope(const GarbageScope* scope) override {
        return Note(L"scope " + std::to_wstring(scope->Kind) + L" " + std::to_wstring(scope->Flags) + L" " + scope->Text
                    + L"|" + scope->Pattern);
    }
    bool OnAction(const GarbageAction* action) override {
        return Note(L"action " + std::to_wstring(action->Kind) + L" " + action->Target + L"|" + action->Name
                    + (action->Items ? L" " + std::to_wstring(action->Items) : L""));
    }
    bool Note(std::wstring line) {
        lines.push_back(std::move(line));
        return lines.size() < stopAt;
    }

    size_t stopAt = SIZE_MAX;
    std::vector<std::wstring> lines;
};
