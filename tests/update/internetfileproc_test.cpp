#include <array>

#include "tests/update/updatefixture.h"

using namespace InternetFileResult;
using testing::EndsWith;

namespace {

enum Operation : size_t { kFile, kBuf, kStream, kList, kOperations };
using Codes = std::array<uint32_t, kOperations>;

constexpr Codes kNotReady = {kFileNotReady, kBufNotReady, kStreamNotReady, kListNotReady};
constexpr Codes kFailed = {kFileFailed, kBufFailed, kStreamFailed, kFileFailed};
constexpr Codes kSizeUnknown = {kFileSizeUnknown, kBufSizeUnknown, kStreamSizeUnknown, kFileSizeUnknown};
constexpr Codes kTooLarge = {0, 0, kStreamTooLarge, 0};
constexpr Codes kCancelled = {0, kSinkCancelled, 0, 0}, kRefused = {0, kSinkRefused, 0, 0};

std::string Body(size_t size) {
    std::string body(size, '\0');
    for (size_t at = 0; at < size; ++at)
        body[at] = static_cast<char>('!' + at * 31 % 89);
    return body;
}

// Keeps what it was told: "B" and the size OnBegin, "?" IsCancelled, "D" OnData, "C" OnComplete.
class RecordingSink : public IInternetDataSink {
public:
    void OnBegin(uint32_t totalSize) override {
        m_bytes.clear();
        Note("B" + std::to_string(totalSize));
    }
    uint32_t IsCancelled() override { return Note("?"); }
    uint32_t OnData(const uint8_t* bytes, uint32_t length) override {
        m_bytes.append(bytes, bytes + length);
        return Note("D");
    }
    void OnComplete() override { Note("C"); }

    std::string m_calls, m_bytes;

private:
    bool Note(const std::string& call) {
        m_calls += call;
        if (++m_count == g_faults.sinkThrows) throw call;
        return m_count == g_faults.sinkStops;
    }
    int m_count = 0;
};

class Download : public UpdateTest {
protected:
    Download() {
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
    void ExpectAll(const LoopbackHttp::Page& page, const Codes& codes, const Faults& faults = {},
                   const char* calls = nullptr) {
        for (size_t operation = 0; operation < kOperations; ++operation) {
            // An announcement is enough to be refused, and the server need not wait for a client that left.
            const bool isBig = operation == kStream && page.body.size() > 401;
            m_server.Serve("/file", isBig ? LoopbackHttp::Page{"begin", page.body.size()} : page);
            EXPECT_EQ(Run(operation, operation == kList ? m_list : m_url, faults), codes[operation]) << operation;
            const std::string delivered = Delivered(operation);
            const bool isWhole = delivered == (codes[operation] == kSuccess ? page.body : "");
            // A short read ends a resource, so a slow one may arrive cut; what arrives is its beginning.
            const bool begins = page.piece < page.body.size() && !delivered.empty() && page.body.starts_with(delivered);
            EXPECT_TRUE(isWhole || begins || (operation == kBuf && calls)) << operation;
            EXPECT_TRUE(operation != kBuf || !calls || m_sink->m_calls == calls) << m_sink->m_calls;
        }
        TakeTraceLines();
    }

    const std::wstring m_path = m_folder / L"file";
    const std::wstring m_list = m_server.Url(L"/list");
    const std::wstring m_url = m_server.Url(L"/file");
    CReference<RecordingSink> m_sink{new RecordingSink};
    StreamText m_text = {};
};

}  // namespace

TEST_F(Download, TakesWhateverAServerSends) {
    ExpectAll({Body(50), 20}, {});                           // more than announced
    ExpectAll({Body(401), 20}, kTooLarge);                   // too much more
    ExpectAll({Body(50), 90}, {});                           // fewer
    ExpectAll({Body(401)}, kTooLarge, {.size = 3});          // a lie about the size
    ExpectAll({Body(40)}, kTooLarge, {.size = 0x7FFFFFFF});  // another
    ExpectAll({.body = Body(50), .hasLength = false}, kSizeUnknown, {}, "");
    ExpectAll({.body = "", .hangsUp = true}, kSizeUnknown);
    ExpectAll({.body = Body(300), .piece = 7}, {});  // slow
    ExpectAll({"\xE4\xBD\xA0\xC3\xA9"}, {});
    for (const size_t size : std::initializer_list<size_t>{0, 1, 400, 401, 10239, 10240, 10241, 100'000, 30 << 20})
        ExpectAll({Body(size)}, size > 400 ? kTooLarge : Codes());
    for (size_t operation = 0; operation < kOperations; ++operation)
        EXPECT_EQ(Run(operation, m_closed), kFailed[operation]);
    // The code of a row stands when the next one fails without one.
    m_server.Serve("/file", {Body(401)});
    EXPECT_EQ(Run(kStream, m_url, {.fails = "R", .first = 2, .size = 3}), kStreamTooLarge);
}

TEST_F(Download, TellsTheSinkInOrderUntilItStops) {
    const struct {
        Codes codes;
        const char* calls;
        Faults faults = {};
    } rows[] = {
        {{}, "B5?D?C"},
        {{}, "B5?DC", {.zeroAvailable = true}},
        {{}, "B5?D?B5?D?C", {.fails = "R", .first = 2, .last = 2}},
        {kFailed, "B5B5", {.fails = "A"}},
        {kFailed, "B5?B5?", {.fails = "R"}},
        {kCancelled, "B5?", {.sinkStops = 2}},
        {kCancelled, "B5?D?", {.sinkStops = 4}},
        {kRefused, "B5?D", {.sinkStops = 3}},
        {kRefused, "B5", {.sinkThrows = 1}},
        {kRefused, "B5?", {.sinkThrows = 2}},
        {kRefused, "B5?D", {.sinkThrows = 3}},
        {kRefused, "B5?D?C", {.sinkThrows = 5}},
    };
    for (const auto& row : rows)
        ExpectAll({"12345"}, row.codes, row.faults, row.calls);
}

TEST_F(Download, NeedsAnInitialisedObjectAndItsArguments) {
    EXPECT_EQ(Call(kList, L"no slash"), kListNotReady);
    for (size_t operation = 0; operation < kOperations; ++operation) {
        EXPECT_EQ(Call(operation, nullptr), kNotReady[operation]);
        EXPECT_EQ(Call(operation, m_url.c_str(), /*output=*/false), kNotReady[operation]);
    }
    m_update->Uninit();
    for (size_t operation = 0; operation < kOperations; ++operation)
        EXPECT_EQ(Call(operation, m_url.c_str()), kNotReady[operation]);
    EXPECT_EQ(m_server.TakeRequests(), "");
}

TEST_F(Download, TriesTheRowsWithTheirArguments) {
    m_update->Uninit();
    TakeTraceLines();
    g_faults = {.allRows = true};
    ASSERT_EQ(m_update->Init(), kSuccess);
    EXPECT_EQ(Traced(),
              "!InternetOpenW Microsoft Internet Explorer,0,(null),(null),0x10000000|"
              "!InternetOpenW Microsoft Internet Explorer,3,127.0.0.1:9,nowhere,0x0|"
              "!InternetOpenW Microsoft Internet Explorer,1,(null),(null),0x0|");
    // Row 0 answers "pending" here, and nobody listens at the proxy of row 1.
    EXPECT_EQ(Call(kFile, m_url.c_str()), kSuccess);
    const std::string request = "!InternetOpenUrlW (null),0,0xc0000002|";
    EXPECT_EQ(Traced(m_url), request + "InternetOpenUrl fail,0,@,997|" + request + "InternetOpenUrl fail,1,@,12029|"
                                 + request
                                 + "!InternetSetFilePointer 2|InternetSetFilePointer ret 0x5,@,0|"
                                   "!InternetSetFilePointer 0|InternetQueryDataAvailable success,2,@,5|"
                                   "GetFileFromURL success,2,@|");
    EXPECT_EQ(Delivered(kFile), "12345");
}

TEST_F(Download, TracesEachKindOfEnd) {
    const struct {
        Operation operation;
        Faults faults;
        const char* lines;  // the last ones
    } rows[] = {
        {kFile, {.fails = "R"}, "|InternetReadFile fail,2,@,12031|GetFileFromURL fail,@,0x990001|"},
        {kBuf, {}, "|GetFileFromURL success,1,@|"},  // names the other operation
        {kBuf, {.sinkStops = 2}, "|GetFileBufFromURL fail,@,0x10e0005|"},
        {kStream, {}, "|GetStreamFileInfo success,1,@|"},
        {kStream, {.fails = "A"}, "|InternetQueryDataAvailable fail,2,@,12031|GetStreamFileInfo fail,@,0x1430001|"},
        {kList, {.fails = "A"}, "|GetFileFromURL fail,@,0x990001|GetFileListFromURL fail,@,0x990001|"},
    };
    for (const auto& [operation, faults, lines] : rows) {
        Run(operation, m_url, faults);
        EXPECT_THAT(Traced(m_url), EndsWith(lines));
    }
}

TEST_F(Download, KeepsAnOlderFileUntilDataCame) {
    for (const bool created : {false, true}) {
        m_folder.Write(L"file", "old");
        g_faults = {.fails = created ? "R" : "A"};
        EXPECT_EQ(Call(kFile, m_url.c_str()), kFileFailed);
        EXPECT_EQ(Delivered(kFile), created ? "" : "old");
    }
    m_folder.MakeFolder(L"file");
    g_faults = {};
    EXPECT_EQ(Call(kFile, m_url.c_str()), kFileFailed);
    EXPECT_THAT(Traced(m_url), EndsWith("|CreateFile fail,2,@,5|GetFileFromURL fail,@,0x990001|"));
}

TEST_F(Download, TheLibrarysOneObjectAndTheSlots) {
    const HMODULE library = LoadLibraryW(L"Dregsweep.dll");
    const auto get = reinterpret_cast<IInternetFileProc* (*)()>(
        reinterpret_cast<void*>(GetProcAddress(library, "GetInetFileProcImp")));
    ASSERT_TRUE(get);
    const IatPatch patch(library, nullptr, "GetModuleFileNameW", reinterpret_cast<const void*>(&TellExecutable));
    IInternetFileProc* update = get();
    EXPECT_TRUE(update->AddRef() == 2 && update->Release() == 1 && get() == update);
    EXPECT_EQ(update->Init(), kSuccess);
    EXPECT_TRUE(update->Release() == 1 && static_cast<IEUObject*>(update)->Release() == 0 && get() == update);
    using Slot = uint32_t (*)(void*, const void*, uint64_t);
    const Slot* slots = *reinterpret_cast<Slot**>(update);
    EXPECT_EQ(slots[8](update, L"no slash", 0), kListNotReady);
    EXPECT_EQ(slots[1](update, nullptr, 0), kSuccess) << "still initialised";
    EXPECT_EQ(update->Release(), 0u);

    IInternetDataSink* sink = m_sink.get();
    slots = *reinterpret_cast<Slot**>(sink);
    for (const size_t slot : {0u, 1u, 2u, 3u})
        slots[slot](sink, "x", 1);
    EXPECT_TRUE(m_sink->m_calls.ends_with("?DC") && m_sink->m_bytes == "x") << m_sink->m_calls;
}
