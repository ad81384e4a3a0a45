#include <windows.h>
#include <gmock/gmock.h>
#include <shlobj.h>
#include <wininet.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "host/common/engine.h"
#include "host/common/hosterror.h"
#include "host/console/command.h"
#include "host/console/runview.h"
#include "host/console/updatecommand.h"
#include "sysservices/handle.h"
#include "tests/host/table.h"
#include "tests/support/iatpatch.h"
#include "tests/support/loopbackhttp.h"
#include "tests/support/tempfolder.h"

using testing::AllOf, testing::HasSubstr, testing::MatchesRegex, testing::StartsWith;

namespace {

class Dsw : public testing::Test {
protected:
    Dsw() { SetEnvironmentVariableW(L"DSW_TEST", m_folder.path().c_str()); }

    // A child's standard stream, backed by a file.
    CHandle Stream(const wchar_t* name, DWORD disposition, DWORD access = GENERIC_READ | GENERIC_WRITE) const {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        return CHandle(CreateFileW((m_folder / name).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                   disposition, 0, nullptr));
    }
    // Returns the exit status and keeps what was written. The system looks for the executable beside this one first.
    DWORD Run(const std::wstring& arguments, std::string_view input = "", DWORD access = GENERIC_WRITE) {
        std::wstring line = L"dsw " + arguments;
        m_folder.Write(L"in", input);
        const CHandle in = Stream(L"in", OPEN_EXISTING), out = Stream(L"out", OPEN_ALWAYS, access);
        SetEndOfFile(out.get());
        const CHandle err = Stream(L"err", CREATE_ALWAYS);
        STARTUPINFOW start = {sizeof start,         {}, {}, {}, 0,        0,         0,        0, 0, 0, 0,
                              STARTF_USESTDHANDLES, 0,  0,  {}, in.get(), out.get(), err.get()};
        PROCESS_INFORMATION started = {};
        EXPECT_TRUE(CreateProcessW({}, line.data(), {}, {}, TRUE, DETACHED_PROCESS, {}, {}, &start, &started));
        const CHandle process(started.hProcess), thread(started.hThread);
        WaitForSingleObject(process.get(), INFINITE);
        DWORD status = ~0U;
        GetExitCodeProcess(process.get(), &status);
        m_out = ReadFileBytes(m_folder / L"out");
        m_err = ReadFileBytes(m_folder / L"err");
        return status;
    }

    // Does it with a console of this process, and returns what was written to its output.
    template <class Act>
    std::string Written(const Act& act) {
        const CHandle out = Stream(L"out", CREATE_ALWAYS);
        SetStdHandle(STD_OUTPUT_HANDLE, out.get());
        CConsole console;
        act(console);
        console.out.Flush();
        return ReadFileBytes(m_folder / L"out");
    }

    // Rules over the folder "junk", in a file whose name the command line must carry unharmed.
    std::wstring WriteRules() const {
        return m_folder.Write(L"Règles 规则.xml", R"(<R><AppCategoryInfo Name="Système" SelState="1" ResID="S">
            <AppInfo Name="Da" InBuildProgram="1" SelState="2"><GarbageCatagory Name="临时文件">
              <GarbageInfo FolderEnvDir="DSW_TEST" Path="junk" IsFolder="1" Iteration="1"/>
              <GarbageInfo Registry="1" SelState="0"/></GarbageCatagory></AppInfo>
            <AppInfo Name="Fort" ProductName="none such" SelState="0"><GarbageCatagory Name="*/&#27;Again" SelState="2">
              <GarbageInfo FolderEnvDir="DSW_TEST" Path="junk" IsFolder="1"/></GarbageCatagory>
              <GarbageCatagory Name="?/&#27;again" SelState="2"/></AppInfo></AppCategoryInfo></R>)");
    }
    std::wstring Rules() const { return L"--rules \"" + WriteRules() + L"\" "; }

    TempFolder m_folder;
    std::string m_out, m_err;
};

// The platform of the tests lacks the one, and answers the other in its own time.
DWORD WINAPI TellSize(HINTERNET request, LONG, PVOID, DWORD, DWORD_PTR) {
    DWORD size = 0, length = sizeof size;
    HttpQueryInfoW(request, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &size, &length, nullptr);
    return size;
}
HINTERNET WINAPI OpenUnlessAsync(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags) {
    return flags == INTERNET_FLAG_ASYNC ? nullptr : InternetOpenW(agent, access, proxy, bypass, flags);
}
// Without a path any shell folder is taken as a whole, as the recycle bin is.
HRESULT WINAPI RefusePath(HWND, int, HANDLE, DWORD, LPWSTR) {
    return E_FAIL;
}

}  // namespace

TEST_F(Dsw, TellsItsOptionsAndInOneLineWhatIsWrong) {
    m_folder.Write(L"broken.xml", "<R>\n<AppCategoryInfo");
    m_folder.Write(L"foreign.xml", "<R><Other/></R>");
    m_folder.Write(L"nameless.xml", "<R><AppCategoryInfo/></R>");
    m_folder.Write(L"empty.xml", "");
    m_folder.Write(L"plain.xml");
    const auto cases = ReadTable(L"commands.txt", {{L"RULES", Rules()}, {L"HERE", m_folder.path()}, {L"NONE", L""}});
    for (const auto& [expected, arguments] : cases) {
        const DWORD status = Run(arguments);
        EXPECT_EQ(std::to_string(status), expected.substr(0, 1)) << WideToUtf8(arguments);
        EXPECT_THAT(status == 0 ? m_out : m_err, HasSubstr((status == 0 ? "\n  " : "") + expected.substr(2)))
            << WideToUtf8(arguments);
        if (status == 0) continue;
        EXPECT_THAT(m_err, StartsWith("dsw: "));
        EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 1) << m_err;
        EXPECT_TRUE(m_out.empty() || m_out == "Installed version: 1\n") << m_out;
    }
    EXPECT_EQ(Run(L"--version"), 0U) << m_err;
    EXPECT_THAT(m_out, MatchesRegex("dsw \\d+\\.\\d+\\.\\d+\n"));
    EXPECT_EQ(Run(L"--version", "", GENERIC_READ), 1U) << "what cannot be written";
}

TEST_F(Dsw, ListsTheTreeWithThePathsToSelectBy) {
    const std::wstring names = m_folder.Write(L"names.xml", "<T><Dregsweep><S>Σύστημα</S></Dregsweep></T>");
    const std::wstring list = L"list " + Rules() + L"--text \"" + names + L"\" ";
    EXPECT_EQ(Run(list), 0U) << m_err;
    EXPECT_EQ(m_out,
              "[-] Σύστημα                  Système\n"
              "    [x] Da (present)         Système/Da\n"
              "        [x] 临时文件         Système/Da/临时文件\n"
              "    [ ] Fort (not present)   Système/Fort\n"
              "        [x] */<U+001B>Again  Système/Fort/--<U+001B>Again\n"
              "        [x] ?/<U+001B>again  Système/Fort/--<U+001B>again#2\n");
    // All boxes. What is off comes on only when it is named; an absent application stays selected.
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"--all --deselect */da", "-    xxxx"},
        {L"--deselect */da --all", "xxxxxxxxx"},
        {L"--select ΣΎΣΤΗΜΑ/fort/--<u+001b>again", "-xxx -xx "},
        {L"--select */临时文件", "xxxxx    "},
        {L"--only *#2", "-    -  x"},
        {L"--only s?st?me/d* --none --select *t", "-    xxxx"},
        {L"--deselect */临时文件/1 --only *#2 --only */1", "---x xxxx"},
    };
    for (const auto& [options, expected] : rows) {
        EXPECT_EQ(Run(list + L"--explain " + options), 0U) << m_err;
        std::string boxes;
        for (size_t at = 0; (at = m_out.find('[', at)) != m_out.npos; ++at)
            boxes += m_out[at + 1];
        EXPECT_EQ(boxes, expected) << WideToUtf8(options);
    }
}

TEST_F(Dsw, LooksWithoutDeletingAndWithoutControlCharacters) {
    m_folder.Write(L"junk\\ünter\\日本 \x202Eи.tmp", std::string(2000, 'x'));
    const std::wstring shown = m_folder / L"junk\\ünter\\日本 <U+202E>и.tmp";
    EXPECT_EQ(Run(L"clean --items --dry-run --allow C:\\ " + Rules()), 0U) << m_err;
    EXPECT_EQ(m_out, "Da: 临时文件\n    found  " + WideToUtf8(shown) + "  2000\n"
              "Found               items    actions        size            bytes\n"
              "  Système               1          0      1.9 KB            2,000\n"
              "    Da                  1          0      1.9 KB            2,000\n"
              "      临时文件          1          0      1.9 KB            2,000\n"
              "  Total                 1          0      1.9 KB            2,000\n"
              "Found 1 item, 1.9 KB (2,000 bytes).\nA dry run: nothing was deleted.\n");
    EXPECT_EQ(Run(L"gather --allow C:\\none --allow C:\\no " + Rules()), 0U);
    EXPECT_THAT(m_out, HasSubstr("\nFound 0 items, 0 bytes.\n"));
    EXPECT_EQ(Run(L"gather --none " + Rules()), 0U);
    EXPECT_THAT(m_err, StartsWith("dsw: nothing is selected"));
    for (const std::wstring command : {L"gather", L"clean --dry-run"}) {
        EXPECT_EQ(Run(command + L" --json --items " + Rules()), 0U) << m_err;
        const auto json = nlohmann::json::parse(m_out);
        EXPECT_EQ(json["command"].dump() + json["cleaned"].dump(),
                  command == L"gather" ? "\"gather\"false" : "\"clean\"false");
        EXPECT_EQ(json["categories"][0]["applications"][0]["garbageCategories"][0]["items"][0]["state"], "found");
    }
    EXPECT_TRUE(m_folder.Has(L"junk\\ünter\\日本 \x202Eи.tmp"));
}

TEST_F(Dsw, CleansOnlyAfterYesAndCountsOnlyWhatIsGone) {
    for (int i = 10; i <= 30; ++i)
        SetFileAttributesW(m_folder.Write(L"junk\\stays" + std::to_wstring(i), "12345").c_str(),
                           FILE_ATTRIBUTE_READONLY);
    const CHandle held(CreateFileW(m_folder.Write(L"junk\\held").c_str(), GENERIC_READ, 0, {}, OPEN_EXISTING, 0, {}));
    m_folder.Write(L"junk\\a");
    for (const char* answer : {"", "n\n", "yesterday\n"}) {
        EXPECT_EQ(Run(L"clean " + Rules(), answer), 3U) << answer;
        EXPECT_EQ(m_err, "dsw: nothing was deleted\n");
        EXPECT_TRUE(m_folder.Has(L"junk\\a")) << answer;
    }
    for (const char* answer : {"Yes\r\n", "y"}) {
        m_folder.Write(L"junk\\a", std::string(1500, 'x'));
        EXPECT_EQ(Run(L"clean --items " + Rules(), answer), 0U);
        EXPECT_TRUE(!m_folder.Has(L"junk\\a") && m_folder.Has(L"junk\\stays10"));
    }
    const std::string junk = WideToUtf8(m_folder / L"junk\\");
    EXPECT_THAT(
        m_out,
        AllOf(HasSubstr("    found  " + junk + "a  1500\n"), HasSubstr("    deleted  " + junk + "a  1500\n"),
              HasSubstr(" [y/N] \nDa: "), HasSubstr("\nIn use by another program:\n  " + junk + "held\nRefused"),
              HasSubstr("stays29\n  and 1 item more; --json lists them all\nFreed 1.4 KB (1,500 bytes) in 1 item; "
                        "not deleted: 22 items, 106 bytes: 1 in use, 21 refused.\n")));
}

TEST_F(Dsw, ReportsAsDeletedExactlyWhatVanished) {
    m_folder.Write(L"junk\\a", std::string(1500, 'x'));
    m_folder.Write(L"junk\\ünter\\日本\x202E.tmp", "123");
    m_folder.Write(L"junk\\empty", "");
    SetFileAttributesW(m_folder.Write(L"junk\\fixed", "12345").c_str(), FILE_ATTRIBUTE_READONLY);
    const CHandle held(CreateFileW(m_folder.Write(L"junk\\held").c_str(), GENERIC_READ, 0, {}, OPEN_EXISTING, 0, {}));
    EXPECT_EQ(Run(L"clean --yes --json --items --select */fort " + Rules()), 0U) << m_err;
    auto json = nlohmann::json::parse(m_out);
    std::map<std::string, std::string> items;
    for (auto& app : json["categories"][0]["applications"]) {
        EXPECT_EQ(app["path"], "Système/" + app["name"].get<std::string>());
        for (const auto& item : app["garbageCategories"][0]["items"])
            items[item["path"]] += item["state"].get<std::string>() + item["bytes"].dump() + " ";
        app = app["garbageCategories"][0]["name"];
    }
    const std::string junk = WideToUtf8(m_folder / L"junk\\");
    // The second rule found the same files, but for those in folders below.
    EXPECT_EQ(items, (std::map<std::string, std::string>{{junk + "a", "deleted1500 gone1500 "},
                                                         {junk + "empty", "deleted0 gone0 "},
                                                         {junk + "fixed", "refused5 refused5 "},
                                                         {junk + "held", "in use1 in use1 "},
                                                         {junk + "ünter\\日本\u202E.tmp", "deleted3 "}}));
    for (const auto& [path, became] : items)
        EXPECT_EQ(GetFileAttributesW(Utf8ToWide(path).c_str()) == INVALID_FILE_ATTRIBUTES, became[0] == 'd') << path;
    const std::string amounts =
        R"("deleted":{"bytes":1503,"count":3},"found":{"bytes":3015,"count":9},"left":{"bytes":1512,"count":6})";
    EXPECT_EQ(json.dump(), R"({"categories":[{"applications":["临时文件","*/\u001bAgain"],)" + amounts
                               + R"(,"name":"Système","path":"Système"}],"cleaned":true,"command":"clean",)" + amounts
                               + R"(,"outcome":"done"})");
}

TEST_F(Dsw, CountsAShellFolderByWhatWasFoundInIt) {
    const CEngineModule module;
    const IatPatch noPath(GetModuleHandleW(L"Dregsweep.dll"), nullptr, "SHGetFolderPathW",
                          reinterpret_cast<const void*>(RefusePath));
    wchar_t recent[MAX_PATH] = {};
    ASSERT_TRUE(noPath.ok() && SUCCEEDED(SHGetFolderPathW({}, CSIDL_RECENT, {}, 0, recent)));
    const std::wstring rules =
        m_folder.Write(L"rules.xml",
                       "<R><AppCategoryInfo Name='C' SelState='2'><AppInfo Name='A'><GarbageCatagory Name='G'>"
                       "<GarbageInfo FolderIndex='8'/><GarbageInfo FolderEnvDir='DSW_TEST' Path='junk' IsFolder='1'/>"
                       "</GarbageCatagory></AppInfo></AppCategoryInfo></R>");
    const std::pair<std::vector<const wchar_t*>, const char*> rows[] = {
        {{}, "Freed 3 bytes in 1 item; not deleted: 0 items, 0 bytes."},
        {{L"\\1", L"\\2"}, "Freed 3 bytes in 1 item; not deleted: 2 items, 10 bytes: 2 refused."},
        {{L"\\1"}, "Refused (read-only, access rights, or an unusable name):\n  (all of C/A/G)\n"},
    };
    for (const auto& [names, summary] : rows) {
        m_folder.Write(L"junk\\a", "123");
        for (const wchar_t* name : names)
            CopyFileW(m_folder.Write(L"five", "12345").c_str(), (std::wstring(recent) + name).c_str(), FALSE);
        CLI::App app;
        CommandAction action;
        AddCleanCommand(app, action, /*upgradeMode=*/false);
        app.parse(std::vector<std::string>{WideToUtf8(rules), "--rules", "--yes", "clean"});
        EXPECT_THAT(Written([&](CConsole& console) { EXPECT_EQ(action(console), ExitStatus::Done); }),
                    HasSubstr(summary));
        for (const wchar_t* name : names)
            EXPECT_TRUE(DeleteFileW((std::wstring(recent) + name).c_str()));
    }
}

TEST_F(Dsw, StopsARunAtTheNextNotification) {
    m_folder.Write(L"junk\\a");
    CConsole console;
    const CCancel cancel;
    EngineOptions options;
    options.rules = WriteRules();
    const CEngine engine(options);
    CRunView view(console, cancel, /*listItems=*/false);
    CRunObserver observer(*engine, view);
    EXPECT_TRUE(CCancel::Request());
    EXPECT_EQ(view.Finish(observer.Run(&IDregsweep::Gather)), ExitStatus::Stopped);
    EXPECT_EQ(engine->GetTotalCount(), 0U);
    EXPECT_FALSE(CCancel::Request()) << "a second one may end the process at once";
    EXPECT_FALSE(CCancel().Requested());
}

TEST_F(Dsw, UpdatesOnlyToANewerVersion) {
    const CEngineModule module;
    const HMODULE dll = GetModuleHandleW(L"Dregsweep.dll");
    const IatPatch seek(dll, nullptr, "InternetSetFilePointer", reinterpret_cast<const void*>(TellSize));
    const IatPatch open(dll, nullptr, "InternetOpenW", reinterpret_cast<const void*>(OpenUnlessAsync));
    ASSERT_TRUE(seek.ok() && open.ok());
    LoopbackHttp server;
    server.Serve("/v", {"7\n"});
    server.Serve("/list.txt", {"rules.xml\r\n"});
    server.Serve("/rules.xml", {"<R/>"});
    m_folder.Write(L"rules.xml", "old");
    UpdateOptions options = {WideToUtf8(server.Url(L"/list.txt")), WideToUtf8(m_folder.path()),
                             WideToUtf8(server.Url(L"/v"))};
    const auto update = [&](CConsole& console) { EXPECT_EQ(RunUpdate(options, console), ExitStatus::Done); };
    const std::string fetched = "  rules.xml  4 bytes\nFetched 1 item, 4 bytes, into " + options.folder + ".\n";
    EXPECT_EQ(Written(update), "Installed version: 1\nPublished version: 7\n" + fetched);
    EXPECT_EQ(ReadFileBytes(m_folder / L"rules.xml"), "<R/>");
    EXPECT_EQ(server.TakeRequests(), " /v /list.txt /rules.xml");
    EXPECT_EQ(Written(update), "Installed version: 7\nPublished version: 7\nUp to date, nothing was fetched.\n");
    EXPECT_EQ(server.TakeRequests(), " /v");
    server.Serve("/v", {"<html>"});
    EXPECT_THROW(Written(update), CHostError) << "no number";
    options.versionUrl = "";
    EXPECT_EQ(Written(update), "Installed version: 7\n" + fetched);
    server.Serve("/list.txt", {""});
    EXPECT_THROW(Written(update), CHostError) << "a list without names";
    EXPECT_EQ(server.TakeRequests(), " /v /list.txt /rules.xml /list.txt");
}
