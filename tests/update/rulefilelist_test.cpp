#include "update/rulefilelist.h"

#include <algorithm>

#include "tests/support/tracerecorder.h"
#include "tests/update/updatefixture.h"
#include "update/filehandle.h"

using namespace InternetFileResult;
using testing::ElementsAre;

namespace {

class RuleFileListTest : public UpdateTest {
protected:
    RuleFileListTest() {
        EXPECT_EQ(m_update->Init(), kSuccess);
        for (const char* name : {"a.xml", "b.xml", "c.xml", "sub/d.xml"})
            m_server.Serve(std::string("/rules/") + name, {std::string("new ") + name});
        m_server.Serve("/rules/gone.xml", {.body = "", .hasLength = false});
    }
    // Replaces the files, with this list, in a folder where a.xml and b.xml are old.
    uint32_t Replace(const std::string& list) {
        for (const wchar_t* name : {L"c.xml", L"a.xml_bak", L"b.xml_bak", L"c.xml_bak"})
            DeleteFileW((m_folder / name).c_str());
        m_folder.Write(L"a.xml", "old a");
        m_folder.Write(L"b.xml", "old b");
        m_server.Serve("/rules/list.txt", {list});
        TakeTraceLines();
        return m_update->GetFileListFromURL(m_server.Url(L"/rules/list.txt").c_str(), m_folder.path().c_str());
    }
    // The rule files in the folder as "name=content; ".
    std::string Files() const {
        std::string files;
        for (const wchar_t* name : {L"a.xml", L"a.xml_bak", L"b.xml", L"b.xml_bak", L"c.xml", L"c.xml_bak"}) {
            if (m_folder.Has(name)) files += WideToUtf8(name) + "=" + ReadFileBytes(m_folder / name) + "; ";
        }
        return files;
    }
};

}  // namespace

TEST_F(RuleFileListTest, ReadsNames) {
    using Names = std::vector<CString>;
    const std::pair<std::string, Names> rows[] = {
        {"\xEF\xBB\xBF"
         "a\r\n\r\nb\n\n\rc",
         {L"a", L"b", L"c"}},
        {"\xEF\xBF\xBE"
         "a",
         {L"a"}},
        {" a \n\t\nb", {L" a ", L"\t", L"b"}},
        {"\xE4\xBD\xA0.xml", {L"\x4F60.xml"}},
        {std::string("a\0b", 3), {L"a"}},
        {"", {}},
        {"\xEF\xBB\xBF", {}},
        {"a" + std::string(20478, '\n'), {L"a"}},
        {"a" + std::string(20479, '\n'), {}},
    };
    for (const auto& [bytes, names] : rows)
        EXPECT_EQ(ReadRuleFileList(m_folder.Write(L"list.txt", bytes)), names) << bytes.substr(0, 20);
    EXPECT_EQ(ReadRuleFileList(m_folder / L"missing"), Names());
}

TEST_F(RuleFileListTest, NamesStayInTheFolder) {
    for (const wchar_t* name :
         {L"", L"\\a", L"/a", L"C:a", L"a:stream", L"..", L"../a", L"a\\..\\b", L"a/..", L"... ", L".. /a"})
        EXPECT_FALSE(IsSafeRuleFileName(name)) << WideToUtf8(name);
    for (const wchar_t* name : {L"a", L"a..b", L"..a", L"a..", L".a", L"sub\\a", L"sub/a", L"./a", L"a b"})
        EXPECT_TRUE(IsSafeRuleFileName(name)) << WideToUtf8(name);
}

TEST_F(RuleFileListTest, ReplacesTheSetOrStops) {
    const struct {
        std::string list;
        uint32_t result;
        const char* files;
    } rows[] = {
        {"\xEF\xBB\xBF"
         "a.xml\r\n\r\nb.xml\nc.xml\n",
         kSuccess, "a.xml=new a.xml; b.xml=new b.xml; c.xml=new c.xml; "},
        {"a.xml\ngone.xml\nb.xml", kFileSizeUnknown, "a.xml=old a; a.xml_bak=new a.xml; b.xml=old b; "},
        {"a.xml\n..\\b.xml\nb.xml", kFileFailed, "a.xml=old a; a.xml_bak=new a.xml; b.xml=old b; "},
        {"a.xml\na.xml\nb.xml", kListRenameFailed, "b.xml=old b; b.xml_bak=new b.xml; "},
        {"a.xml" + std::string(20475, '\n'), kSuccess, "a.xml=old a; b.xml=old b; "},
        {"a.xml" + std::string(20474, '\n'), kSuccess, "a.xml=new a.xml; b.xml=old b; "},
        {"", kSuccess, "a.xml=old a; b.xml=old b; "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Replace(row.list), row.result) << row.list.substr(0, 30);
        EXPECT_EQ(Files(), row.files) << row.list.substr(0, 30);
    }
    const std::pair<std::wstring, uint32_t> lists[] = {{L"list.txt", kListNotReady},
                                                       {L"http://127.0.0.1:9/list.txt", kFileFailed},
                                                       {m_server.Url(L"/rules/gone.xml"), kFileSizeUnknown}};
    for (const auto& [url, result] : lists)
        EXPECT_EQ(m_update->GetFileListFromURL(url.c_str(), m_folder.path().c_str()), result);
    const auto requests = m_server.Requests();
    EXPECT_TRUE(std::ranges::none_of(requests, [](const auto& path) { return path.find("..") != path.npos; }));
    m_folder.MakeFolder(L"sub");
    EXPECT_EQ(Replace("sub/d.xml"), kSuccess);
    EXPECT_EQ(ReadFileBytes(m_folder / L"sub\\d.xml"), "new sub/d.xml");
}

TEST_F(RuleFileListTest, ATargetInUseEndsTheReplacement) {
    const CFileHandle held =
        AdoptFile(CreateFileW(m_folder.Write(L"b.xml", "old b").c_str(), GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    EXPECT_EQ(Replace("a.xml\nb.xml\nc.xml"), kListRenameFailed);
    EXPECT_EQ(Files(), "a.xml=new a.xml; b.xml=old b; b.xml_bak=new b.xml; c.xml_bak=new c.xml; ");
    const auto lines = TakeTraceLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_THAT(
        std::vector(lines.end() - 2, lines.end()),
        ElementsAre(L"[InternetFileProc] Rename file in GetFileListFromURL fail,b.xml,183",
                    L"[InternetFileProc] GetFileListFromURL fail," + m_server.Url(L"/rules/list.txt") + L",0x1b30001"));
}
