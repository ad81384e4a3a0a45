#include <string_view>

#include "tests/support/allocguard.h"
#include "tests/support/tracerecorder.h"
#include "tests/update/updatefixture.h"

using namespace InternetFileResult;
using testing::ElementsAreArray;

namespace {

std::string Body(size_t size) {
    std::string body(size, '\0');
    for (size_t at = 0; at < size; ++at)
        body[at] = static_cast<char>('!' + at * 31 % 89);
    return body;
}

std::wstring Replace(std::wstring text, std::wstring_view from, std::wstring_view to) {
    for (size_t at = 0; (at = text.find(from, at)) != std::wstring::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

enum class Operation { kFile, kBuf, kStream };
constexpr Operation kOperations[] = {Operation::kFile, Operation::kBuf, Operation::kStream};

const wchar_t* Name(Operation operation) {
    const wchar_t* names[] = {L"GetFileFromURL", L"GetFileBufFromURL", L"GetStreamFileInfo"};
    return names[static_cast<int>(operation)];
}

// "@U" stands for the address, "@R" for the row, "@O" for the operation.
std::vector<std::wstring> Traces(std::vector<std::wstring> lines, const std::wstring& url, const wchar_t* row,
                                 const wchar_t* operation) {
    for (std::wstring& line : lines)
        line = L"[InternetFileProc] " + Replace(Replace(Replace(line, L"@U", url), L"@R", row), L"@O", operation);
    return lines;
}

class DownloadTest : public UpdateTest {
protected:
    DownloadTest() { EXPECT_EQ(m_update->Init(), kSuccess); }

    uint32_t Run(Operation operation, const std::wstring& url) {
        if (operation == Operation::kFile) return m_update->GetFileFromURL(url.c_str(), m_path.c_str());
        if (operation == Operation::kBuf) return m_update->GetFileBufFromURL(url.c_str(), m_sink.get());
        return m_update->GetStreamFileInfo(url.c_str(), &m_text);
    }
    // What the operation delivered; nothing is left over from an earlier one.
    std::string Delivered(Operation operation) {
        if (operation == Operation::kBuf) return m_sink->m_bytes;
        if (operation == Operation::kStream) return WideToUtf8(m_text);
        return m_folder.Has(L"file") ? ReadFileBytes(m_path) : "";
    }
    void Forget() {
        DeleteFileW(m_path.c_str());
        m_sink = CReference<RecordingSink>(new RecordingSink);
        m_text[0] = L'\0';
        g_faults = {.executable = g_faults.executable};
        TakeTraceLines();
    }

    const std::wstring m_path = m_folder / L"file";
    CReference<RecordingSink> m_sink{new RecordingSink};
    StreamText m_text = {};
};

}  // namespace

TEST_F(DownloadTest, BodiesArriveByteForByte) {
    for (const size_t size : std::initializer_list<size_t>{0, 1, 400, 401, 10239, 10240, 10241, 100'000, 30 << 20}) {
        const std::string body = Body(size);
        m_server.Serve("/body", {body});
        const std::wstring url = m_server.Url(L"/body");
        for (const Operation operation : kOperations) {
            const bool refused = operation == Operation::kStream && size > 400;
            // The announcement is enough to be refused, and the server need not wait for a client that left.
            if (refused) m_server.Serve("/body", {body.substr(0, 300), size});
            EXPECT_EQ(Run(operation, url), refused ? kStreamTooLarge : kSuccess) << size;
            EXPECT_TRUE(Delivered(operation) == (refused ? "" : body)) << size << " through " << Name(operation);
        }
        EXPECT_EQ(m_sink->m_announced, size);
        EXPECT_EQ(m_sink->m_calls.back(), 'C');
        EXPECT_EQ(m_sink->m_calls.find('D') == std::string::npos, size == 0);
        Forget();
    }
}

TEST_F(DownloadTest, ServersThatMisbehave) {
    const struct {
        const char* what;
        LoopbackHttp::Page page;
        uint32_t results[3];
        std::string delivered = "";
        DWORD size = 0;
    } rows[] = {
        {"more than announced", {Body(50), 20}, {kSuccess, kSuccess, kSuccess}, Body(50)},
        {"far more than announced", {Body(401), 20}, {kSuccess, kSuccess, kStreamTooLarge}, Body(401)},
        {"fewer than announced", {Body(50), 90}, {kSuccess, kSuccess, kSuccess}, Body(50)},
        {"no length", {.body = Body(50), .hasLength = false}, {kFileSizeUnknown, kBufSizeUnknown, kStreamSizeUnknown}},
        {"slow", {.body = Body(300), .piece = 7}, {kSuccess, kSuccess, kSuccess}},
        {"hangs up", {.body = "", .hangsUp = true}, {kFileSizeUnknown, kBufSizeUnknown, kStreamSizeUnknown}},
        {"a lie about the size", {Body(401)}, {kSuccess, kSuccess, kStreamTooLarge}, Body(401), 3},
        {"UTF-8", {"\xE4\xBD\xA0\xC3\xA9"}, {kSuccess, kSuccess, kSuccess}, "\xE4\xBD\xA0\xC3\xA9"},
        {"another lie", {Body(40)}, {kSuccess, kSuccess, kStreamTooLarge}, Body(40), 0x7FFFFFFF},
    };
    for (const auto& row : rows) {
        m_server.Serve("/page", row.page);
        for (const Operation operation : kOperations) {
            g_faults.size = row.size;
            const uint32_t expected = row.results[static_cast<int>(operation)];
            EXPECT_EQ(Run(operation, m_server.Url(L"/page")), expected) << row.what << " through " << Name(operation);
            // A short read ends a resource, so a slow one may arrive cut; what arrives is its beginning.
            if (row.page.piece != std::string::npos)
                EXPECT_TRUE(row.page.body.starts_with(Delivered(operation)));
            else
                EXPECT_EQ(Delivered(operation), expected == kSuccess ? row.delivered : "") << row.what;
            Forget();
        }
    }
}

TEST_F(DownloadTest, EveryFailureTellsItsCodeAndLines) {
    const std::wstring size = L"InternetSetFilePointer ret 0x5,@U,0";
    const std::wstring available = L"InternetQueryDataAvailable success,@R,@U,5";
    const struct {
        const char* path;
        void (*arrange)();
        std::vector<std::wstring> linesOfRow;
        const wchar_t* codes[3];
    } rows[] = {
        {nullptr, [] {}, {L"InternetOpenUrl fail,@R,@U,12029"}, {L"0x990001", L"0xec0001", L"0x1430001"}},
        {"/nolength",
         [] {},
         {L"InternetSetFilePointer ret 0xffffffff,@U,12016"},
         {L"0xa70002", L"0xfb0002", L"0x1520002"}},
        {"/five",
         [] { g_faults.noAvailable = true; },
         {size, L"InternetQueryDataAvailable fail,@R,@U,12031"},
         {L"0x990001", L"0xec0001", L"0x1430001"}},
        {"/five",
         [] { g_faults.firstFailingRead = 1; },
         {size, available, L"InternetReadFile fail,@R,@U,12031"},
         {L"0x990001", L"0xec0001", L"0x1430001"}},
    };
    m_server.Serve("/five", {"12345"});
    m_server.Serve("/nolength", {.body = "12345", .hasLength = false});
    for (const auto& row : rows) {
        const std::wstring url = row.path ? m_server.Url(Utf8ToWide(row.path)) : L"http://127.0.0.1:9/";
        for (const Operation operation : kOperations) {
            const auto at = static_cast<size_t>(operation);
            Forget();
            row.arrange();
            std::vector<std::wstring> lines = Traces(row.linesOfRow, url, L"1", Name(operation));
            for (const auto& line : Traces(row.linesOfRow, url, L"2", Name(operation)))
                lines.push_back(line);
            lines.push_back(Traces({L"@O fail,@U,"}, url, L"", Name(operation))[0] + row.codes[at]);
            EXPECT_EQ(Run(operation, url), std::wcstoul(row.codes[at], nullptr, 16));
            EXPECT_THAT(TakeTraceLines(), ElementsAreArray(lines));
            EXPECT_EQ(Delivered(operation).size(), 0u);
        }
    }
    for (const Operation operation : kOperations) {
        Forget();
        const std::wstring url = m_server.Url(L"/five");
        // The sink's success line names the file operation.
        const Operation named = operation == Operation::kBuf ? Operation::kFile : operation;
        EXPECT_EQ(Run(operation, url), kSuccess);
        EXPECT_THAT(TakeTraceLines(),
                    ElementsAreArray(Traces({size, available, L"@O success,@R,@U"}, url, L"1", Name(named))));
    }
}

TEST_F(DownloadTest, RowsAreTriedUntilOneDelivers) {
    m_server.Serve("/five", {"12345"});
    g_faults.firstFailingRead = g_faults.lastFailingRead = 2;
    EXPECT_EQ(Run(Operation::kFile, m_server.Url(L"/five")), kSuccess);
    EXPECT_EQ(ReadFileBytes(m_path), "12345");

    // The code of the first row stands when the second fails without one.
    Forget();
    m_server.Serve("/page", {Body(401)});
    g_faults.firstFailingRead = 2;
    g_faults.size = 3;
    EXPECT_EQ(Run(Operation::kStream, m_server.Url(L"/page")), kStreamTooLarge);

    // The first row of all is asynchronous: here it answers "pending", and the next one delivers.
    m_update->Uninit();
    Forget();
    g_faults.asyncRow = true;
    ASSERT_EQ(m_update->Init(), kSuccess);
    TakeTraceLines();
    EXPECT_EQ(Run(Operation::kFile, m_server.Url(L"/five")), kSuccess);
    EXPECT_EQ(TakeTraceLines().front(),
              L"[InternetFileProc] InternetOpenUrl fail,0," + m_server.Url(L"/five") + L",997");
    EXPECT_EQ(ReadFileBytes(m_path), "12345");
}

TEST_F(DownloadTest, WhatStaysOfAnOlderFile) {
    m_server.Serve("/five", {"12345"});
    m_server.Serve("/nolength", {.body = "12345", .hasLength = false});
    m_folder.Write(L"file", "old");
    EXPECT_EQ(Run(Operation::kFile, m_server.Url(L"/nolength")), kFileSizeUnknown);
    EXPECT_EQ(ReadFileBytes(m_path), "old");
    g_faults.firstFailingRead = 2;
    EXPECT_EQ(Run(Operation::kFile, m_server.Url(L"/five")), kFileFailed);
    EXPECT_FALSE(m_folder.Has(L"file"));

    m_folder.MakeFolder(L"file");
    TakeTraceLines();
    const std::wstring url = m_server.Url(L"/five");
    EXPECT_EQ(Run(Operation::kFile, url), kFileFailed);
    EXPECT_EQ(TakeTraceLines()[2], L"[InternetFileProc] CreateFile fail,1," + url + L",5");
    EXPECT_TRUE(m_folder.Has(L"file"));
}

TEST_F(DownloadTest, SinksDecide) {
    const struct {
        uint32_t result;
        const char* calls;
        int cancelAt = 0;
        bool refuses = false;
        char throwsIn = 0;
        int failingRead = 0;
        bool zeroAvailable = false;
    } rows[] = {
        {kSuccess, "B?D?C"},
        {.result = kSinkCancelled, .calls = "B?", .cancelAt = 1},
        {.result = kSinkCancelled, .calls = "B?D?", .cancelAt = 2},
        {.result = kSinkRefused, .calls = "B?D", .refuses = true},
        {.result = kSuccess, .calls = "B?D?B?D?C", .failingRead = 2},
        {.result = kSuccess, .calls = "B?DC", .zeroAvailable = true},
        {.result = kSinkRefused, .calls = "B", .throwsIn = 'B'},
        {.result = kSinkRefused, .calls = "B?", .throwsIn = '?'},
        {.result = kSinkRefused, .calls = "B?D", .throwsIn = 'D'},
        {.result = kSinkRefused, .calls = "B?D?C", .throwsIn = 'C'},
    };
    m_server.Serve("/five", {"12345"});
    for (const auto& row : rows) {
        Forget();
        m_sink->m_cancelAt = row.cancelAt;
        m_sink->m_refuses = row.refuses;
        m_sink->m_throwsIn = row.throwsIn;
        g_faults.firstFailingRead = g_faults.lastFailingRead = row.failingRead;
        g_faults.zeroAvailable = row.zeroAvailable;
        EXPECT_EQ(Run(Operation::kBuf, m_server.Url(L"/five")), row.result) << row.calls;
        EXPECT_EQ(m_sink->m_calls, row.calls);
        EXPECT_TRUE(row.result != kSuccess || m_sink->m_bytes == "12345");
        // Nobody but the test holds a reference.
        m_sink->AddRef();
        EXPECT_EQ(m_sink->Release(), 1u);
    }
}

TEST_F(DownloadTest, HandlesAndMemoryStayLevel) {
    m_server.Serve("/body", {Body(20'000)});
    const auto download = [&](int times) {
        for (; times > 0; --times) {
            EXPECT_EQ(Run(Operation::kFile, m_server.Url(L"/body")), kSuccess);
            EXPECT_EQ(Run(Operation::kBuf, m_server.Url(L"/body")), kSuccess);
            TakeTraceLines();
            m_sink = CReference<RecordingSink>(new RecordingSink);
        }
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        return handles;
    };
    const DWORD handles = download(5);
    const long long blocks = alloc_guard::Live();
    EXPECT_LE(download(100), handles + 5);
    // Only the server's list of requests grows.
    EXPECT_LE(alloc_guard::Live(), blocks + 210);
}
