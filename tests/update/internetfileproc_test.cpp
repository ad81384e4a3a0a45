#include <array>
#include <cctype>
#include <map>

#include "tests/update/updatefixture.h"

using namespace InternetFileResult;

namespace {

enum Operation : size_t { kFile, kBuf, kStream, kList, kOperations };
constexpr std::array<const char*, kOperations> kNames = {"GetFileFromURL", "GetFileBufFromURL", "GetStreamFileInfo",
                                                         "GetFileListFromURL"};
using Codes = std::array<uint32_t, kOperations>;
constexpr uint32_t kSkip = 1;  // in place of a code: not run through this operation

constexpr Codes kNotReady = {kFileNotReady, kBufNotReady, kStreamNotReady, kListNotReady};
constexpr Codes kFailed = {kFileFailed, kBufFailed, kStreamFailed, kFileFailed};
constexpr Codes kSizeUnknown = {kFileSizeUnknown, kBufSizeUnknown, kStreamSizeUnknown, kFileSizeUnknown};
constexpr Codes kTooLarge = {0, 0, kStreamTooLarge, 0};
constexpr Codes kArrives = {0, 0, 0, kSkip};  // what arrives is no list
constexpr Codes kCancelled = {kSkip, kSinkCancelled, kSkip, kSkip};
constexpr Codes kRefused = {kSkip, kSinkRefused, kSkip, kSkip};

std::string Body(size_t size) {
    std::string body(size, '\0');
    for (size_t at = 0; at < size; ++at)
        body[at] = static_cast<char>('!' + at * 31 % 89);
    return body;
}

std::string FailLine(size_t operation, const std::string& url, uint32_t code) {
    char hex[16];
    snprintf(hex, sizeof hex, ",0x%x|", code);
    return kNames[operation] + (" fail," + url + hex);
}

// The trace lines of a download: "1SA+" stands for those of row 1 that learned the size, then what is available, and
// came to its end. What failed ends with its code.
std::string Lines(const char* script, size_t operation, uint32_t code) {
    // The sink's success line names the file operation.
    const std::string success = std::string(kNames[operation == kStream ? kStream : kFile]) + " success,#,@|";
    const std::map<char, std::string> templates = {{'U', "InternetOpenUrl fail,#,@,12029|"},
                                                   {'u', "InternetOpenUrl fail,#,@,997|"},
                                                   {'N', "InternetSetFilePointer ret 0xffffffff,@,0|"},
                                                   {'S', "InternetSetFilePointer ret 0x5,@,0|"},
                                                   {'L', "InternetSetFilePointer ret 0x191,@,0|"},
                                                   {'A', "InternetQueryDataAvailable success,#,@,5|"},
                                                   {'Z', "InternetQueryDataAvailable success,#,@,0|"},
                                                   {'a', "InternetQueryDataAvailable fail,#,@,12031|"},
                                                   {'C', "CreateFile fail,#,@,5|"},
                                                   {'R', "InternetReadFile fail,#,@,12031|"},
                                                   {'+', success}};
    std::string lines;
    for (char row = '0'; *script; ++script) {
        if (std::isdigit(*script)) row = *script;
        if (!std::isdigit(*script)) lines += templates.at(*script);
        std::replace(lines.begin(), lines.end(), '#', row);
    }
    if (code != kSuccess && operation == kList) lines += FailLine(kFile, "@", code);
    return code == kSuccess ? lines : lines + FailLine(operation, "@", code);
}

// Keeps what it was told: "B" OnBegin, "?" IsCancelled, "D" OnData, "C" OnComplete.
class RecordingSink : public IInternetDataSink {
public:
    void OnBegin(uint32_t totalSize) override { Note('B'), m_announced = totalSize, m_bytes.clear(); }
    uint32_t IsCancelled() override { return Note('?'); }
    uint32_t OnData(const uint8_t* bytes, uint32_t length) override {
        m_bytes.append(bytes, bytes + length);
        return Note('D');
    }
    void OnComplete() override { Note('C'); }

    std::string m_calls;
    std::string m_bytes;
    uint32_t m_announced = 0;

private:
    bool Note(char call) {
        m_calls += call;
        const int number = static_cast<int>(m_calls.size());
        if (number == g_faults.sinkThrows) throw call;
        return number == g_faults.sinkStops;
    }
};

class DownloadTest : public UpdateTest {
protected:
    DownloadTest() {
        EXPECT_EQ(m_update->Init(), kSuccess);
        m_server.Serve("/list", {"file"});
        m_server.Serve("/file", {"12345"});
        TakeTraceLines();
    }
    uint32_t Call(size_t operation, const wchar_t* url, bool output = true) {
        if (operation == kFile) return m_update->GetFileFromURL(url, output ? m_path.c_str() : nullptr);
        if (operation == kBuf) return m_update->GetFileBufFromURL(url, output ? m_sink.get() : nullptr);
        if (operation == kStream) return m_update->GetStreamFileInfo(url, output ? &m_text : nullptr);
        return m_update->GetFileListFromURL(url, output ? m_folder.path().c_str() : nullptr);
    }
    // Starts without anything delivered; the file is there afterwards exactly when a file operation succeeded.
    uint32_t Run(size_t operation, const std::wstring& url, const Faults& faults = {}) {
        DeleteFileW(m_path.c_str());
        m_sink = CReference<RecordingSink>(new RecordingSink);
        m_text[0] = L'\0';
        g_faults = faults;
        const uint32_t result = Call(operation, url.c_str());
        EXPECT_EQ(m_folder.Has(L"file"), result == kSuccess && (operation == kFile || operation == kList));
        EXPECT_FALSE(m_folder.Has(L"file_bak"));
        EXPECT_EQ(m_sink->AddRef(), 2u) << "the sink's reference is given back";
        m_sink->Release();
        return result;
    }
    std::string Delivered(size_t operation) const {
        if (operation == kBuf) return m_sink->m_bytes;
        if (operation == kStream) return WideToUtf8(m_text);
        return m_folder.Has(L"file") ? ReadFileBytes(m_path) : "";
    }

    const std::wstring m_path = m_folder / L"file";
    const std::wstring m_list = m_server.Url(L"/list");
    const std::wstring m_url = m_server.Url(L"/file");
    CReference<RecordingSink> m_sink{new RecordingSink};
    StreamText m_text = {};
};

}  // namespace

TEST_F(DownloadTest, WhateverAServerSends) {
    struct Row {
        LoopbackHttp::Page page;
        Codes codes = {};
        DWORD size = 0;  // what the platform says instead of the announced one
    };
    std::vector<Row> rows = {
        {{Body(50), 20}},                     // more than announced
        {{Body(401), 20}, kTooLarge},         // too much more
        {{Body(50), 90}},                     // fewer
        {{Body(401)}, kTooLarge, 3},          // a lie about the size
        {{Body(40)}, kTooLarge, 0x7FFFFFFF},  // another
        {{.body = Body(50), .hasLength = false}, kSizeUnknown},
        {{.body = "", .hangsUp = true}, kSizeUnknown},
        {{.body = Body(300), .piece = 7}},  // slow
        {{"\xE4\xBD\xA0\xC3\xA9"}},
    };
    for (const size_t size : std::initializer_list<size_t>{0, 1, 400, 401, 10239, 10240, 10241, 100'000, 30 << 20})
        rows.push_back({{Body(size)}, size > 400 ? kTooLarge : Codes()});
    for (const auto& [page, codes, size] : rows) {
        for (size_t operation = 0; operation < kOperations; ++operation) {
            // An announcement is enough to be refused, and the server need not wait for a client that left.
            const bool isBig = operation == kStream && page.body.size() > 401;
            m_server.Serve("/file", isBig ? LoopbackHttp::Page{"begin", page.body.size()} : page);
            EXPECT_EQ(Run(operation, operation == kList ? m_list : m_url, {.size = size}), codes[operation]);
            const std::string delivered = Delivered(operation);
            // A short read ends a resource, so a slow one may arrive cut; what arrives is its beginning.
            const bool begins = page.piece < page.body.size() && !delivered.empty() && page.body.starts_with(delivered);
            EXPECT_TRUE(begins || delivered == (codes[operation] == kSuccess ? page.body : "")) << kNames[operation];
        }
    }
}

TEST_F(DownloadTest, CodesLinesAndTheSinksCalls) {
    const struct {
        const char* lines;
        Codes codes;
        const char* calls;
        Faults faults = {};
        LoopbackHttp::Page page = {"12345"};
    } rows[] = {
        {"1SA+", kArrives, "B?D?C"},
        {"1SZ+", kArrives, "B?DC", {.zeroAvailable = true}},
        {"1SAR2SA+", kArrives, "B?D?B?D?C", {.fails = "R", .first = 2, .last = 2}},
        {"1U2U", kFailed, ""},
        {"1N2N", kSizeUnknown, "", {}, {.body = "12345", .hasLength = false}},
        {"1Sa2Sa", kFailed, "BB", {.fails = "A"}},
        {"1SAR2SAR", kFailed, "B?B?", {.fails = "R"}},
        {"1L2L", {kSkip, kSkip, kStreamTooLarge, kSkip}, "", {}, {Body(401)}},
        {"1SA", kCancelled, "B?", {.sinkStops = 2}},
        {"1SA", kCancelled, "B?D?", {.sinkStops = 4}},
        {"1SA", kRefused, "B?D", {.sinkStops = 3}},
        {"1S", kRefused, "B", {.sinkThrows = 1}},
        {"1SA", kRefused, "B?", {.sinkThrows = 2}},
        {"1SA", kRefused, "B?D", {.sinkThrows = 3}},
        {"1SA+", kRefused, "B?D?C", {.sinkThrows = 5}},
    };
    for (const auto& row : rows) {
        m_server.Serve("/file", row.page);
        const std::wstring url = row.lines[1] == 'U' ? m_closed : m_url;
        for (size_t operation = 0; operation < kOperations; ++operation) {
            const uint32_t code = row.codes[operation];
            if (code == kSkip) continue;
            EXPECT_EQ(Run(operation, url, row.faults), code);
            EXPECT_EQ(Traced(url), Lines(row.lines, operation, code));
            EXPECT_EQ(m_sink->m_calls, operation == kBuf ? row.calls : "");
            EXPECT_EQ(m_sink->m_announced, m_sink->m_calls.size() > 1 ? 5u : 0u);
            EXPECT_TRUE(code != kSuccess || Delivered(operation) == "12345") << row.lines << kNames[operation];
        }
    }
    // The code of a row stands when the next one fails without one.
    m_server.Serve("/file", {Body(401)});
    EXPECT_EQ(Run(kStream, m_url, {.fails = "R", .first = 2, .size = 3}), kStreamTooLarge);
}

TEST_F(DownloadTest, NotReady) {
    EXPECT_EQ(Call(kList, L"no slash"), kListNotReady);
    EXPECT_EQ(Traced(L"no slash"), FailLine(kList, "@", kListNotReady));
    for (const bool ready : {true, false}) {
        for (size_t operation = 0; operation < kOperations; ++operation) {
            const uint32_t code = kNotReady[operation];
            EXPECT_EQ(Call(operation, ready ? nullptr : m_url.c_str()), code);
            EXPECT_EQ(Call(operation, m_url.c_str(), /*output=*/!ready), code);
            EXPECT_EQ(Traced(m_url), FailLine(operation, ready ? "" : "@", code) + FailLine(operation, "@", code));
        }
        m_update->Uninit();
        TakeTraceLines();
    }
    EXPECT_EQ(m_server.TakeRequests(), "");
}

TEST_F(DownloadTest, TheRowsAndTheirArguments) {
    m_update->Uninit();
    TakeTraceLines();
    g_faults = {.asyncRow = true, .tracesCalls = true, .proxy = L"127.0.0.1:9"};
    ASSERT_EQ(m_update->Init(), kSuccess);
    EXPECT_EQ(Traced(),
              "!InternetOpenW Microsoft Internet Explorer,0,(null),(null),0x10000000|"
              "!InternetOpenW Microsoft Internet Explorer,3,127.0.0.1:9,nowhere,0x0|"
              "!InternetOpenW Microsoft Internet Explorer,1,(null),(null),0x0|");
    // Row 0 answers "pending" here, and nobody listens at the proxy of row 1.
    EXPECT_EQ(Call(kFile, m_url.c_str()), kSuccess);
    const std::string request = "!InternetOpenUrlW (null),0,0xc0000002|";
    EXPECT_EQ(Traced(m_url), request + Lines("0u", kFile, 0) + request + Lines("1U", kFile, 0) + request
                                 + "!InternetSetFilePointer 2|" + Lines("S", kFile, 0) + "!InternetSetFilePointer 0|"
                                 + Lines("2A+", kFile, 0));
    EXPECT_EQ(Delivered(kFile), "12345");
}

TEST_F(DownloadTest, WhatStaysOfAnOlderFile) {
    for (const bool created : {false, true}) {
        m_folder.Write(L"file", "old");
        g_faults = {.fails = created ? "R" : "A"};
        EXPECT_EQ(Call(kFile, m_url.c_str()), kFileFailed);
        EXPECT_EQ(Delivered(kFile), created ? "" : "old");
    }
    m_folder.MakeFolder(L"file");
    g_faults = {};
    TakeTraceLines();
    EXPECT_EQ(Call(kFile, m_url.c_str()), kFileFailed);
    EXPECT_EQ(Traced(m_url), Lines("1SAC2SAC", kFile, kFileFailed));
}

TEST_F(DownloadTest, HandlesAndMemoryStayLevel) {
    const Faults faults[] = {{}, {.fails = "R", .first = 2}, {.fails = "A"}, {.sinkStops = 2}, {.sinkStops = 3}};
    const auto download = [&](size_t times) {
        for (size_t number = 0; number < times; ++number)
            Run(number % kOperations, number % kOperations == kList ? m_list : m_url, faults[number % 5]);
        m_server.TakeRequests();
        TakeTraceLines();
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        return handles;
    };
    const DWORD handles = download(20);
    const auto level = std::pair(alloc_guard::Live(), g_openHandles);
    EXPECT_LE(download(200), handles + 5);
    EXPECT_EQ(std::pair(alloc_guard::Live(), g_openHandles), level);
}

TEST_F(DownloadTest, TheLibrarysOneObjectAndTheSlots) {
    const HMODULE library = LoadLibraryW(L"Dregsweep.dll");
    const FARPROC found = GetProcAddress(library, "GetInetFileProcImp");
    ASSERT_TRUE(found);
    const auto get = reinterpret_cast<IInternetFileProc* (*)()>(reinterpret_cast<void*>(found));
    const IatPatch patch = Patch("GetModuleFileNameW", TellExecutable, library);
    IInternetFileProc* update = get();
    EXPECT_EQ(update->AddRef(), 2u);
    EXPECT_EQ(update->Release(), 1u);
    EXPECT_EQ(get(), update);
    EXPECT_EQ(update->Init(), kSuccess);
    EXPECT_EQ(update->Release(), 1u);
    EXPECT_EQ(static_cast<IEUObject*>(update)->Release(), 0u);
    EXPECT_EQ(get(), update);
    using Slot = uint32_t (*)(void*, const void*, uint64_t);
    const Slot* slots = *reinterpret_cast<Slot**>(update);
    EXPECT_EQ(slots[8](update, L"no slash", 0), kListNotReady);
    EXPECT_EQ(slots[1](update, nullptr, 0), kSuccess) << "still initialised";
    EXPECT_EQ(update->Release(), 0u);

    IInternetDataSink* sink = m_sink.get();
    slots = *reinterpret_cast<Slot**>(sink);
    for (const size_t slot : {0u, 1u, 2u, 3u})
        slots[slot](sink, "x", 1);
    EXPECT_EQ(m_sink->m_calls, "B?DC");
    EXPECT_EQ(m_sink->m_bytes, "x");
}
