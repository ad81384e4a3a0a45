#include <windows.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

#include "host/gathercommand.h"
#include "sysservices/text.h"
#include "tests/support/tempfolder.h"

using testing::HasSubstr;
using testing::Not;

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

struct Outcome {
    DWORD status;
    std::string out;
    std::string err;
};

std::wstring Executable() {
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring path = self;
    return path.substr(0, path.rfind(L'\\')) + L"\\dsw.exe";
}

class Dsw : public testing::Test {
protected:
    Dsw() { SetEnvironmentVariableW(L"DSW_TEST", m_folder.path().c_str()); }

    // A child's standard stream, backed by a file.
    Handle Stream(const std::wstring& file, DWORD disposition) const {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        return Handle(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &inherited, disposition, 0, nullptr));
    }

    Outcome Run(const std::wstring& arguments, std::string_view input = "") const {
        std::wstring line = L"dsw " + arguments;
        const Handle in = Stream(m_folder.Write(L"in", input), OPEN_EXISTING);
        Handle out = Stream(m_folder / L"out", CREATE_ALWAYS);
        Handle err = Stream(m_folder / L"err", CREATE_ALWAYS);
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = in.get();
        start.hStdOutput = out.get();
        start.hStdError = err.get();
        PROCESS_INFORMATION started = {};
        if (!CreateProcessW(Executable().c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                            nullptr, &start, &started))
            return {~0U, {}, "cannot start dsw.exe"};
        const Handle process(started.hProcess);
        const Handle thread(started.hThread);
        WaitForSingleObject(process.get(), INFINITE);
        Outcome outcome = {};
        GetExitCodeProcess(process.get(), &outcome.status);
        out.reset();
        err.reset();
        outcome.out = ReadFileBytes(m_folder / L"out");
        outcome.err = ReadFileBytes(m_folder / L"err");
        return outcome;
    }

    // A rule over the folder "junk", in a file whose name the command line must carry unharmed.
    std::wstring WriteRules() const {
        return m_folder.Write(L"Règles 规则.xml", R"(<R>
            <AppCategoryInfo Name="Système" SelState="1" ResID="S">
              <AppInfo Name="Da" InBuildProgram="1" SelState="2"><GarbageCatagory Name="临时文件">
                <GarbageInfo FolderEnvDir="DSW_TEST" Path="junk" IsFolder="1" Iteration="1"/>
                <GarbageInfo Registry="1" SelState="0"/>
              </GarbageCatagory></AppInfo>
              <AppInfo Name="Fort" ProductName="none such" SelState="0"/>
            </AppCategoryInfo></R>)");
    }
    std::wstring Rules() const { return L"--rules \"" + WriteRules() + L"\" "; }

    TempFolder m_folder;
};

}  // namespace

TEST_F(Dsw, TellsInOneLineWhatIsWrong) {
    m_folder.Write(L"broken.xml", "<R><AppCategoryInfo");
    m_folder.Write(L"nameless.xml", "<R><AppCategoryInfo/></R>");
    m_folder.Write(L"foreign.xml", "<R><Other/></R>");
    const auto file = [&](const wchar_t* name) { return L"list --rules \"" + (m_folder / name) + L"\""; };
    const struct {
        std::wstring arguments;
        DWORD status;
        const char* message;
    } rows[] = {
        {L"", 2, "subcommand is required"},
        {L"frob", 2, "dsw --help"},
        {L"list", 2, "--rules is required"},
        {L"gather --rules", 2, "FILE missing"},
        {L"clean " + Rules() + L"--bogus", 2, "--bogus"},
        {file(L"Fehlt ä.xml"), 1, "Fehlt ä.xml: check the path after --rules"},
        {file(L"."), 1, "is a folder"},
        {file(L"broken.xml"), 1, "broken.xml holds no rules"},
        {file(L"foreign.xml"), 1, "\"AppCategoryInfo\""},
        {file(L"nameless.xml"), 1, "\"Name\""},
        {L"gather " + Rules() + L"--text C:\\none.xml", 1, "C:\\none.xml: check the path after --text"},
        {L"list " + Rules() + L"--text \"" + (m_folder / L"foreign.xml") + L"\"", 1, "\"Dregsweep\""},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Run(row.arguments);
        EXPECT_EQ(outcome.status, row.status) << WideToUtf8(row.arguments);
        EXPECT_THAT(outcome.err, HasSubstr(row.message)) << WideToUtf8(row.arguments);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(Run(L"gather --help").status, 0U);
}

TEST_F(Dsw, ListsTheTreeWithStatesAndNames) {
    m_folder.Write(L"names.xml", "<T><Dregsweep><S>Σύστημα</S></Dregsweep></T>");
    const Outcome outcome = Run(L"list " + Rules() + L"--text \"" + (m_folder / L"names.xml") + L"\"");
    EXPECT_EQ(outcome.status, 0U) << outcome.err;
    EXPECT_EQ(outcome.out,
              "[-] Σύστημα\n"
              "    [x] Da (present)\n"
              "        [x] 临时文件\n"
              "            [x] rule 1\n"
              "            [ ] rule 2\n"
              "    [ ] Fort (not present)\n");
}

TEST_F(Dsw, GathersWithoutDeletingAndWithoutControlCharacters) {
    const std::wstring file = m_folder.Write(L"junk\\ünter\\日本 и.tmp", std::string(2000, 'x'));
    const Outcome outcome = Run(L"gather --items " + Rules());
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("Da: 临时文件\n    found  " + WideToUtf8(file) + "  2000\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Found 1 item, 1.9 KB (2,000 bytes).\n"));
    EXPECT_TRUE(std::none_of(outcome.out.begin(), outcome.out.end(), [](char c) { return c == '\r' || c == '\x1b'; }));
    EXPECT_TRUE(m_folder.Has(L"junk\\ünter\\日本 и.tmp"));
}

TEST_F(Dsw, CleansOnlyAfterYesAndCountsOnlyWhatIsGone) {
    m_folder.Write(L"junk\\a", std::string(1500, 'x'));
    SetFileAttributesW(m_folder.Write(L"junk\\stays", "12345").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const char* answer : {"", "\n", "n\n", "yesterday\n"}) {
        EXPECT_EQ(Run(L"clean " + Rules(), answer).status, 3U) << answer;
        EXPECT_TRUE(m_folder.Has(L"junk\\a")) << answer;
    }
    const Outcome outcome = Run(L"clean " + Rules(), "Yes\r\n");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_FALSE(m_folder.Has(L"junk\\a"));
    EXPECT_TRUE(m_folder.Has(L"junk\\stays"));
    EXPECT_THAT(outcome.out, HasSubstr("In use, refused or gone:\n  " + WideToUtf8(m_folder / L"junk\\stays") + "\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Freed 1.4 KB (1,500 bytes) in 1 item; not deleted: 1 item, 5 bytes.\n"));
    // Nobody is asked with --yes, and a deleted item does not count as found again.
    const Outcome again = Run(L"clean --yes " + Rules());
    EXPECT_THAT(again.out, HasSubstr("Freed 0 bytes in 0 items; not deleted: 1 item, 5 bytes.\n"));
    EXPECT_THAT(again.out, Not(HasSubstr("[y/N]")));
}

TEST_F(Dsw, StopsARunAtTheNextNotification) {
    m_folder.Write(L"junk\\a");
    CConsole console;
    const CCancel cancel;
    CEngine engine({WideToUtf8(WriteRules()), {}});
    EXPECT_TRUE(CCancel::Request());
    EXPECT_EQ(RunGather(engine, console, cancel, /*listItems=*/false), ExitStatus::Stopped);
    EXPECT_EQ(engine->GetTotalCount(), 0U);
    // A second Ctrl-C is not taken: the process may end at once.
    EXPECT_FALSE(CCancel::Request());
    const CCancel fresh;
    EXPECT_EQ(RunGather(engine, console, fresh, /*listItems=*/false), ExitStatus::Done);
    EXPECT_EQ(engine->GetTotalCount(), 1U);
}
