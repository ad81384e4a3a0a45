// Random trees under random rules, against a model that knows no more than the documents tell. A failing seed prints
// its case. DSW_MODEL_SEEDS=FROM-TO runs others than the usual.

#include <windows.h>

#include <map>
#include <random>
#include <set>

#include "sysservices/privilegecontext.h"
#include "tests/dregsweep/engine.h"
#include "tests/support/folderlink.h"
#include "tests/support/iatpatch.h"

namespace {

CString Lower(CString text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

// Both in lower case.
bool Like(const wchar_t* pattern, const wchar_t* name) {
    if (*pattern == L'*') return Like(pattern + 1, name) || (*name && Like(pattern, name + 1));
    if (!*name) return !*pattern;
    return (*pattern == L'?' || *pattern == *name) && Like(pattern + 1, name + 1);
}
bool Matches(const CString& pattern, const CString& name) {
    return pattern == L"*.*" || Like(Lower(pattern).c_str(), Lower(name).c_str());
}

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
    std::string attributes, children;
    bool isRegistry = false, isFolder = false, iteration = false, selfExclude = false, exact = false, delKey = false;
    CString path, filter = L"*";
    std::set<CString, Containment> excludeFilters;
    std::vector<Exclude> excludes;
    std::vector<Step> steps;
    std::vector<CString> names;  // terminal paths, or values
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

const wchar_t* g_hostFile;
DWORD WINAPI HostFile(HMODULE, wchar_t* buffer, DWORD size) {
    wcsncpy(buffer, g_hostFile, size);
    return static_cast<DWORD>(wcslen(g_hostFile));
}

class Case {
    unsigned Number(unsigned limit) { return m_random() % limit; }
    bool Chance(unsigned percent) { return Number(100) < percent; }
    template <class List>
    auto Pick(const List& list) {
        return *(std::begin(list) + Number(static_cast<unsigned>(std::size(list))));
    }
    CString Shout(CString text) {
        if (Chance(30)) std::ranges::transform(text, text.begin(), [](wchar_t c) { return c < 128 ? towupper(c) : c; });
        return text;
    }

public:
    explicit Case(unsigned seed) : m_random(seed), m_upgrade(Chance(30)) {
        Grow(*m_elsewhere, L"", 1);
        m_linked = false;
        m_relative = {L""};
        m_files.clear();
        Grow(*m_base, L"", 3);
        SetEnvironmentVariableW(L"DSW_BASE", m_base->path.c_str());
        for (const CString key : {L"", L"K1", L"K1\\F", L"K2", L"K2\\F", L"K3", L"K3\\g"})
            for (const CString value : {L"", L"a", L"Blue", L"ü"})
                if (Chance(60)) SetValue(key, value);
        if (Chance(35)) m_allowed = {Shout(m_base->path + L"\\" + Pick(m_relative)), m_base->path + L"\\t"};
        if (Chance(30)) m_hostFolder = Lower(m_base->path + L"\\" + Pick(m_relative));
        while (m_hostFolder.ends_with(L'\\'))
            m_hostFolder.pop_back();
        MakeLevel(m_root, 0, 2);
    }
    ~Case() {
        for (const HANDLE held : m_held)
            CloseHandle(held);
        RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
    }

    void Run() {
        const CString hostFile = (m_hostFolder.empty() ? L"C:\\none" : m_hostFolder) + L"\\h.exe";
        g_hostFile = hostFile.c_str();
        const IatPatch patch("GetModuleFileNameW", HostFile);
        const Engine engine(new CDregsweep(m_upgrade));
        for (const CString& prefix : m_allowed)
            engine->AddAllowedPath(prefix.c_str());
        const std::wstring rules = m_folder.Write(L"rules.xml", Xml(m_root, 0));
        ASSERT_EQ(engine->Init(rules.c_str(), L"", nullptr), 0u);
        for (const bool clean : {false, true, false}) {
            RecordingHost host(m_folder.path());
            EXPECT_TRUE(clean ? engine->Clean(&host) : engine->Gather(&host));
            std::erase_if(host.lines, [](const std::wstring& line) { return line[0] != L'f' && line[0] != L'e'; });
            Lines expected;
            Expect(m_root, clean, expected);
            // The order within a folder is the system's.
            std::ranges::sort(expected);
            std::ranges::sort(host.lines);
            EXPECT_EQ(host.lines, expected);
            Compare(*engine, m_root, clean);
            CompareFiles(*m_base);
            CompareFiles(*m_elsewhere);
            EXPECT_EQ(ReadRegistry(m_key), m_registry);
        }
    }
    std::string Describe() const {
        return Xml(m_root, 0) + "\nupgrade " + (m_upgrade ? "1" : "0") + " host " + WideToUtf8(m_hostFolder)
               + " allowed " + (m_allowed.empty() ? "" : WideToUtf8(m_allowed[0])) + "\n" + m_listing;
    }

private:
    // ---- the case

    void Grow(Node& folder, const CString& relative, int depth) {
        CreateDirectoryW(folder.path.c_str(), nullptr);
        for (const CString name : {L"a.tmp", L"b1.tmp", L"B2.LOG", L"setup.log", L"no ext", L".hidden", L"..c",
                                   L"Ä ö.tmp", L"清🗑.tmp", L"[1]'&.log", L"x;y,z%.log"})
            if (Chance(30)) AddFile(folder, relative, name);
        if (Chance(5)) AddFile(folder, relative, CString(120, L'l') + L".tmp");
        for (const CString name : {L"Temp", L"Temp2", L"sub", L"Sub.tmp", L"cache", L".dot", L"Ünï", L"Profile 1"}) {
            if (depth == 0 || !Chance(22)) continue;
            folder.entries.push_back({name, std::make_shared<Node>(Node{folder.path + L"\\" + name})});
            m_relative.push_back(relative + name);
            Grow(*folder.entries.back().node, relative + name + L"\\", depth - 1);
        }
        if (relative.empty() || relative.find(L'Ü') != relative.npos || m_linked || !Chance(8)) return;
        m_linked = MakeFolderLink(folder.path + L"\\link", m_elsewhere->path);
        if (m_linked) folder.entries.push_back({L"link", m_elsewhere, true});
        m_listing += WideToUtf8(relative + L"link\n");
    }
    void AddFile(Node& folder, const CString& relative, const CString& name) {
        const auto node = std::make_shared<Node>(Node{folder.path + L"\\" + name, false, Chance(8), Chance(10)});
        node->size = Chance(3) ? 5ULL << 32 : Number(300);
        folder.entries.push_back({name, node});
        m_files.push_back(relative + name);
        m_listing += WideToUtf8(node->path) + " " + std::to_string(node->size) + (node->isHeld ? " held" : "")
                     + (node->isReadOnly ? " read-only\n" : "\n");
        const HANDLE file = CreateFileW(node->path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        SetFilePointerEx(file, {.QuadPart = static_cast<LONGLONG>(node->size)}, nullptr, FILE_BEGIN);
        SetEndOfFile(file);
        if (node->isReadOnly) SetFileAttributesW(node->path.c_str(), FILE_ATTRIBUTE_READONLY);
        if (node->isHeld)
            m_held.push_back(file);
        else
            CloseHandle(file);
    }
    void SetValue(const CString& key, const CString& value) {
        const CString path = key.empty() ? m_key : m_key + L"\\" + key;
        RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), value.c_str(), REG_SZ, L"x", 4);
        for (size_t end = path.size(); end >= m_key.size() && end != path.npos; end = path.rfind(L'\\', end - 1))
            m_registry[Lower(path.substr(0, end))];
        m_registry[Lower(path)].insert(Lower(value));
    }

    void MakeLevel(Level& level, int depth, int parentState) {
        const int state = level.ownState >= 0 ? level.ownState : parentState == 1 ? 0 : parentState;
        if (depth == 4) level.rule = MakeRule();
        for (unsigned count = depth == 4 ? 0 : 1 + Number(depth == 3 ? 4 : 2); count > 0; --count) {
            Level child{level.name + "GAPGR"[depth] + std::to_string(count)};
            if (depth == 0) child.ownState = Chance(80) ? 2 : static_cast<int>(Number(3));
            if (depth > 0 && Chance(25)) child.ownState = static_cast<int>(Number(3));
            const int own = child.ownState >= 0 ? child.ownState : state == 1 ? 0 : state;
            child.isSelected = level.isSelected && own != 0;
            MakeLevel(child, depth + 1, state);
            level.below.push_back(std::move(child));
        }
    }
    static std::string Attribute(const char* name, const CString& value) {
        std::string text;
        for (const char c : WideToUtf8(value))
            text += c == '&' ? "&amp;" : c == '\'' ? "&apos;" : std::string(1, c);
        return std::string(" ") + name + "='" + text + "'";
    }
    static std::string Flag(const char* name, bool value) { return value ? std::string(" ") + name + "='1'" : ""; }
    std::string Values(const char* name, std::vector<CString>& values, const CString& list) {
        for (const CString& value : Split(list, L"|"))
            values.push_back(Lower(value));
        return Attribute(name, list);
    }

    Rule MakeRule() {
        Rule rule;
        const unsigned kind = Number(100);
        rule.iteration = Chance(60);
        std::string& text = rule.attributes = Flag("Iteration", rule.iteration);
        if (kind < 12) {
            rule.isRegistry = true;
            rule.delKey = Chance(25);
            rule.path = Shout(m_key + Pick(std::array{L"", L"\\K1", L"\\K3", L"\\none"}));
            rule.filter = Pick(std::array{L"", L"F", L"none"});
            text += " Registry='1' RootKey='HKCU'" + Flag("DelKey", rule.delKey) + Attribute("KeyPath", rule.path)
                    + Attribute("Filter", rule.filter);
            if (Chance(50)) text += Values("Value", rule.names, Pick(std::array{L"|A|none", L"BLUE||Ü", L"none"}));
            return rule;
        }
        text += " FolderEnvDir='DSW_BASE'";
        if (kind < 28) {
            const CString folder = Pick(m_relative);
            rule.path = Chance(60) && !m_files.empty() ? Shout(Pick(m_files))
                        : folder.empty()               ? L"b?.tmp"
                                                       : folder + Pick(std::array{L"", L"\\b?.tmp", L"\\none"});
            text += Attribute("Path", rule.path);
            return rule;
        }
        rule.isFolder = true;
        rule.path = Chance(8) ? L"none" : Shout(Pick(m_relative)) + (Chance(10) ? L"\\" : L"");
        rule.selfExclude = Chance(20);
        rule.filter = Chance(40) ? L"*" : Pick(std::array{L"*.tmp", L"*.LOG", L"*.*", L"b?.tmp", L"a.tmp", L"清*"});
        text += " IsFolder='1'" + Attribute("Path", rule.path) + Attribute("Filter", rule.filter)
                + Flag("SelfExclude", rule.selfExclude);
        if (Chance(30)) {
            const CString list = Pick(std::array{L".log", L"tmp|.log", L"|setup||hidden|b1", L"ä", L"z|Ä ö.tmp.x|B2"});
            for (CString& token : Split(list, L"|"))
                rule.excludeFilters.insert(std::move(token));
            text += Attribute("ExcludeFilter", list);
        }
        if (Chance(25)) MakeLoop(rule);
        if (!Chance(35)) return rule;
        text += " ExcludePath='1'";
        for (unsigned count = 1 + Number(3); count > 0; --count) {
            const CString path = Pick(std::array{L"temp", L"SUB", L"ache", L"sub\\TEMP", L"Ünï", L"emp\\Ünï", L"none"});
            rule.excludes.push_back({path, Chance(50), Chance(40)});
            rule.children += "<ExcludePath" + Attribute("Path", path) + Flag("ExactMatch", rule.excludes.back().exact)
                             + Flag("Iteration", rule.excludes.back().iteration) + "/>";
        }
        return rule;
    }
    void MakeLoop(Rule& rule) {
        rule.isLoop = true;
        rule.attributes += " LoopPath='1'";
        for (unsigned count = Number(4); count > 0; --count) {
            rule.steps.push_back({Pick(std::array{L"*", L"temp*", L"sub", L"none"}), Chance(20) ? L"cache" : L""});
            rule.children += "<LoopPath" + Attribute("Path", rule.steps.back().path)
                             + Attribute("AddPath", rule.steps.back().addPath) + "/>";
        }
        if (!Chance(50)) return;
        rule.exact = Chance(50);
        rule.children += "<LoopPath" + Flag("ExactMatch", rule.exact)
                         + Values("TerminalPath", rule.names, Pick(std::array{L"TEMP|cache", L"ub", L"ünï"})) + "/>";
    }
    static std::string Xml(const Level& level, int depth) {
        const std::string tag = std::array{"Rules", "AppCategoryInfo", "AppInfo", "GarbageCatagory",
                                           "GarbageInfo"}[static_cast<size_t>(depth)];
        std::string xml = "<" + tag + " Name='" + level.name + "'" + level.rule.attributes;
        if (level.ownState >= 0) xml += " SelState='" + std::to_string(level.ownState) + "'";
        xml += ">" + level.rule.children;
        for (const Level& child : level.below)
            xml += Xml(child, depth + 1);
        return xml + "</" + tag + ">\n";
    }

    // ---- the model

    bool IsAllowed(const CString& path) const {
        const auto begins = [&](const CString& prefix) {
            return !_wcsnicmp(path.c_str(), prefix.c_str(), prefix.size());
        };
        return m_allowed.empty() || std::ranges::any_of(m_allowed, begins);
    }

    void Scan(Rule& rule, Node* folder, const CString& path, bool withFiles) {
        if (!IsAllowed(path) || !folder) return;
        const bool everything = rule.filter == L"*";
        for (const Node::Entry& entry : folder->entries) {
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

    using Place = std::pair<CString, Node*>;
    template <class Work>
    static void EachLoopFolder(const Place& place, Work work) {
        if (!place.second) return;
        for (const Node::Entry& entry : place.second->entries)
            if (entry.node->isFolder && !entry.isLink && entry.name[0] != L'.')
                work(entry.name, Place(place.first + L"\\" + entry.name, entry.node.get()));
    }
    static void FindTerminals(const Rule& rule, const Place& from, std::vector<Place>& found) {
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
    static std::vector<Place> Loop(const Rule& rule, const Place& start) {
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

    void Gather(Rule& rule) {
        rule.found.clear();
        if (rule.isRegistry) return;
        const CString path = m_base->path + (rule.path.empty() ? L"" : L"\\") + rule.path;
        if (rule.isFolder && rule.isLoop) {
            for (const auto& [folder, node] : Loop(rule, {path, m_base->Find(rule.path)}))
                Scan(rule, node, folder, true);
        } else if (rule.isFolder) {
            Scan(rule, m_base->Find(rule.path), path, !rule.selfExclude);
        } else {
            CString name = rule.path;
            const bool hasWildcard = name.ends_with(L"b?.tmp");
            if (hasWildcard) name[name.size() - 5] = L'1';  // the one that there may be
            Node* node = m_base->Find(name);
            if (node) rule.found.push_back({path, node->size, hasWildcard || node->isFolder ? nullptr : node});
        }
    }

    bool Delete(Node* file) const {
        if (!file || !file->exists || file->isHeld || (file->isReadOnly && !m_upgrade)) return false;
        file->exists = false;
        return true;
    }
    void DeleteValues(const Rule& rule, const CString& key) {
        const auto values = m_registry.find(Lower(key));
        if (values == m_registry.end()) return;
        if (rule.names.empty()) values->second.clear();
        for (const CString& name : rule.names)
            values->second.erase(name);
    }
    std::vector<CString> SubKeys(const CString& key) const {
        std::vector<CString> keys;
        for (const auto& entry : m_registry)
            if (entry.first.substr(0, entry.first.rfind(L'\\')) == Lower(key)) keys.push_back(entry.first);
        return keys;
    }
    void CleanRegistry(const Rule& rule) {
        if (rule.delKey && SubKeys(rule.path).empty()) m_registry.erase(Lower(rule.path));
        if (rule.delKey) return;
        if (!rule.iteration) return DeleteValues(rule, rule.path);
        for (const CString& key : SubKeys(rule.path))
            DeleteValues(rule, key + (rule.filter.empty() ? L"" : L"\\") + rule.filter);
    }

    // The notifications of items, and the totals of every level.
    void Expect(Level& level, bool clean, Lines& lines, const std::string& category = {}) {
        const auto line = [&](const wchar_t* kind, const Rule::Found& item) {
            return kind + item.path.substr(m_folder.path().size() + 1) + L" " + std::to_wstring(item.size) + L" "
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
                if (!m_hostFolder.empty() && Lower(item.path).find(m_hostFolder) != CString::npos) return false;
                const bool deleted = Delete(item.file);
                lines.push_back(line(L"emptied ", item) + (deleted ? L" 1" : L" 0"));
                if (deleted) level.size -= item.size, --level.count;
                return true;
            });
        }
    }

    // ---- the comparison

    template <class Node>
    void Compare(Node& node, const Level& level, bool clean) const {
        EXPECT_EQ(node.GetTotalSize(), level.size) << level.name;
        EXPECT_EQ(node.GetPendingSize(), level.size) << level.name;
        EXPECT_EQ(node.GetTotalCount(), level.count) << level.name;
        EXPECT_EQ(node.GetPendingCount(), level.count) << level.name;
        if (&level != &m_root) {
            EXPECT_EQ(node.GetExtraCount(), (clean ? 3u : 0u) + (level.isSelected ? 2u : 0u)) << level.name;
        }
        if constexpr (requires { node.EnumFound(nullptr); }) {
            struct Visitor final : IGarbageInfo::IVisitor {
                void OnItem(const wchar_t* path, uint64_t, IGarbageInfo*) override { paths.insert(path); }
                std::multiset<CString> paths;
            } listed, expected;
            node.EnumFound(&listed);
            for (const Rule::Found& item : level.isSelected ? level.rule.found : std::vector<Rule::Found>())
                expected.paths.insert(item.path);
            EXPECT_EQ(listed.paths, expected.paths) << level.name;
        } else {
            const auto children = ChildrenOf(node);
            ASSERT_EQ(children.size(), level.below.size()) << level.name;
            for (size_t i = 0; i < children.size(); ++i)
                Compare(*children[i], level.below[i], clean);
        }
    }
    static void CompareFiles(const Node& node) {
        EXPECT_EQ(GetFileAttributesW(node.path.c_str()) != INVALID_FILE_ATTRIBUTES, node.exists) << node.path;
        for (const Node::Entry& entry : node.entries)
            CompareFiles(*entry.node);
    }
    using Registry = std::map<CString, std::set<CString>>;
    static Registry ReadRegistry(const CString& path) {
        Registry all;
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key)) return all;
        auto& values = all[Lower(path)];
        wchar_t name[99];
        for (DWORD i = 0, n = 99; !RegEnumValueW(key, i, name, &n, nullptr, nullptr, nullptr, nullptr); ++i, n = 99)
            values.insert(Lower(name));
        for (DWORD i = 0; !RegEnumKeyW(key, i, name, 99); ++i)
            all.merge(ReadRegistry(path + L"\\" + name));
        RegCloseKey(key);
        return all;
    }

    std::mt19937 m_random;
    const bool m_upgrade;
    const TempFolder m_folder;
    const std::shared_ptr<Node> m_base = std::make_shared<Node>(Node{m_folder / L"base"});
    // Reached through a link only.
    const std::shared_ptr<Node> m_elsewhere = std::make_shared<Node>(Node{m_folder / L"elsewhere"});
    const CString m_key = L"Software\\DswModel" + std::to_wstring(GetCurrentProcessId());
    std::vector<CString> m_relative, m_files;  // below the base
    bool m_linked = true;                      // one link at most, and none in what it leads to
    std::vector<HANDLE> m_held;
    std::string m_listing;
    Registry m_registry;
    std::vector<CString> m_allowed;
    CString m_hostFolder;
    Level m_root{""};
};

}  // namespace

TEST(Model, AgreesAboutEverySeed) {
    EnablePrivileges(RestoreContext());
    RecordProperty("leaks", "the privileges' buffers stay");
    unsigned from = 1, to = 300;
    if (const char* seeds = std::getenv("DSW_MODEL_SEEDS")) std::sscanf(seeds, "%u-%u", &from, &to);
    for (unsigned seed = from; seed <= to; ++seed) {
        Case test(seed);
        test.Run();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << test.Describe();
        TakeTraceLines();
    }
}
