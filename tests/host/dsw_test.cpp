#include <windows.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

#include "host/gathercommand.h"
#include "sysservices/handle.h"
#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

using testing::HasSubstr;

namespace {

class Dsw : public testing::Test {
protected:
    Dsw() { SetEnvironmentVariableW(L"DSW_TEST", m_folder.path().c_str()); }

    // A child's standard stream, backed by a file.
    CHandle Stream(const wchar_t* name, DWORD disposition) const {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        return CHandle(CreateFileW((m_folder / name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition, 0, nullptr));
    }
    // Returns the exit status and keeps what was written. The system looks for the executable beside this one first.
    DWORD Run(const std::wstring& arguments, std::string_view input = "") {
        std::wstring line = L"dsw " + arguments;
        m_folder.Write(L"in", input);
        const CHandle in = Stream(L"in", OPEN_EXISTING), out = Stream(L"out", CREATE_ALWAYS);
        const CHandle err = Stream(L"err", CREATE_ALWAYS);
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        std::tie(start.hStdInput, start.hStdOutput, start.hStdError) = std::tuple(in.get(), out.get(), err.get());
        PROCESS_INFORMATION started = {};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr, nullptr,
                                   &start, &started));
        const CHandle process(started.hProcess), thread(started.hThread);
        WaitForSingleObject(process.get(), INFINITE);
        DWORD status = ~0U;
        GetExitCodeProcess(process.get(), &status);
        m_out = ReadFileBytes(m_folder / L"out");
        m_err = ReadFileBytes(m_folder / L"err");
        return status;
    }

    // A rule over the folder "junk", in a file whose name the command line must carry unharmed.
    std::wstring WriteRules() const {
        return m_folder.Write(L"Règles 规则.xml", R"(<R><AppCategoryInfo Name="Système" SelState="1" ResID="S">
            <AppInfo Name="Da" InBuildProgram="1" SelState="2"><GarbageCatagory Name="临时文件">
              <GarbageInfo FolderEnvDir="DSW_TEST" Path="junk" IsFolder="1" Iteration="1"/>
              <GarbageInfo Registry="1" SelState="0"/></GarbageCatagory></AppInfo>
            <AppInfo Name="Fort" ProductName="none such" SelState="0"/></AppCategoryInfo></R>)");
    }
    std::wstring Rules() const { return L"--rules \"" + WriteRules() + L"\" "; }

    TempFolder m_folder;
    std::string m_out, m_err;
};

}  // namespace

TEST_F(Dsw, TellsInOneLineWhatIsWrong) {
    m_folder.Write(L"broken.xml", "<R><AppCategoryInfo");
    m_folder.Write(L"foreign.xml", "<R><Other/></R>");
    const auto file = [&](const wchar_t* name) { return L"list --rules \"" + (m_folder / name) + L"\""; };
    const struct {
        std::wstring arguments;
        DWORD status;
        const char* message;
    } rows[] = {
        {L"", 2, "subcommand is required"},
        {L"clean " + Rules() + L"--bogus", 2, "--bogus"},
        {file(L"Fehlt ä.xml"), 1, "Fehlt ä.xml: check the path after --rules"},
        {file(L"."), 1, "is a folder"},
        {file(L"broken.xml"), 1, "broken.xml holds no rules"},
        {L"gather " + Rules() + L"--text C:\\none.xml", 1, "C:\\none.xml: check the path after --text"},
        {L"list " + Rules() + L"--text \"" + (m_folder / L"foreign.xml") + L"\"", 1, "\"Dregsweep\""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Run(row.arguments), row.status) << WideToUtf8(row.arguments);
        EXPECT_THAT(m_err, HasSubstr(row.message)) << WideToUtf8(row.arguments);
        EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 1) << m_err;
        EXPECT_EQ(m_out, "");
    }
}

TEST_F(Dsw, ListsAndGathersWithoutDeletingAndWithoutControlCharacters) {
    const std::wstring names = m_folder.Write(L"names.xml", "<T><Dregsweep><S>Σύστημα</S></Dregsweep></T>");
    EXPECT_EQ(Run(L"list " + Rules() + L"--text \"" + names + L"\""), 0U) << m_err;
    EXPECT_EQ(m_out,
              "[-] Σύστημα\n"
              "    [x] Da (present)\n"
              "        [x] 临时文件\n"
              "            [x] rule 1\n"
              "            [ ] rule 2\n"
              "    [ ] Fort (not present)\n");
    const std::wstring file = m_folder.Write(L"junk\\ünter\\日本 и.tmp", std::string(2000, 'x'));
    EXPECT_EQ(Run(L"gather --items " + Rules()), 0U) << m_err;
    EXPECT_THAT(m_out, HasSubstr("Da: 临时文件\n    found  " + WideToUtf8(file) + "  2000\n"));
    EXPECT_THAT(m_out, HasSubstr("Found 1 item, 1.9 KB (2,000 bytes).\n"));
    EXPECT_EQ(m_out.find_first_of("\r\x1b"), std::string::npos);
    EXPECT_TRUE(m_folder.Has(L"junk\\ünter\\日本 и.tmp"));
}

TEST_F(Dsw, CleansOnlyAfterYesAndCountsOnlyWhatIsGone) {
    m_folder.Write(L"junk\\a", std::string(1500, 'x'));
    SetFileAttributesW(m_folder.Write(L"junk\\stays", "12345").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const char* answer : {"", "\n", "n\n", "yesterday\n"}) {
        EXPECT_EQ(Run(L"clean " + Rules(), answer), 3U) << answer;
        EXPECT_TRUE(m_folder.Has(L"junk\\a")) << answer;
    }
    EXPECT_EQ(Run(L"clean " + Rules(), "Yes\r\n"), 0U);
    EXPECT_TRUE(!m_folder.Has(L"junk\\a") && m_folder.Has(L"junk\\stays"));
    EXPECT_THAT(m_out, HasSubstr("In use, refused or gone:\n  " + WideToUtf8(m_folder / L"junk\\stays") + "\n"));
    EXPECT_THAT(m_out, HasSubstr("Freed 1.4 KB (1,500 bytes) in 1 item; not deleted: 1 item, 5 bytes.\n"));
    EXPECT_EQ(Run(L"clean --yes " + Rules()), 0U);
    // Nobody is asked, and a deleted item does not count as found again.
    EXPECT_THAT(m_out, HasSubstr("Freed 0 bytes in 0 items; not deleted: 1 item, 5 bytes.\n"));
    EXPECT_EQ(m_out.find("[y/N]"), std::string::npos);
}

TEST_F(Dsw, StopsARunAtTheNextNotification) {
    m_folder.Write(L"junk\\a");
    CConsole console;
    const CCancel cancel;
    CEngine engine({WideToUtf8(WriteRules()), {}});
    EXPECT_TRUE(CCancel::Request());
    EXPECT_EQ(RunGather(engine, console, cancel, /*listItems=*/false), ExitStatus::Stopped);
    EXPECT_EQ(engine->GetTotalCount(), 0U);
    EXPECT_FALSE(CCancel::Request()) << "a second one may end the process at once";
}
