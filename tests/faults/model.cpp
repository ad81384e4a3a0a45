#include "tests/faults/model.h"

#include <windows.h>

#include <algorithm>
#include <utility>

CString Lower(CString text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

Node* Node::Find(const CString& relative) {
    Node* node = this;
    for (const CString& name : Split(relative, L"\\")) {
        const auto entry = std::ranges::find_if(
            node->entries, [&](const Entry& e) { return e.node->exists && Lower(e.name) == Lower(name); });
        if (entry == node->entries.end()) return nullptr;
        node = entry->node.get();
    }
    return node;
}

namespace {

// Both in lower case.
bool Like(const wchar_t* pattern, const wchar_t* name) {
    if (*pattern == L'*') return Like(pattern + 1, name) || (*name && Like(pattern, name + 1));
    if (!*name) return !*pattern;
    return (*pattern == L'?' || *pattern == *name) && Like(pattern + 1, name + 1);
}
bool Matches(const CString& pattern, const CString& name) {
    return pattern == L"*.*" || Like(Lower(pattern).c_str(), Lower(name).c_str());
}

using Place = std::pair<CString, Node*>;
template <class Work>
void EachLoopFolder(const Place& place, Work work) {
    if (!place.second) return;
    for (const Node::Entry& entry : place.second->entries)
        if (entry.node->isFolder && !entry.isLink && entry.name[0] != L'.')
            work(entry.name, Place(place.first + L"\\" + entry.name, entry.node.get()));
}
void FindTerminals(const Rule& rule, const Place& from, std::vector<Place>& found) {
    EachLoopFolder(from, [&](const CString& name, const Place& place) {
        const bool isTerminal = std::ranges::any_of(rule.names, [&](const CString& terminal) {
            return rule.exact ? Lower(name) == terminal : Lower(name).find(terminal) != CString::npos;
        });
        if (isTerminal)
            found.push_back(place);
        else
            FindTerminals(rule, place, found);
    });
}
std::vector<Place> Loop(const Rule& rule, const Place& start) {
    std::vector<Place> current, previous;
    for (const Rule::Step& step : rule.steps) {
        current.clear();
        for (const Place& from : previous.empty() ? std::vector{start} : previous)
            EachLoopFolder(from, [&](const CString& name, Place place) {
                if (!Matches(step.path, name)) return;
                if (!step.addPath.empty())
                    place = {place.first + L"\\" + step.addPath, place.second->Find(step.addPath)};
                current.push_back(place);
            });
        if (current.empty()) break;
        previous = current;
    }
    if (rule.names.empty()) return current;
    current.clear();
    for (const Place& from : previous)
        FindTerminals(rule, from, current);
    return current;
}

}  // namespace

bool Model::IsAllowed(const CString& path) const {
    const auto begins = [&](const CString& prefix) { return !_wcsnicmp(path.c_str(), prefix.c_str(), prefix.size()); };
    return allowed.empty() || std::ranges::any_of(allowed, begins);
}

void Model::Scan(Rule& rule, Node* from, const CString& path, bool withFiles) const {
    if (!IsAllowed(path) || !from) return;
    const bool everything = rule.filter == L"*";
    for (const Node::Entry& entry : from->entries) {
        const CString own = path + L"\\" + entry.name;
        if (!entry.node->isFolder) {
            const bool matches = entry.node->exists && withFiles && Matches(rule.filter, entry.name);
            if (matches && !rule.excludeFilters.contains(entry.name))
                rule.found.push_back({own, entry.node->size, entry.node.get()});
        } else if (rule.iteration && !(everything && entry.isLink)) {
            const auto exclude = std::ranges::find_if(rule.excludes, [&](const Rule::Exclude& e) {
                return e.exact ? Lower(own).ends_with(Lower(e.path))
                               : Lower(entry.name).find(Lower(e.path)) != CString::npos;
            });
            if (exclude == rule.excludes.end())
                Scan(rule, entry.node.get(), own, true);
            else if (exclude->iteration)
                Scan(rule, entry.node.get(), own, false);
        }
    }
}

void Model::Gather(Rule& rule) const {
    rule.found.clear();
    if (rule.isRegistry) return;
    const CString path = base->path + (rule.path.empty() ? L"" : L"\\") + rule.path;
    if (rule.isFolder && rule.isLoop) {
        for (const auto& [at, node] : Loop(rule, {path, base->Find(rule.path)}))
            Scan(rule, node, at, true);
    } else if (rule.isFolder) {
        Scan(rule, base->Find(rule.path), path, !rule.selfExclude);
    } else {
        CString name = rule.path;
        const bool hasWildcard = name.ends_with(L"b?.tmp");
        if (hasWildcard) name[name.size() - 5] = L'1';  // of a case's names only this one fits
        Node* node = base->Find(name);
        if (node) rule.found.push_back({path, node->size, hasWildcard || node->isFolder ? nullptr : node});
    }
}

bool Model::Delete(Node* file) const {
    if (!file || !file->exists || file->isHeld || (file->isReadOnly && !upgrade)) return false;
    file->exists = false;
    return true;
}
void Model::DeleteValues(const Rule& rule, const CString& key) {
    const auto values = registry.find(Lower(key));
    if (values == registry.end()) return;
    if (rule.names.empty()) values->second.clear();
    for (const CString& name : rule.names)
        values->second.erase(name);
}
std::vector<CString> Model::SubKeys(const CString& key) const {
    std::vector<CString> keys;
    for (const auto& entry : registry)
        if (entry.first.substr(0, entry.first.rfind(L'\\')) == Lower(key)) keys.push_back(entry.first);
    return keys;
}
void Model::CleanRegistry(const Rule& rule) {
    if (rule.delKey && SubKeys(rule.path).empty()) registry.erase(Lower(rule.path));
    if (rule.delKey) return;
    if (!rule.iteration) return DeleteValues(rule, rule.path);
    for (const CString& key : SubKeys(rule.path))
        DeleteValues(rule, key + (rule.filter.empty() ? L"" : L"\\") + rule.filter);
}

// The notifications of items, and the totals of every level.
void Model::Expect(Level& level, bool clean, Lines& lines, const std::string& category) {
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
        if (rule.isRegistry) CleanRegistry(rule);
        std::erase_if(rule.found, [&](const Rule::Found& item) {
            if (!hostFolder.empty() && Lower(item.path).find(hostFolder) != CString::npos) return false;
            const bool deleted = Delete(item.file);
            lines.push_back(line(L"emptied ", item) + (deleted ? L" 1" : L" 0"));
            if (deleted) level.size -= item.size, --level.count;
            return true;
        });
    }
}

Lines Model::Run(Level& root, bool clean) {
    Lines lines;
    Expect(root, clean, lines, {});
    return lines;
}
