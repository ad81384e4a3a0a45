#pragma once

// What a host is told, what goes and what stays, by a model of its own. With the engine it shares helpers for text
// only.

#include <cstdint>
#include <cwchar>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "sysservices/text.h"
#include "tests/support/recordinghost.h"

CString Lower(CString text);

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
    Node* Find(const CString& relative);
};

struct Rule {
    struct Exclude {
        CString path;
        bool exact, iteration;
    };
    struct Step {
        CString path, addPath;
    };
    struct Found {
        CString path;
        uint64_t size;
        Node* file;  // null when no deletion can succeed
    };
    // Equal is what is contained in the other; only the way down the set is searched.
    struct Containment {
        bool operator()(const CString& a, const CString& b) const {
            if (a.find(b) != a.npos || b.find(a) != b.npos) return false;
            return _wcsicmp(a.c_str(), b.c_str()) < 0;  // of the C locale, which folds ASCII only
        }
    };
    std::string attributes, children;  // in XML, for the engine
    bool isRegistry = false, isFolder = false, iteration = false, selfExclude = false, exact = false, delKey = false;
    CString path, filter = L"*";
    std::set<CString, Containment> excludeFilters;
    std::vector<Exclude> excludes;
    std::vector<Step> steps;
    std::vector<CString> names;  // terminal paths, or values; in lower case
    bool isLoop = false;
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

struct Model {
    // Gathers or cleans, and returns the notifications of items. The totals stand in the levels then, what is left in
    // `base` and `registry`.
    Lines Run(Level& root, bool clean);

    // The names of values by the path of their key, in lower case.
    using Registry = std::map<CString, std::set<CString>>;
    bool upgrade = false;
    CString folder;              // what the paths in notifications are relative to
    std::shared_ptr<Node> base;  // where rules begin
    std::vector<CString> allowed;
    CString hostFolder;  // in lower case
    Registry registry;

private:
    void Expect(Level& level, bool clean, Lines& lines, const std::string& category);
    bool IsAllowed(const CString& path) const;
    void Scan(Rule& rule, Node* from, const CString& path, bool withFiles) const;
    void Gather(Rule& rule) const;
    bool Delete(Node* file) const;
    void DeleteValues(const Rule& rule, const CString& key);
    std::vector<CString> SubKeys(const CString& key) const;
    void CleanRegistry(const Rule& rule);
};
