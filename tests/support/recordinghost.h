#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "dregsweep/idregsweep.h"

using Lines = std::vector<std::wstring>;

// A host that notes every notification as a line of text: "progress 0-50", "3 Category", "2 App", "1 Garbage",
// "found PATH SIZE Garbage", "emptied PATH SIZE Garbage REMOVED", paths relative to `root`.
struct RecordingHost final : IDregsweepCallback {
    // Asked at every notification, with its index from 0; its answer is the host's. It may throw.
    using Answer = std::function<bool(size_t index)>;

    explicit RecordingHost(const std::wstring& root = {}, Answer ask = {}) : m_root(root), m_ask(std::move(ask)) {}

    bool StepNotify1(uint64_t node) override { return Note(L"1 " + NameOf<IGarbageCatagory>(node)); }
    bool StepNotify2(uint64_t node) override { return Note(L"2 " + NameOf<IAppGarbageInfo>(node)); }
    bool StepNotify3(uint64_t node) override { return Note(L"3 " + NameOf<IAppCatagory>(node)); }
    bool Progress(uint32_t begin, uint32_t end) override {
        return Note(L"progress " + std::to_wstring(begin) + L"-" + std::to_wstring(end));
    }
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t category) override {
        return Note(L"found " + Item(path, size, category));
    }
    bool Reserved() override { return Note(L"reserved"); }
    bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t category, bool removed) override {
        return Note(L"emptied " + Item(path, size, category) + (removed ? L" 1" : L" 0"));
    }

    // The lines that begin with this letter.
    Lines Of(wchar_t first) const {
        Lines some;
        std::ranges::copy_if(lines, std::back_inserter(some), [=](const auto& line) { return line[0] == first; });
        return some;
    }

    Lines lines;

    template <class Node>
    static std::wstring NameOf(uint64_t node) {
        return reinterpret_cast<Node*>(node)->GetInfo()->NameText;
    }
    std::wstring Item(std::wstring path, uint64_t size, uint64_t category) const {
        if (path.starts_with(m_root)) path.erase(0, m_root.size() + 1);
        return path + L" " + std::to_wstring(size) + L" " + NameOf<IGarbageCatagory>(category);
    }
    bool Note(std::wstring line) {
        lines.push_back(std::move(line));
        return !m_ask || m_ask(lines.size() - 1);
    }

    const std::wstring m_root;
    const Answer m_ask;
};
