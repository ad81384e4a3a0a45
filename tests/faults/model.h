#pragma once

// What a host is told, what goes and what stays, by a model of its own. With the engine it shares helpers for text
// only.

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <map>
#include <memory>
#include <set>

#include "sysservices/text.h"
#include "tests/support/recordinghost.h"

inline CString Lower(CString text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}
inline bool Contains(const CString& text, const CString& part) {
    return text.find(part) != text.npos;
}

// A file or a folder.
struct Node {
    struct Entry {
        CString name;
        std::shared_ptr<Node> node;
        bool isLink = false;
    };
    CString path;
    bool isFolder = true, isHeld = false, isReadOnly = false, exists = true;
    uint64_t size = 0;
    std::vector<Entry> entries = {};

    // What is there by now at a path below this folder, or null.
    Node* Find(const CString& relative) {
        Node* node = this;
        for (const CString& name : Split(relative, L"\\")) {
            const auto entry = std::ranges::find_if(
                node->entries, [&](const Entry& e) { return e.node->exists && Lower(e.name) == Lower(name); });
            if (entry == node->entries.end()) return nullptr;
            node = entry->node.get();
        }
        return node;
    }
};

// What the engine reads from the rule file; an empty text is no attribute.
using Attributes = std::map<std::string, CString>;

struct Rule {
    struct Found {
        CString path;
        uint64_t size;
        Node* file;  // null when no deletion can succeed
    };
    bool Is(const char* flag) { return !own[flag].empty(); }

    Attributes own, terminal;
    std::vector<Attributes> steps, excludes;  // of a loop, and folders
    std::vector<Found> found;
};

// The engine, a category, an application, a garbage category or a rule.
struct Level {
    std::string name;
    int ownState = -1;
    bool isSelected = true;
    uint64_t size = 0;
    uint32_t count = 0;
    std::vector<Level> below = {};
    Rule rule = {};
};

class Model {
public:
    // Gathers or cleans, and returns the notifications of items. The totals stand in the levels then, what is left in
    // `base` and `registry`.
    Lines Run(Level& root, bool clean) {
        Lines lines;
        Expect(root, clean, lines, {});
        return lines;
    }

    // Keys by their paths and values as "KEY|NAME", in lower case.
    using Registry = std::set<CString>;
    static CString KeyOf(const CString& entry) { return entry.substr(0, entry.find(L'|')); }

    bool upgrade = false;
    CString folder;              // what the paths in notifications are relative to
    std::shared_ptr<Node> base;  // where rules begin
    std::vector<CString> allowed;
    CString hostFolder;  // in lower case
    Registry registry;

private:
    // Equal is what is contained in the other; only the way down the set is searched.
    struct Containment {
        bool operator()(const CString& a, const CString& b) const {
            if (Contains(a, b) || Contains(b, a)) return false;
            return _wcsicmp(a.c_str(), b.c_str()) < 0;  // of the C locale, which folds ASCII only
        }
    };
    // Both in lower case.
    static bool Like(const wchar_t* pattern, const wchar_t* name) {
        if (*pattern == L'*') return Like(pattern + 1, name) || (*name && Like(pattern, name + 1));
        if (!*name) return !*pattern;
        return (*pattern == L'?' || *pattern == *name) && Like(pattern + 1, name + 1);
    }
    static bool Matches(const CString& pattern, const CString& name) {
        return pattern == L"*.*" || Like(Lower(pattern).c_str(), Lower(name).c_str());
    }

    // ---- the folders of a loop

    using Place = std::pair<CString, Node*>;
    template <class Work>
    static void EachLoopFolder(const Place& place, Work work) {
        if (!place.second) return;
        for (const Node::Entry& entry : place.second->entries)
            if (entry.node->isFolder && !entry.isLink && entry.name[0] != L'.')
                work(entry.name, Place(place.first + L"\\" + entry.name, entry.node.get()));
    }
    static void FindTerminals(Rule& rule, const Place& from, std::vector<Place>& found) {
        EachLoopFolder(from, [&](const CString& name, const Place& place) {
            const bool isTerminal =
                std::ranges::any_of(Split(Lower(rule.terminal["TerminalPath"]), L"|"), [&](const CString& terminal) {
                    return rule.terminal["ExactMatch"].empty() ? Contains(Lower(name), terminal)
                                                               : Lower(name) == terminal;
                });
            if (isTerminal)
                found.push_back(place);
            else
                FindTerminals(rule, place, found);
        });
    }
    static std::vector<Place> Loop(Rule& rule, const Place& start) {
        std::vector<Place> current, previous;
        for (Attributes& step : rule.steps) {
            current.clear();
            for (const Place& from : previous.empty() ? std::vector{start} : previous)
                EachLoopFolder(from, [&](const CString& name, Place place) {
                    if (!Matches(step["Path"], name)) return;
                    const CString more = step["AddPath"];
                    if (!more.empty()) place = {place.first + L"\\" + more, place.second->Find(more)};
                    current.push_back(place);
                });
            if (current.empty()) break;
            previous = current;
        }
        if (rule.terminal.empty()) return current;
        current.clear();
        for (const Place& from : previous)
            FindTerminals(rule, from, current);
        return current;
    }

    // ---- what a rule finds

    bool IsAllowed(const CString& path) const {
        const auto begins = [&](const CString& p) { return !_wcsnicmp(path.c_str(), p.c_str(), p.size()); };
        return allowed.empty() || std::ranges::any_of(allowed, begins);
    }
    void Scan(Rule& rule, Node* from, const CString& path, bool withFiles) const {
        if (!IsAllowed(path) || !from) return;
        const auto tokens = Split(rule.own["ExcludeFilter"], L"|");
        const std::set<CString, Containment> excludeFilters(tokens.begin(), tokens.end());
        for (const Node::Entry& entry : from->entries) {
            const CString own = path + L"\\" + entry.name;
            if (!entry.node->isFolder) {
                const bool matches = entry.node->exists && withFiles && Matches(rule.own["Filter"], entry.name);
                if (matches && !excludeFilters.contains(entry.name))
                    rule.found.push_back({own, entry.node->size, entry.node.get()});
            } else if (rule.Is("Iteration") && !(rule.own["Filter"] == L"*" && entry.isLink)) {
                const auto exclude = std::ranges::find_if(rule.excludes, [&](Attributes& e) {
                    const CString part = Lower(e["Path"]);
                    return e["ExactMatch"].empty() ? Contains(Lower(entry.name), part) : Lower(own).ends_with(part);
                });
                const bool isExcluded = exclude != rule.excludes.end();
                if (!isExcluded || !(*exclude)["Iteration"].empty()) Scan(rule, entry.node.get(), own, !isExcluded);
            }
        }
    }
    void Gather(Rule& rule) const {
        rule.found.clear();
        if (rule.Is("Registry")) return;
        CString name = rule.own["Path"];
        const CString path = base->path + (name.empty() ? L"" : L"\\") + name;
        if (rule.Is("IsFolder") && rule.Is("LoopPath")) {
            for (const auto& [at, node] : Loop(rule, {path, base->Find(name)}))
                Scan(rule, node, at, true);
        } else if (rule.Is("IsFolder")) {
            Scan(rule, base->Find(name), path, !rule.Is("SelfExclude"));
        } else {
            const bool hasWildcard = name.ends_with(L"b?.tmp");
            if (hasWildcard) name[name.size() - 5] = L'1';  // of a case's names only this one fits
            Node* node = base->Find(name);
            if (node) rule.found.push_back({path, node->size, hasWildcard || node->isFolder ? nullptr : node});
        }
    }

    // ---- what a rule deletes

    bool Delete(Node* file) const {
        if (!file || !file->exists || file->isHeld || (file->isReadOnly && !upgrade)) return false;
        file->exists = false;
        return true;
    }
    void DeleteValues(Rule& rule, const CString& key) {
        const auto names = Split(Lower(rule.own["Value"]), L"|");
        if (names.empty()) std::erase_if(registry, [&](const CString& e) { return e.starts_with(key + L"|"); });
        for (const CString& name : names)
            registry.erase(key + L"|" + name);
    }
    void CleanRegistry(Rule& rule) {
        const CString path = Lower(rule.own["KeyPath"]), filter = Lower(rule.own["Filter"]);
        std::vector<CString> subKeys;
        for (const CString& entry : registry)
            if (!Contains(entry, L"|") && entry.substr(0, entry.rfind(L'\\')) == path) subKeys.push_back(entry);
        if (rule.Is("DelKey")) {
            if (subKeys.empty()) std::erase_if(registry, [&](const CString& e) { return KeyOf(e) == path; });
        } else if (rule.Is("Iteration")) {
            for (const CString& key : subKeys)
                DeleteValues(rule, key + (filter.empty() ? L"" : L"\\") + filter);
        } else {
            DeleteValues(rule, path);
        }
    }

    // The notifications of items, and the totals of every level.
    void Expect(Level& level, bool clean, Lines& lines, const std::string& category) {
        const auto line = [&](const wchar_t* kind, const Rule::Found& item) {
            return kind + item.path.substr(folder.size() + 1) + L" " + std::to_wstring(item.size) + L" "
                   + Utf8ToWide(category);
        };
        if (!clean) level.size = level.count = 0;
        if (!level.isSelected) return;
        Rule& rule = level.rule;
        if (!level.below.empty()) {
            level.size = level.count = 0;
            for (Level& child : level.below) {
                Expect(child, clean, lines, level.name);
                level.size += child.size;
                level.count += child.count;
            }
        } else if (!clean) {
            Gather(rule);
            for (const Rule::Found& item : rule.found) {
                lines.push_back(line(L"found ", item));
                level.size += item.size;
                ++level.count;
            }
        } else {
            if (rule.Is("Registry")) CleanRegistry(rule);
            std::erase_if(rule.found, [&](const Rule::Found& item) {
                if (!hostFolder.empty() && Contains(Lower(item.path), hostFolder)) return false;
                const bool deleted = Delete(item.file);
                lines.push_back(line(L"emptied ", item) + (deleted ? L" 1" : L" 0"));
                if (deleted) level.size -= item.size, --level.count;
                return true;
            });
        }
    }
};
