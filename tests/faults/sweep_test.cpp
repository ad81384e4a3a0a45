// Every platform function refuses once at every place of some small jobs, and so does memory: nothing crashes, leaks or
// stays locked, what goes is what was reported, and the next run is right.

#include <windows.h>
#include <shellapi.h>
#include <tinyxml.h>
#include <wininet.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "dregsweep/companionservice.h"
#include "sysservices/handle.h"
#include "sysservices/nothrow.h"
#include "sysservices/privilegecontext.h"
#include "tests/dregsweep/builtfiles.h"
#include "tests/dregsweep/engine.h"
#include "tests/faults/refusals.h"
#include "tests/support/allocguard.h"
#include "tests/support/iatpatch.h"
#include "tests/support/recordingexplanation.h"
#include "tests/update/updatefixture.h"

namespace {

// ---- how the functions refuse

using AnyFunction = uintptr_t(WINAPI*)(uintptr_t, uintptr_t, uintptr_t, uintptr_t, uintptr_t, uintptr_t, uintptr_t,
                                       uintptr_t, uintptr_t, uintptr_t, uintptr_t);

AnyFunction g_original;
Refusal g_refusal;
int g_calls, g_refusedCall;
DWORD g_jobThread;

// Takes the place of any of them: all arguments are numbers or pointers, eleven at most.
uintptr_t WINAPI Refuse(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t e, uintptr_t f, uintptr_t g,
                        uintptr_t h, uintptr_t i, uintptr_t j, uintptr_t k) {
    const bool refuses = GetCurrentThreadId() == g_jobThread && ++g_calls == g_refusedCall;
    if (!refuses) return g_original(a, b, c, d, e, f, g, h, i, j, k);
    if (g_refusal.worksFirst) g_original(a, b, c, d, e, f, g, h, i, j, k);
    SetLastError(g_refusal.error);
    return g_refusal.answer;
}

bool g_memoryEnds = false;

// ---- the jobs

struct Job {
    virtual ~Job() = default;
    virtual void Prepare() {}
    virtual void Run() = 0;
    // `whole`: nothing was refused.
    virtual void Check(bool whole) = 0;
    // What the libraries below leave behind when memory ends.
    virtual bool MayLeak() const { return false; }
};

// Keeps nothing that takes memory.
struct Tally final : IDregsweepCallback {
    bool StepNotify1(uint64_t) override { return true; }
    bool StepNotify2(uint64_t) override { return true; }
    bool StepNotify3(uint64_t) override { return true; }
    bool Progress(uint32_t, uint32_t) override { return true; }
    bool FoundItem(const wchar_t* path, uint64_t, uint64_t) override {
        ++found;
        foundInBin += !wcschr(path, L'\\') && wcsstr(path, L"bin");
        return true;
    }
    bool Reserved() override { return true; }
    bool EmptiedItem(const wchar_t* path, uint64_t, uint64_t, bool removed) override {
        if (!removed) return true;
        ++(*path ? gone : binsEmptied);
        wcscat(wcscat(reported, path), L"|");
        return true;
    }
    uint32_t found = 0, foundInBin = 0, gone = 0, binsEmptied = 0;
    wchar_t reported[5000] = {};
};

void SetValue(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    RegSetKeyValueW(root, key.c_str(), name, REG_SZ, text.c_str(), static_cast<DWORD>(text.size() * 2 + 2));
}

class EngineJob : public Job {
public:
    EngineJob(const char* rules, std::vector<const wchar_t*> doomed, bool upgrade)
        : m_doomed(std::move(doomed)),
          m_upgrade(upgrade) {
        std::string xml = std::string(
                              "<R><AppCategoryInfo Name='C' ResID='Key' SelState='2' CatagoryType='0'>"
                              "<AppInfo Name='A'")
                          + rules + "</GarbageCatagory></AppInfo></AppCategoryInfo></R>";
        for (size_t at; (at = xml.find('@')) != xml.npos;)
            xml.replace(at, 1, WideToUtf8(m_key));
        m_rules = m_folder.Write(L"rules.xml", xml);
        SetValue(HKEY_LOCAL_MACHINE, kUninstall, L"DisplayName", L"dsw sweep");
        SetValue(HKEY_LOCAL_MACHINE, kUninstall, L"DisplayIcon", L"C:\\windows\\notepad.exe,0");
        for (const wchar_t* kept : kKeptFiles)
            m_folder.Write(kept);
    }
    ~EngineJob() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, kUninstall);
    }
    void Prepare() override {
        SetEnvironmentVariableW(L"DSW_JOB", m_folder.path().c_str());
        SetEnvironmentVariableW(L"DSW_LOCAL", (m_folder / L"h").c_str());
        for (const wchar_t* name : m_doomed)
            if (!m_folder.Has(name)) m_folder.Write(name, "12345");
        SetFileAttributesW((m_folder / L"a\\1.tmp").c_str(), FILE_ATTRIBUTE_READONLY);
        SetValue(HKEY_CURRENT_USER, m_key, L"From", m_folder / L"e");
        SetValue(HKEY_CURRENT_USER, m_key + L"\\S", L"v", L"x");
        SetValue(HKEY_CURRENT_USER, m_key + L"\\S", L"kept", L"x");
        SetValue(HKEY_CURRENT_USER, m_key + L"\\D", L"v", L"x");
        m_tally = {};
        TakeTraceLines();
    }
    void Run() override {
        m_code = m_gathered = m_cleaned = 1;
        m_engine = Engine(new (std::nothrow) CDregsweep(m_upgrade));
        if (!m_engine) return;
        m_code = m_engine->Init(m_rules.c_str(), m_texts.c_str(), nullptr);
        m_gathered = m_engine->Gather(&m_tally);
        NoThrow(true, [this] {
            RecordingExplanation details;
            ForEachRule(*m_engine, [&](IGarbageInfo& rule) { rule.Explain(&details); });
            return true;
        });
        m_cleaned = m_engine->Clean(&m_tally);
        NoThrow(true, [this] {
            TiXmlElement saved("R");
            const CReference category(m_engine->GetFirstCategory());
            return category && static_cast<CAppCatagory&>(*category).SaveXml(&saved);
        });
    }
    void Check(bool whole) override {
        if (!m_engine) return;
        EXPECT_TRUE(m_code == 0 || (m_code == kDregsweepConfigFailed && !whole)) << m_code;
        EXPECT_TRUE((m_gathered && m_cleaned) || (g_memoryEnds && !whole));
        std::thread([&] {
            m_engine->AddAllowedPath(L"x");
            m_engine->ClearAllowedPaths();
            m_hasTexts = NamesOf(*m_engine) == L"N;";
            ForEachRule(*m_engine, [](IGarbageInfo& rule) { rule.EnumFound(nullptr), rule.GetNextChild(nullptr); });
        }).join();
        for (const wchar_t* kept : kKeptFiles)
            EXPECT_TRUE(m_folder.Has(kept)) << kept;
        EXPECT_TRUE(HasValue(L"S", L"kept"));
        const Tally& t = m_tally;
        for (const wchar_t* name : m_doomed) {
            const bool reported = wcsstr(t.reported, (name + std::wstring(L"|")).c_str());
            EXPECT_EQ(!m_folder.Has(name), reported) << name;
            EXPECT_FALSE(whole && m_folder.Has(name)) << name;
        }
        EXPECT_EQ(m_engine->GetTotalCount(), t.found - t.gone - (t.binsEmptied ? t.foundInBin : 0));
        EXPECT_FALSE(whole && m_doomed.size() > 3 && (HasValue(L"S", L"v") || HasValue(L"D", L"v")));
        m_engine->Uninit();
        m_engine = {};
        // As if nobody had enabled anything yet.
        std::destroy_at(&RestoreContext());
        std::construct_at(&RestoreContext(), false);
    }
    bool MayLeak() const override { return g_memoryEnds && !m_hasTexts; }

protected:
    bool HasValue(const wchar_t* key, const wchar_t* value) const {
        const std::wstring path = m_key + L"\\" + key;
        return !RegGetValueW(HKEY_CURRENT_USER, path.c_str(), value, RRF_RT_ANY, nullptr, nullptr, nullptr);
    }
    static constexpr const wchar_t* kUninstall = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\DswSweep";
    static constexpr const wchar_t* kKeptFiles[] = {L"a\\keep\\k.tmp", L"a\\1.doc",    L"b\\keep\\k.log",
                                                    L"c\\k.dat",       L"d\\p\\k.dat", L"e.dat",
                                                    L"f\\sub\\k.dat",  L"h\\k.dat",    L"a\\x.tmp.keep.tmp"};
    const std::wstring m_key = L"Software\\DswSweep" + std::to_wstring(GetCurrentProcessId());
    const TempFolder m_folder;
    const std::wstring m_texts = m_folder.Write(L"texts.xml", "<R><Dregsweep><Key>N</Key></Dregsweep></R>");
    std::wstring m_rules;
    const std::vector<const wchar_t*> m_doomed;
    const bool m_upgrade;
    Engine m_engine;
    Tally m_tally;
    uint64_t m_code = 0;
    bool m_gathered = false, m_cleaned = false, m_hasTexts = false;
};

constexpr const char* kFileRules = R"(><GarbageCatagory Name='G'>
<GarbageInfo FolderEnvDir='DSW_JOB' Path='a' IsFolder='1' Iteration='1' Filter='*.tmp' ExcludeFilter='.keep'
 ExcludePath='1'><ExcludePath Path='\KEEP' ExactMatch='1'/></GarbageInfo>
<GarbageInfo FolderEnvDir='DSW_JOB' Path='b' IsFolder='1' Iteration='1' ExcludePath='1'><ExcludePath Path='KEEP'/>
</GarbageInfo>
<GarbageInfo FolderEnvDir='DSW_JOB' Path='ç\5.dat'/>
<GarbageInfo FolderEnvDir='DSW_JOB' Path='d' IsFolder='1' LoopPath='1'><LoopPath Path='*'/>
<LoopPath TerminalPath='cache'/></GarbageInfo>
<GarbageInfo GetByReg='1' RootKey='HKCU' Path='@' Value='From'/>
<GarbageInfo FolderEnvDir='DSW_LOCAL' Path='8.dat'/>
<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='@' Iteration='1' Value='V'/>
<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='@\S' Value='v'/>
<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='@\D'/>
<GarbageInfo Registry='1' RootKey='HKCU' KeyPath='@\D' DelKey='1'/>)";
const std::vector<const wchar_t*> kFiles = {L"a\\1.tmp", L"a\\s\\2.tmp",        L"b\\3.log", L"b\\s\\4.log",
                                            L"ç\\5.dat", L"d\\p\\cache\\6.dat", L"e\\7.dat", L"h\\8.dat"};

// The recycle bin, a folder that the shell lists, the history and, without what unlocks, a file.
struct ShellJob final : EngineJob {
    ShellJob()
        : EngineJob(
            " ProductName='dsw sweep'><GarbageCatagory Name='G'><GarbageInfo FolderIndex='10' "
            "EmptyProc='NT_ClearHistory'/><GarbageInfo FolderEnvDir='DSW_JOB' Path='f\\sub' IsFolder='1' "
            "UseShellBrowse='1' Filter='none'/><GarbageInfo FolderEnvDir='DSW_JOB' Path='f\\none' IsFolder='1' "
            "UseShellBrowse='1'/><GarbageInfo FolderIndex='38' Path='DswNone' IsFolder='1'/>"
            "<GarbageInfo FolderEnvDir='DSW_JOB' Path='b\\s' IsFolder='1'/>",
            {L"b\\s\\4.log"}, false) {}
    ~ShellJob() override { SetCurrentDirectoryW(L"C:\\"); }
    void Prepare() override {
        EngineJob::Prepare();
        const std::wstring from = m_folder.Write(L"bin.tmp") + L'\0';
        SHFILEOPSTRUCTW operation = {nullptr, FO_DELETE, from.c_str(), nullptr, 0, FALSE, nullptr, nullptr};
        operation.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
        SHFileOperationW(&operation);
        SetCurrentDirectoryW(L"C:\\xdg\\Trash\\files");
        wchar_t file[MAX_PATH] = {};
        CreateUrlCacheEntryW(L"http://sweep.test/", 0, L"htm", file, 0);
        CommitUrlCacheEntryW(L"http://sweep.test/", file, {}, {}, NORMAL_CACHE_ENTRY, nullptr, 0, nullptr, nullptr);
    }
    void Run() override {
        EngineJob::Run();
        EXPECT_FALSE(StartCompanionService()) << "not installed";
    }
    void Check(bool whole) override {
        EngineJob::Check(whole);
        DWORD size = 0;
        const bool hasEntry = !GetUrlCacheEntryInfoW(L"http://sweep.test/", nullptr, &size)
                              && GetLastError() == ERROR_INSUFFICIENT_BUFFER;
        EXPECT_FALSE(whole && (hasEntry || !m_tally.foundInBin || m_tally.binsEmptied != 1));
    }
};

struct Sink final : IInternetDataSink {
    void OnBegin(uint32_t) override { size = 0; }
    uint32_t IsCancelled() override { return 0; }
    uint32_t OnData(const uint8_t*, uint32_t length) override { return size += length, 0; }
    void OnComplete() override { ++completed; }
    uint32_t size = 0, completed = 0;
};

// The lowest number that is free: Wine counts no handles.
ULONG NextHandle() {
    return HandleToULong(CHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr)).get()) / 4;
}

class Sweep : public UpdateTest {
protected:
    // All of an update: the list and its files, a file, a text and a stream.
    struct UpdateJob final : Job {
        explicit UpdateJob(Sweep& test) : t(test) {
            for (const char* page : {"/a", "/b"})
                t.m_server.Serve(page, {std::string("new") + page});
            t.m_server.Serve("/list", {"a\nb"});
            t.m_server.Serve("/version", {"7"});
            // What stands in for its functions is looked up now.
            Prepare(), Run(), Check(true);
        }
        void Prepare() override {
            for (const wchar_t* name : {L"a", L"b", L"kept"})
                t.m_folder.Write(name, "old");
            for (const wchar_t* name : {L"a_bak", L"b_bak", L"c", L"list"})
                DeleteFileW((t.m_folder / name).c_str());
            t.m_server.TakeRequests();
            TakeTraceLines();
        }
        void Run() override {
            CInternetFileProc& update = *t.m_update;
            m_results[0] = update.Init();
            m_results[1] = update.GetFileListFromURL(m_list.c_str(), t.m_folder.path().c_str());
            m_results[2] = update.GetFileFromURL(m_a.c_str(), m_c.c_str());
            m_results[3] = update.GetFileBufFromURL(m_a.c_str(), m_sink.get());
            m_results[4] = update.GetWanConfigVersion(m_version.c_str(), &m_wanted);
            update.SetConfigVersion(8);
            m_results[5] = update.Uninit();
        }
        void Check(bool whole) override {
            using namespace InternetFileResult;
            static constexpr std::array<uint32_t, 4> kCodes[] = {
                {kInitNoHandle},
                {kListNotReady, kFileFailed, kFileSizeUnknown, kListRenameFailed},
                {kFileNotReady, kFileFailed, kFileSizeUnknown},
                {kBufNotReady, kBufFailed, kBufSizeUnknown},
                {kWanVersionNotReady, kStreamFailed, kStreamSizeUnknown},
                {kUninitNotReady}};
            for (size_t i = 0; i < std::size(kCodes); ++i)
                EXPECT_TRUE(m_results[i] == 0 || (!whole && std::ranges::count(kCodes[i], m_results[i]))) << i;
            EXPECT_EQ(m_results[2] == 0, t.m_folder.Has(L"c"));
            EXPECT_TRUE(m_results[3] != 0 || m_sink->size == 5);
            EXPECT_TRUE(m_results[4] != 0 || m_wanted == 7 || !whole);
            EXPECT_EQ(ReadFileBytes(t.m_folder / L"kept"), "old");
            for (const wchar_t* name : {L"a", L"b"}) {
                // Gone with a copy left when it could not be renamed; cut short where the disk took less.
                const bool renamed = m_results[1] != kListRenameFailed || t.m_folder.Has(name);
                const std::string content = renamed ? ReadFileBytes(t.m_folder / name) : "old";
                EXPECT_TRUE(content == "old" || content == "new/" + WideToUtf8(name) || (!whole && content.empty()));
                EXPECT_TRUE(!whole || content != "old");
                EXPECT_TRUE(renamed || t.m_folder.Has(name + std::wstring(L"_bak")));
            }
            t.m_server.TakeRequests();
        }
        Sweep& t;
        const std::wstring m_list = t.m_server.Url(L"/list"), m_a = t.m_server.Url(L"/a"), m_c = t.m_folder / L"c",
                           m_version = t.m_server.Url(L"/version");
        const CReference<Sink> m_sink{new Sink};
        uint32_t m_results[6] = {}, m_wanted = 0;
    };

    // Refuses every call of the function in every job in turn; how many that were.
    int RefuseEach(const std::string& function, std::initializer_list<Job*> jobs) {
        const auto names = [&](const Refusal& r) { return r.functions.find(" " + function + " ") != r.functions.npos; };
        const auto* refusal = std::ranges::find_if(kRefusals, names);
        g_refusal = refusal == std::end(kRefusals) ? Refusal{} : *refusal;
        const IatPatch patch(nullptr, nullptr, function.c_str(), reinterpret_cast<const void*>(&Refuse));
        EXPECT_TRUE(patch.ok()) << function;
        g_original = patch.original<AnyFunction>();
        g_jobThread = GetCurrentThreadId();
        const auto begin = [](int n) { g_calls = 0, g_refusedCall = n; };
        const auto end = [] { return g_calls >= std::exchange(g_refusedCall, 0); };
        int faults = 0;
        for (Job* job : jobs)
            if (!HasFailure()) faults += Each(*job, function.c_str(), 1, begin, end);
        EXPECT_GT(faults, 0) << function << " is called in no job";
        return faults;
    }

    // `begin(n)` lets the n-th thing fail and `end` tells whether it did; every `nextRuns`-th time the next run
    // follows.
    template <class Begin, class End>
    int Each(Job& job, const char* what, int nextRuns, Begin begin, End end) {
        int faults = 0;
        for (int n = 1;; ++n) {
            job.Prepare();
            const long long live = alloc_guard::Live();
            begin(n);
            job.Run();
            const bool whole = !end();
            job.Check(whole);
            TakeTraceLines();
            EXPECT_TRUE(job.MayLeak() || alloc_guard::Live() <= live) << alloc_guard::Live() - live;
            EXPECT_FALSE(HasFailure()) << what << ", call " << n;
            if (whole || HasFailure()) return faults;
            ++faults;
            if (n % nextRuns != 0) continue;
            job.Prepare();
            job.Run();
            job.Check(true);
            EXPECT_FALSE(HasFailure()) << "the run after " << what << ", call " << n;
        }
    }
};

// In a process of its own: the answer is kept.
TEST_F(Sweep, LookUpRefused) {
    EngineJob files(kFileRules, kFiles, true);
    RefuseEach("GetProcAddress", {&files});
}

TEST_F(Sweep, EveryCallRefusedOnce) {
    RecordProperty("leaks", "the privileges' buffers stay");
    EngineJob files(kFileRules, kFiles, true);
    ShellJob shell;
    UpdateJob update(*this);
    int faults = RefuseEach("GetVersionExW", {&files});  // its answer is kept
    const ULONG handle = NextHandle();
    const HMODULE module = LoadLibraryW(L"Dregsweep.dll");
    for (const auto& [dll, function] : ImportsOf(module)) {
        if (_stricmp(dll.c_str(), "msvcrt.dll") == 0 || kLeftAlone.find(" " + function + " ") != kLeftAlone.npos)
            continue;
        if (!HasFailure()) faults += RefuseEach(function, {&files, &shell, &update});
    }
    FreeLibrary(module);
    EXPECT_LT(NextHandle(), handle + 50) << "of " << faults << " runs";
    std::printf("%d refusals\n", faults);
}

TEST_F(Sweep, EveryAllocationRefused) {
    g_memoryEnds = true;
    RecordProperty("leaks", "TinyXML loses what it is parsing");
    EngineJob files(kFileRules, kFiles, true);
    ShellJob shell;
    UpdateJob update(*this);
    int faults = 0;
    for (Job* job : std::initializer_list<Job*>{&files, &shell, &update}) {
        for (const bool once : {true, false}) {
            // All at once: at every third place.
            const auto begin = [once](int n) { alloc_guard::FailAfter(once ? n - 1 : n * 3, once); };
            const auto end = [] { return alloc_guard::FailAfter(-1); };
            faults += Each(*job, once ? "one allocation" : "all allocations", 10, begin, end);
            ASSERT_FALSE(HasFailure());
        }
    }
    std::printf("%d allocations\n", faults);
}

}  // namespace
