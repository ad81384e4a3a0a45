#include "update/rulefilelist.h"

#include "sysservices/filesearch.h"
#include "sysservices/handle.h"
#include "tests/update/updatefixture.h"

using namespace InternetFileResult;
using testing::EndsWith;

namespace {

class RuleFileList : public UpdateTest {
protected:
    RuleFileList() {
        EXPECT_EQ(m_update->Init(), kSuccess);
        for (const char* name : {"a", "b", "c"})
            m_server.Serve(std::string("/") + name, {std::string("new ") + name});
        m_server.Serve("/gone", {.body = "", .hasLength = false});
    }
    // Replaces the files, with this list, in a folder where a and b are old and b may be held open.
    uint32_t Replace(const std::string& list, bool inUse = false) {
        for (const wchar_t* name : {L"a_bak", L"b_bak", L"c", L"c_bak"})
            DeleteFileW((m_rules + L"\\" + name).c_str());
        m_folder.Write(L"rules\\a", "old a");
        const std::wstring b = m_folder.Write(L"rules\\b", "old b");
        const CHandle held(inUse ? CreateFileW(b.c_str(), GENERIC_READ, 3, nullptr, OPEN_EXISTING, 0, nullptr)
                                 : nullptr);
        m_server.Serve("/list", {list});
        m_server.TakeRequests();
        return m_update->GetFileListFromURL(m_server.Url(L"/list").c_str(), m_rules.c_str());
    }
    // Everything in the folder but the list, as "name=content; ".
    static std::string Files(const std::wstring& folder) {
        std::string files;
        for (CFileSearch search((folder + L"\\*").c_str()); search; search.Next()) {
            const CString name = search.Entry().cFileName;
            if (name == L"." || name == L".." || name == L"list") continue;
            const bool isFolder = search.Entry().dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
            files += WideToUtf8(name) + "=" + (isFolder ? "folder" : ReadFileBytes(folder + L"\\" + name)) + "; ";
        }
        return files;
    }

    const std::wstring m_rules = m_folder.MakeFolder(L"rules");
};

}  // namespace

TEST_F(RuleFileList, ReadsNames) {
    using Names = std::vector<CString>;
    const std::pair<std::string, Names> rows[] = {{"\xEF\xBB\xBF\x61\r\n\r\nb\n\n\rc", {L"a", L"b", L"c"}},
                                                  {"\xEF\xBF\xBE\x61", {L"a"}},
                                                  {" a \n\t\nb", {L" a ", L"\t", L"b"}},
                                                  {"\xE4\xBD\xA0.xml", {L"\x4F60.xml"}},
                                                  {std::string("a\0b", 3), {L"a"}},
                                                  {"", {}},
                                                  {"\xEF\xBB\xBF", {}},
                                                  {"a" + std::string(20478, '\n'), {L"a"}},
                                                  {"a" + std::string(20479, '\n'), {}}};
    for (const auto& [bytes, names] : rows)
        EXPECT_EQ(ReadRuleFileList(m_folder.Write(L"list", bytes)), names) << bytes.substr(0, 20);
    EXPECT_EQ(ReadRuleFileList(m_folder / L"missing"), Names());
}

TEST_F(RuleFileList, ReplacesTheSetOrStops) {
    const struct {
        const char* list;
        uint32_t result;
        const char* files;
        const char* requests;
        bool inUse = false;
    } rows[] = {
        {"a\r\nb\nc\n", kSuccess, "a=new a; b=new b; c=new c; ", " /list /a /b /c"},
        {"a\ngone\nb", kFileSizeUnknown, "a=old a; a_bak=new a; b=old b; ", " /list /a /gone /gone"},
        {"a\na\nb", kListRenameFailed, "b=old b; b_bak=new b; ", " /list /a /a /b"},
        {"a\nb\nc", kListRenameFailed, "a=new a; b=old b; b_bak=new b; c_bak=new c; ", " /list /a /b /c", true},
        {"\n", kSuccess, "a=old a; b=old b; ", " /list"},
    };
    Replace("a\na");
    EXPECT_THAT(Traced(), EndsWith("|Rename file in GetFileListFromURL fail,a,2|GetFileListFromURL fail,"
                                   + WideToUtf8(m_server.Url(L"/list")) + ",0x1b30001|"));
    for (const auto& row : rows) {
        EXPECT_EQ(Replace(row.list, row.inUse), row.result);
        EXPECT_EQ(Files(m_rules), row.files);
        EXPECT_EQ(m_server.TakeRequests(), row.requests);
    }
}

TEST_F(RuleFileList, HostileNamesStopTheDownloads) {
    for (const char* name : {"\\x", "/x", "C:x", "x:y", "..", "../x", "..\\x", "x\\..\\y", "x/..", "... ", ".. /x"}) {
        EXPECT_EQ(Replace(std::string("a\n") + name + "\nb"), kFileFailed) << name;
        EXPECT_EQ(Files(m_rules), "a=old a; a_bak=new a; b=old b; ") << name;
        EXPECT_EQ(Files(m_folder.path()), "rules=folder; ") << name;
        EXPECT_EQ(m_server.TakeRequests(), " /list /a") << name;
    }
    EXPECT_FALSE(IsSafeRuleFileName(L""));
    for (const wchar_t* name : {L"a..b", L"..a", L"a..", L".a", L"sub\\a", L"sub/a", L"./a", L"a b"})
        EXPECT_TRUE(IsSafeRuleFileName(name)) << WideToUtf8(name);
}
