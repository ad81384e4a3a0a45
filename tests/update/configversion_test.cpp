#include "update/configversion.h"

#include "tests/update/updatefixture.h"

using namespace InternetFileResult;

namespace {

class ConfigVersion : public UpdateTest {
protected:
    // What the INI file holds, which is then deleted.
    std::string TakeIni() const {
        std::string content = m_folder.Has(L"dswconfig.ini") ? ReadFileBytes(m_folder / L"dswconfig.ini") : "none";
        DeleteFileW((m_folder / L"dswconfig.ini").c_str());
        return content;
    }
};

}  // namespace

TEST_F(ConfigVersion, LiesAtAnOddPrefix) {
    const std::wstring full(260, L'p');
    const std::pair<std::wstring, std::wstring> rows[] = {{L"C:\\Apps\\Host\\host.exe", L"C:\\Apps\\H\\dswconfig.ini"},
                                                          {L"no backslash", L"no backslash\\dswconfig.ini"},
                                                          {full, full + L"\\dswconfig.ini"}};
    for (const auto& [executable, expected] : rows) {
        g_executable = executable;
        EXPECT_EQ(ConfigIniPath(), expected);
    }
}

TEST_F(ConfigVersion, IsStoredAndLoaded) {
    const std::pair<const char*, uint32_t> files[] = {
        {"", 1}, {"version=abc", 0}, {"version=12abc", 12}, {"version=0008", 8}, {"other=5", 8}};
    for (const auto& [line, expected] : files) {
        if (*line) m_folder.Write(L"dswconfig.ini", std::string("[Other]\r\nversion=5\r\n[Config]\r\n") + line);
        ASSERT_EQ(m_update->Init(), kSuccess);
        EXPECT_EQ(CurrentConfigVersion(), expected) << line;
        EXPECT_EQ(m_update->Uninit(), kSuccess);
    }
    const std::pair<uint32_t, const char*> versions[] = {
        {3, "0003"}, {12345, "12345"}, {0, "0000"}, {0x80000001, "-2147483647"}, {0xFFFFFFFF, "-001"}};
    for (const auto& [version, text] : versions) {
        const std::string content = std::string("[Config]\r\nversion=") + text + "\r\n";
        ASSERT_EQ(m_update->Init(), kSuccess);
        TakeIni();
        EXPECT_EQ(m_update->SetConfigVersion(version), kSetVersionAlways);
        EXPECT_EQ(TakeIni(), content);
        uint32_t current = 77;
        EXPECT_EQ(m_update->GetCurConfigVersion(&current), kSuccess);
        EXPECT_EQ(current, version);
        EXPECT_EQ(m_update->Uninit(), kSuccess);
        EXPECT_EQ(TakeIni(), content);
    }
}

TEST_F(ConfigVersion, IsPublished) {
    const std::pair<const char*, uint32_t> rows[] = {{"12\r\n", 12}, {" +7x9", 7}, {"-3", 0xFFFFFFFD},
                                                     {"none", 0},    {"", 0},      {"99999999999", 0x7FFFFFFF}};
    ASSERT_EQ(m_update->Init(), kSuccess);
    uint32_t version = 77;
    for (const auto& [text, expected] : rows) {
        m_server.Serve("/version", {text});
        EXPECT_EQ(m_update->GetWanConfigVersion(m_server.Url(L"/version").c_str(), &version), kSuccess);
        EXPECT_EQ(version, expected) << text;
    }
    EXPECT_EQ(m_update->GetWanConfigVersion(m_closed.c_str(), &version), kStreamFailed);
    EXPECT_EQ(version, 0x7FFFFFFFu);
}

TEST_F(ConfigVersion, NeedsOneWayOfAccess) {
    m_folder.Write(L"dswconfig.ini", "[Config]\r\nversion=8\r\n");
    g_faults = {.fails = "OP"};
    EXPECT_EQ(m_update->Init(), kInitNoHandle);
    TakeIni();
    uint32_t version = 77;
    SetLastError(5);
    EXPECT_EQ(m_update->Uninit(), kUninitNotReady);
    EXPECT_EQ(m_update->GetCurConfigVersion(&version), kCurVersionNotReady);
    EXPECT_EQ(m_update->SetConfigVersion(3), kSetVersionAlways);
    EXPECT_EQ(m_update->GetWanConfigVersion(L"u", &version), kWanVersionNotReady);
    EXPECT_TRUE(TakeIni() == "none" && version == 77);
    EXPECT_EQ(Traced(),
              "InternetOpen fail,0,12031|InternetQueryOption fail,12031|InternetOpen fail,1,12031|"
              "InternetOpen fail,2,12031|Init fail,0x320001|GetCurConfigVersion version : 8,ret 0x6e0006|"
              "SetConfigVersion fail 0x780006,last err : 5|GetWanConfigVersion fail 0x850006,u,last err : 5|");
    // One row is enough, and a second call does nothing.
    g_faults = {.fails = "O", .last = 1};
    EXPECT_TRUE(m_update->Init() == kSuccess && m_update->Init() == kSuccess);
    EXPECT_EQ(Traced(), "InternetOpen fail,0,12031|");
    EXPECT_EQ(m_update->GetCurConfigVersion(nullptr), kCurVersionNotReady);
    EXPECT_EQ(m_update->GetWanConfigVersion(nullptr, &version), kWanVersionNotReady);
    EXPECT_EQ(m_update->GetWanConfigVersion(L"u", nullptr), kWanVersionNotReady);
}
