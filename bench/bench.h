#pragma once

#include <string>

#include "bench/filetree.h"
#include "bench/measure.h"
#include "dregsweep/idregsweep.h"
#include "host/common/enginemodule.h"

// What every row is given: the engine, the files that several rows share, and how much to do.
class Bench {
public:
    // A quick run does a fiftieth of the work, in fewer rounds, and says nothing about the figures to reach.
    Bench(bool quick, int rounds) : m_quick(quick), m_rounds(rounds), m_tree(quick ? 2 : 100) {}

    int Rounds() const noexcept { return m_rounds; }
    // Of what takes less than a second: its ratios swing more.
    int RoundsOfShort() const noexcept { return m_rounds * 3; }
    size_t Scaled(size_t count) const noexcept { return m_quick ? count / 50 : count; }
    FileTree& Tree() noexcept { return m_tree; }
    HMODULE Module() const { return GetModuleHandleW(L"Dregsweep.dll"); }

    // A new engine with this rule file loaded, everything selected. `rules` is what stands inside the root element.
    CReference<IDregsweep> LoadEngine(const std::string& rules) const;
    // A new engine, not initialised.
    CReference<IDregsweep> NewEngine() const { return m_module.CreateEngine("GetImp"); }

private:
    CEngineModule m_module;
    const bool m_quick;
    const int m_rounds;
    FileTree m_tree;
};

// Writes a file below C:\bench; returns its path.
std::wstring WriteBenchFile(const std::wstring& name, const std::string& content);

// A rule file with one category, application and garbage category around the rules.
std::string OneCategory(const std::string& rules);
// "<GarbageInfo .../>": a rule for the files in and below a folder of drive C:, whose path stands in `folder`.
// `attributes` may add or be empty.
std::string FolderRule(const std::wstring& folder, const std::string& attributes, const std::string& children = {});
// The same for its ".tmp" files but those with one of kKeptTokens in their name, with two exclusions of folders.
// Neither matches, so that engine and floor visit the same folders; each is asked for every folder.
std::string PatternRule(const std::wstring& folder);

// Throws when engine and floor did not do the same work: a fast wrong answer is no figure.
void RequireSame(uint64_t floor, uint64_t engine, const char* what);

// A host that counts what it is told and answers true.
class CountingHost : public IDregsweepCallback {
public:
    virtual ~CountingHost() = default;
    bool StepNotify1(uint64_t) override { return true; }
    bool StepNotify2(uint64_t) override { return true; }
    bool StepNotify3(uint64_t) override { return true; }
    bool Progress(uint32_t, uint32_t) override { return true; }
    bool FoundItem(const wchar_t*, uint64_t size, uint64_t) override {
        ++items;
        bytes += size;
        return true;
    }
    bool Reserved() override { return true; }
    bool EmptiedItem(const wchar_t*, uint64_t, uint64_t, bool removed) override {
        items += removed;
        return true;
    }

    uint64_t items = 0;
    uint64_t bytes = 0;
};
