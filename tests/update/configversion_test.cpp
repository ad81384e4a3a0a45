#include "update/configversion.h"

#include "tests/support/allocguard.h"
#include "tests/support/tracerecorder.h"
#include "tests/update/updatefixture.h"

using namespace InternetFileResult;
using testing::ElementsAre;

namespace {

class ConfigVersionTest : public UpdateTest {
protected:
    uint32_t Current() {
        uint32_t version = 77;
        EXPECT_EQ(m_update->GetCurConfigVersion(&version), kSuccess);
        return version;
    }
};

// The shared object lives on, and what it holds with it: it is warmed up before the first test counts allocations.
class SharedUpdateTest : public UpdateTest {
protected:
    static void SetUpTestSuite() {
        IInternetFileProc* update = SharedInternetFileProc();
        g_faults.executable = L"C:\\windows\\temp\\no such folder\\a rather long name of an executable file.exe";
        EXPECT_EQ(update->Init(), kSuccess);
        EXPECT_EQ(update->Uninit(), kSuccess);
        EXPECT_EQ(update->Release(), 0u);
        TakeTraceLines();
    }
};

}  // namespace

TEST_F(ConfigVersionTest, TheIniFileLiesAtAnOddPrefix) {
    const std::wstring full(260, L'p');
    const std::pair<std::wstring_view, std::wstring> rows[] = {
        {L"C:\\Apps\\Host\\host.exe", L"C:\\Apps\\H\\dswconfig.ini"},
        {L"C:\\h.exe", L"C:\\h.e\\dswconfig.ini"},
        {L"no backslash", L"no backslash\\dswconfig.ini"},
        {L"", L"\\dswconfig.ini"},
        {full, full + L"\\dswconfig.ini"},
    };
    for (const auto& [executable, expected] : rows) {
        g_faults.executable = executable;
        EXPECT_EQ(ConfigIniPath(), expected);
    }
}

TEST_F(ConfigVersionTest, StoredAndLoaded) {
    const struct {
        uint32_t version;
        const char* text;
    } rows[] = {{1, "0001"},         {3, "0003"}, {12345, "12345"}, {0, "0000"}, {0x80000001, "-2147483647"},
                {0xFFFFFFFF, "-001"}};
    for (const auto& row : rows) {
        ASSERT_EQ(m_update->Init(), kSuccess);
        // Without a file the version is 1, and only Uninit writes it.
        EXPECT_TRUE(m_folder.Has(L"dswconfig.ini") || Current() == 1);
        EXPECT_TRUE(row.version == 1 || m_update->SetConfigVersion(row.version) == kSetVersionAlways);
        EXPECT_EQ(m_folder.Has(L"dswconfig.ini"), row.version != 1);
        EXPECT_EQ(m_update->Uninit(), kSuccess);
        EXPECT_EQ(ReadFileBytes(IniFile()), std::string("[Config]\r\nversion=") + row.text + "\r\n");
        StoreConfigVersion(m_folder / L"elsewhere\\none.ini", 9);
        ASSERT_EQ(m_update->Init(), kSuccess);
        EXPECT_EQ(Current(), row.version);
        EXPECT_EQ(m_update->Uninit(), kSuccess);
    }
    const std::pair<const char*, uint32_t> files[] = {
        {"[Config]\r\nversion=abc\r\n", 0}, {"[Config]\r\nversion=12abc\r\n", 12}, {"[Other]\r\nversion=5\r\n", 9}};
    for (const auto& [content, expected] : files) {
        StoreConfigVersion(m_folder / L"elsewhere\\none.ini", 9);
        m_folder.Write(L"dswconfig.ini", content);
        ASSERT_EQ(m_update->Init(), kSuccess);
        EXPECT_EQ(Current(), expected) << content;
        EXPECT_EQ(m_update->Uninit(), kSuccess);
    }
}

TEST_F(ConfigVersionTest, PublishedVersions) {
    const std::pair<const char*, uint32_t> rows[] = {{"12\r\n", 12}, {" +7x9", 7}, {"-3", 0xFFFFFFFD},
                                                     {"none", 0},    {"", 0},      {"99999999999", 0x7FFFFFFF}};
    ASSERT_EQ(m_update->Init(), kSuccess);
    for (const auto& [text, expected] : rows) {
        uint32_t version = 77;
        m_server.Serve("/version", {text});
        EXPECT_EQ(m_update->GetWanConfigVersion(m_server.Url(L"/version").c_str(), &version), kSuccess);
        EXPECT_EQ(version, expected) << text;
    }
    uint32_t version = 77;
    EXPECT_EQ(m_update->GetWanConfigVersion(L"http://127.0.0.1:9/", &version), kStreamFailed);
    EXPECT_EQ(version, 77u);
    EXPECT_EQ(TakeTraceLines().back(),
              L"[InternetFileProc] GetWanConfigVersion fail 0x1430001,http://127.0.0.1:9/,last err : 12029");
}

TEST_F(ConfigVersionTest, InitAndItsLines) {
    m_folder.Write(L"dswconfig.ini", "[Config]\r\nversion=8\r\n");
    g_faults.noRoots = g_faults.noProxy = true;
    EXPECT_EQ(m_update->Init(), kInitNoHandle);
    EXPECT_EQ(CurrentConfigVersion(), 8u);
    EXPECT_THAT(
        TakeTraceLines(),
        ElementsAre(L"[InternetFileProc] InternetOpen fail,0,7", L"[InternetFileProc] InternetQueryOption fail,8",
                    L"[InternetFileProc] InternetOpen fail,1,8", L"[InternetFileProc] InternetOpen fail,2,7",
                    L"[InternetFileProc] Init fail,0x320001"));
    EXPECT_EQ(m_update->Uninit(), kUninitNotReady);
    g_faults.noRoots = false;
    g_faults.asyncRow = true;
    EXPECT_EQ(m_update->Init(), kSuccess);
    EXPECT_EQ(TakeTraceLines().size(), 2u) << "only the row of the proxy settings failed";
    EXPECT_EQ(m_update->Init(), kSuccess);
    EXPECT_EQ(TakeTraceLines().size(), 0u);
    EXPECT_EQ(m_update->Uninit(), kSuccess);
    EXPECT_EQ(m_update->Uninit(), kUninitNotReady);
}

TEST_F(ConfigVersionTest, MissingInitAndMissingArguments) {
    const CReference<RecordingSink> sink(new RecordingSink);
    StreamText text = L"kept";
    uint32_t version = 77;
    const auto path = m_folder / L"file";
    const auto check = [&](const wchar_t* url, bool outputs) {
        EXPECT_EQ(m_update->GetFileFromURL(url, outputs ? path.c_str() : nullptr), kFileNotReady);
        EXPECT_EQ(m_update->GetFileBufFromURL(url, outputs ? sink.get() : nullptr), kBufNotReady);
        EXPECT_EQ(m_update->GetStreamFileInfo(url, outputs ? &text : nullptr), kStreamNotReady);
        EXPECT_EQ(m_update->GetFileListFromURL(url, outputs ? path.c_str() : nullptr), kListNotReady);
        SetLastError(5);
        EXPECT_EQ(m_update->GetWanConfigVersion(url, outputs ? &version : nullptr), kWanVersionNotReady);
    };
    check(L"u", true);
    EXPECT_EQ(m_update->GetCurConfigVersion(&version), kCurVersionNotReady);
    EXPECT_EQ(m_update->SetConfigVersion(3), kSetVersionAlways);
    EXPECT_THAT(TakeTraceLines(), ElementsAre(L"[InternetFileProc] GetFileFromURL fail,u,0x930006",
                                              L"[InternetFileProc] GetFileBufFromURL fail,u,0xe60006",
                                              L"[InternetFileProc] GetStreamFileInfo fail,u,0x13d0006",
                                              L"[InternetFileProc] GetFileListFromURL fail,u,0x1920006",
                                              L"[InternetFileProc] GetWanConfigVersion fail 0x850006,u,last err : 5",
                                              L"[InternetFileProc] GetCurConfigVersion version : 1,ret 0x6e0006",
                                              L"[InternetFileProc] SetConfigVersion fail 0x780006,last err : 5"));
    EXPECT_FALSE(m_folder.Has(L"dswconfig.ini"));
    ASSERT_EQ(m_update->Init(), kSuccess);
    check(nullptr, true);
    check(L"http://127.0.0.1:9/", false);
    EXPECT_EQ(m_update->GetCurConfigVersion(nullptr), kCurVersionNotReady);
    EXPECT_EQ(version, 77u);
    EXPECT_STREQ(text, L"kept");
    EXPECT_EQ(sink->m_calls, "");
}

TEST_F(ConfigVersionTest, MemoryRunsOut) {
    for (long long blocks = 0; blocks < 6; ++blocks) {
        const CReference<CInternetFileProc> update(new CInternetFileProc);
        alloc_guard::FailAfter(0);
        const uint32_t init = update->Init();
        alloc_guard::FailAfter(-1);
        EXPECT_EQ(init, kInitNoHandle);
        ASSERT_EQ(update->Init(), kSuccess);
        alloc_guard::FailAfter(blocks);
        const uint32_t result = update->GetFileListFromURL(L"http://127.0.0.1:9/list.txt", L"C:\\no such folder");
        alloc_guard::FailAfter(-1);
        EXPECT_EQ(result, kFileFailed);
    }
}

TEST_F(SharedUpdateTest, NeverDestroyedAndLeftAsItWas) {
    IInternetFileProc* update = SharedInternetFileProc();
    EXPECT_EQ(SharedInternetFileProc(), update);
    EXPECT_EQ(update->AddRef(), 3u);
    EXPECT_EQ(update->Init(), kSuccess);
    for (const uint32_t left : {2u, 1u, 0u})
        EXPECT_EQ(static_cast<IEUObject*>(update)->Release(), left);

    EXPECT_EQ(SharedInternetFileProc(), update);
    uint32_t version = 0;
    EXPECT_EQ(update->GetCurConfigVersion(&version), kSuccess) << "still initialised";
    EXPECT_EQ(update->Uninit(), kSuccess);
    EXPECT_EQ(update->Release(), 0u);
}

TEST_F(SharedUpdateTest, InitIsTheFirstSlot) {
    IInternetFileProc* update = SharedInternetFileProc();
    using Slot = uint32_t (*)(IInternetFileProc*);
    const Slot* slots = *reinterpret_cast<Slot**>(update);
    EXPECT_EQ(slots[1](update), kUninitNotReady);
    EXPECT_EQ(slots[0](update), kSuccess);
    EXPECT_EQ(slots[1](update), kSuccess);
    update->Release();
}
