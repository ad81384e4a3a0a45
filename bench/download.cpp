// A download into a file, from a server on the loopback address.

#include <windows.h>

#include <wininet.h>

#include <memory>
#include <string>

#include "bench/rows.h"
#include "bench/stubs.h"
#include "host/common/hosterror.h"
#include "sysservices/handle.h"
#include "tests/support/loopbackhttp.h"
#include "update/inethandle.h"

namespace {

constexpr wchar_t kFolder[] = L"C:\\bench\\download";
constexpr wchar_t kAgent[] = L"Microsoft Internet Explorer";
constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_RAW_DATA | INTERNET_FLAG_TRANSFER_BINARY;

// Wine's own knows no size.
DWORD WINAPI TellSize(HINTERNET request, LONG, PVOID, DWORD method, DWORD_PTR) {
    DWORD size = 0;
    DWORD length = sizeof size;
    if (method == FILE_END
        && !HttpQueryInfoW(request, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &size, &length, nullptr))
        return 0xFFFFFFFF;
    return size;
}

// The way of access that is tried first is asynchronous and never delivers, but its request would go on in the
// background and disturb what is measured: the engine is measured, as its floor is, on a way that delivers.
HINTERNET WINAPI OpenSynchronousOnly(LPCWSTR agent, DWORD type, LPCWSTR proxy, LPCWSTR bypass, DWORD flags) {
    return flags & INTERNET_FLAG_ASYNC ? nullptr : InternetOpenW(agent, type, proxy, bypass, flags);
}

// The same calls in a plain loop; `root` is open, as the engine's is.
void Fetch(HINTERNET root, const std::wstring& url, const std::wstring& path) {
    const CInetHandle request(InternetOpenUrlW(root, url.c_str(), nullptr, 0, kFlags, 0));
    TellSize(request.get(), 0, nullptr, FILE_END, 0);
    TellSize(request.get(), 0, nullptr, FILE_BEGIN, 0);
    DWORD available = 0;
    InternetQueryDataAvailable(request.get(), &available, 0, 0);
    const CHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    static char buffer[10240];
    const DWORD chunk = available > 0 && available < sizeof buffer ? available : DWORD{sizeof buffer};
    DWORD read = 0;
    DWORD written = 0;
    do {
        if (!InternetReadFile(request.get(), buffer, chunk, &read)) throw CHostError(L"the floor's download failed");
        WriteFile(file.get(), buffer, read, &written, nullptr);
    } while (read == chunk);
}

IInternetFileProc* UpdateObject(HMODULE module) {
    void* address = reinterpret_cast<void*>(GetProcAddress(module, "GetInetFileProcImp"));
    IInternetFileProc* update = reinterpret_cast<DregsweepUpdateFactory>(address)();
    if (!update || update->Init() != InternetFileResult::kSuccess)
        throw CHostError(L"the update object does not start");
    return update;
}

uint64_t FileSize(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
    return data.nFileSizeLow;
}

}  // namespace

std::vector<Figure> BenchDownload(Bench& bench) {
    const size_t bytes = bench.Scaled(30'000'000);
    LoopbackHttp server;
    server.Serve("/rules", {.body = std::string(bytes, 'x')});
    const std::wstring url = server.Url(L"/rules");
    MakeFolders(kFolder);
    const std::wstring path = kFolder + std::wstring(L"\\rules");

    const Stubs stubs(bench.Module(), {{"InternetSetFilePointer", &TellSize}, {"InternetOpenW", &OpenSynchronousOnly}});
    const CReference<IInternetFileProc> update(UpdateObject(bench.Module()));
    const CInetHandle root(InternetOpenW(kAgent, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0));

    const auto floor = [&] {
        const double seconds = Seconds([&] { Fetch(root.get(), url, path); });
        RequireSame(bytes, FileSize(path), "bytes");
        return seconds;
    };
    const auto download = [&] {
        uint32_t code = 1;
        const double seconds = Seconds([&] { code = update->GetFileFromURL(url.c_str(), path.c_str()); });
        RequireSame(0, code, "result");
        RequireSame(bytes, FileSize(path), "bytes");
        return seconds;
    };
    const Rounds rounds = Alternate(bench.RoundsOfShort(), floor, download);
    update->Uninit();
    return {RatioFigure("download " + Thousands(bytes) + " bytes from the loopback server", rounds, 1.05)};
}
