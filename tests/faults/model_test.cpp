// Random trees under random rules, against the model. A failing seed prints its case. DSW_MODEL_SEEDS=FROM-TO runs
// others than the usual.

#include "tests/faults/model.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwctype>
#include <random>

#include "sysservices/handle.h"
#include "sysservices/privilegecontext.h"
#include "tests/dregsweep/engine.h"
#include "tests/support/folderlink.h"
#include "tests/support/iatpatch.h"
#include "tests/support/recordingexplanation.h"
#include "tests/support/tempfolder.h"

namespace {

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
    explicit Case(unsigned seed) : m_random(seed) {
        m_model.upgrade = Chance(30);
        m_model.folder = m_folder.path();
        m_model.base = m_base;
        Grow(*m_elsewhere, L"", 1);
        m_linked = false;
        m_relative = {L""};
        m_files.clear();
        Grow(*m_base, L"", 3);
        SetEnvironmentVariableW(L"DSW_BASE", m_base->path.c_str());
        for (const CString key : {L"", L"K1", L"K1\\F", L"K2", L"K2\\F", L"K3", L"K3\\g"})
            for (const CString value : {L"", L"a", L"Blue", L"ü"})
                if (Chance(60)) SetValue(key, value);
        if (Chance(35)) m_model.allowed = {Shout(m_base->path + L"\\" + Pick(m_relative)), m_base->path + L"\\t"};
        if (Chance(30)) m_model.hostFolder = Lower(m_base->path + L"\\" + Pick(m_relative));
        while (m_model.hostFolder.ends_with(L'\\'))
            m_model.hostFolder.pop_back();
        MakeLevel(m_root, 0, 2);
    }
    ~Case() { RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str()); }

    void Run() {
        const CString hostFile = (m_model.hostFolder.empty() ? L"C:\\none" : m_model.hostFolder) + L"\\h.exe";
        g_hostFile = hostFile.c_str();
        const IatPatch patch("GetModuleFileNameW", HostFile);
        const Engine engine(new CDregsweep(m_model.upgrade));
        for (const CString& prefix : m_model.allowed)
            engine->AddAllowedPath(prefix.c_str());
        const std::wstring rules = m_folder.Write(L"rules.xml", Xml(m_root, 0));
        ASSERT_EQ(engine->Init(rules.c_str(), L"", nullptr), 0u);
        for (const bool clean : {false, true, false}) {
            RecordingHost host(m_folder.path());
            RecordingExplanation shown;
            ForEachRule(*engine, [&](IGarbageInfo& rule) {
                if (rule.GetState() != SelectionNone) rule.Explain(&shown);
            });
            std::ranges::transform(shown.lines, shown.lines.begin(), Lower);
            const Model::Registry before = m_model.registry;
            EXPECT_TRUE(clean ? engine->Clean(&host) : engine->Gather(&host));
            // The order within a folder is the system's.
            EXPECT_THAT(host.Of(clean ? L'e' : L'f'), testing::UnorderedElementsAreArray(m_model.Run(m_root, clean)));
            Compare(*engine, m_root, clean);
            CompareFiles(*m_base);
            CompareFiles(*m_elsewhere);
            Model::Registry left;
            ReadRegistry(m_key, left);
            EXPECT_EQ(left, m_model.registry);
            EXPECT_THAT(shown.lines, testing::IsSupersetOf(Gone(before, m_model.registry)));
        }
    }
    std::string Describe() const {
        return Xml(m_root, 0) + "\nupgrade " + (m_model.upgrade ? "1" : "0") + " host " + WideToUtf8(m_model.hostFolder)
               + " allowed " + (m_model.allowed.empty() ? "" : WideToUtf8(m_model.allowed[0]));
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
    }
    void AddFile(Node& folder, const CString& relative, const CString& name) {
        const auto node = std::make_shared<Node>(Node{folder.path + L"\\" + name, false, Chance(8), Chance(10)});
        node->size = Chance(3) ? 5ULL << 32 : Number(300);
        folder.entries.push_back({name, node});
        m_files.push_back(relative + name);
        CHandle file(CreateFileW(node->path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        SetFilePointerEx(file.get(), {.QuadPart = static_cast<LONGLONG>(node->size)}, nullptr, FILE_BEGIN);
        SetEndOfFile(file.get());
        if (node->isReadOnly) SetFileAttributesW(node->path.c_str(), FILE_ATTRIBUTE_READONLY);
        if (node->isHeld) m_held.push_back(std::move(file));
    }
    void SetValue(const CString& key, const CString& value) {
        const CString path = key.empty() ? m_key : m_key + L"\\" + key;
        RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), value.c_str(), REG_SZ, L"x", 4);
        for (size_t end = path.size(); end >= m_key.size() && end != path.npos; end = path.rfind(L'\\', end - 1))
            m_model.registry.insert(Lower(path.substr(0, end)));
        m_model.registry.insert(Lower(path + L"|" + value));
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
    CString Flag(unsigned percent) { return Chance(percent) ? L"1" : L""; }
    Rule MakeRule() {
        Rule rule;
        Attributes& own = rule.own;
        const unsigned kind = Number(100);
        own["Iteration"] = Flag(60);
        if (kind < 12) {
            own.insert({{"Registry", L"1"}, {"RootKey", L"HKCU"}, {"DelKey", Flag(25)}});
            own["KeyPath"] = Shout(m_key + Pick(std::array{L"", L"\\K1", L"\\K3", L"\\none"}));
            own["Filter"] = Pick(std::array{L"", L"F", L"none"});
            if (Chance(50)) own["Value"] = Pick(std::array{L"|A|none", L"BLUE||Ü", L"none"});
            return rule;
        }
        own["FolderEnvDir"] = L"DSW_BASE";
        if (kind < 28) {
            const CString folder = Pick(m_relative);
            own["Path"] = Chance(60) && !m_files.empty() ? Shout(Pick(m_files))
                          : folder.empty()               ? L"b?.tmp"
                                                         : folder + Pick(std::array{L"", L"\\b?.tmp", L"\\none"});
            return rule;
        }
        own["IsFolder"] = L"1";
        own["Path"] = Chance(8) ? L"none" : Shout(Pick(m_relative)) + (Chance(10) ? L"\\" : L"");
        own["SelfExclude"] = Flag(20);
        own["Filter"] = Chance(40) ? L"*" : Pick(std::array{L"*.tmp", L"*.LOG", L"*.*", L"b?.tmp", L"a.tmp", L"清*"});
        const std::array tokens{L".log", L"tmp|.log", L"|setup||hidden|b1", L"ä", L"z|Ä ö.tmp.x|B2"};
        if (Chance(30)) own["ExcludeFilter"] = Pick(tokens);
        if (Chance(25)) MakeLoop(rule);
        own["ExcludePath"] = Flag(35);
        for (unsigned count = own["ExcludePath"].empty() ? 0 : 1 + Number(3); count > 0; --count) {
            const CString path = Pick(std::array{L"temp", L"SUB", L"ache", L"sub\\TEMP", L"Ünï", L"emp\\Ünï", L"none"});
            rule.excludes.push_back({{"Path", path}, {"ExactMatch", Flag(50)}, {"Iteration", Flag(40)}});
        }
        return rule;
    }
    void MakeLoop(Rule& rule) {
        rule.own["LoopPath"] = L"1";
        if (Chance(70)) rule.own["Path"].clear();  // or few have two levels below them
        for (unsigned count = Number(4); count > 0; --count) {
            const CString path = Pick(std::array{L"*", L"temp*", L"sub", L"none"});
            rule.steps.push_back({{"Path", path}, {"AddPath", Chance(20) ? L"cache" : L""}});
        }
        if (!Chance(50)) return;
        rule.terminal["ExactMatch"] = Flag(50);
        rule.terminal["TerminalPath"] = Pick(std::array{L"TEMP|cache", L"ub", L"ünï"});
    }
    static std::string Xml(const std::string& tag, const Attributes& attributes) {
        std::string xml = "<" + tag;
        for (const auto& [name, value] : attributes) {
            if (value.empty()) continue;
            xml += " " + name + "='";
            for (const char c : WideToUtf8(value))
                xml += c == '&' ? "&amp;" : c == '\'' ? "&apos;" : std::string(1, c);
            xml += "'";
        }
        return xml + ">";
    }
    static std::string Xml(const Level& level, size_t depth) {
        const std::string tag =
            std::array{"Rules", "AppCategoryInfo", "AppInfo", "GarbageCatagory", "GarbageInfo"}[depth];
        Attributes own = level.rule.own;
        own["Name"] = Utf8ToWide(level.name);
        if (level.ownState >= 0) own["SelState"] = std::to_wstring(level.ownState);
        std::string xml = Xml(tag, own);
        for (const Attributes& step : level.rule.steps)
            xml += Xml("LoopPath", step) + "</LoopPath>";
        if (!level.rule.terminal.empty()) xml += Xml("LoopPath", level.rule.terminal) + "</LoopPath>";
        for (const Attributes& exclude : level.rule.excludes)
            xml += Xml("ExcludePath", exclude) + "</ExcludePath>";
        for (const Level& child : level.below)
            xml += Xml(child, depth + 1);
        return xml + "</" + tag + ">\n";
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
    // As the actions that take it.
    static Lines Gone(const Model::Registry& before, const Model::Registry& after) {
        Lines gone;
        for (const CString& entry : before) {
            const CString key = Model::KeyOf(entry);
            if (after.contains(entry)) continue;
            if (key == entry) gone.push_back(L"action 2 hkcu\\" + key + L"|");
            if (key != entry && after.contains(key)) gone.push_back(L"action 3 hkcu\\" + entry);
        }
        return gone;
    }
    static void CompareFiles(const Node& node) {
        EXPECT_EQ(GetFileAttributesW(node.path.c_str()) != INVALID_FILE_ATTRIBUTES, node.exists) << node.path;
        for (const Node::Entry& entry : node.entries)
            CompareFiles(*entry.node);
    }
    static void ReadRegistry(const CString& path, Model::Registry& all) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key)) return;
        all.insert(Lower(path));
        wchar_t name[99];
        for (DWORD i = 0, n = 99; !RegEnumValueW(key, i, name, &n, nullptr, nullptr, nullptr, nullptr); ++i, n = 99)
            all.insert(Lower(path + L"|" + name));
        for (DWORD i = 0; !RegEnumKeyW(key, i, name, 99); ++i)
            ReadRegistry(path + L"\\" + name, all);
        RegCloseKey(key);
    }

    std::mt19937 m_random;
    const TempFolder m_folder;
    const std::shared_ptr<Node> m_base = std::make_shared<Node>(Node{m_folder / L"base"});
    // Reached through a link only.
    const std::shared_ptr<Node> m_elsewhere = std::make_shared<Node>(Node{m_folder / L"elsewhere"});
    const CString m_key = L"Software\\DswModel" + std::to_wstring(GetCurrentProcessId());
    std::vector<CString> m_relative, m_files;  // below the base
    bool m_linked = true;                      // one link at most, and none in what it leads to
    std::vector<CHandle> m_held;
    Model m_model;
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
