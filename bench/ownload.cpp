// The engine's own time for each rule that it loads and each node that it localises, beside what TinyXML needs for the
// same file. The environment, the shell and the registry are answered from memory.

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "bench/ownfigure.h"
#include "bench/pieces.h"
#include "bench/rows.h"
#include "bench/rulefile.h"
#include "bench/stubs.h"

namespace {

constexpr wchar_t kFolder[] = L"C:\\bench\\memory";

DWORD WINAPI Variable(const wchar_t*, wchar_t* value, DWORD) {
    std::wmemcpy(value, kFolder, std::size(kFolder));
    return std::size(kFolder) - 1;
}

HRESULT WINAPI ShellFolder(HWND, int, HANDLE, DWORD, wchar_t* path) {
    std::wmemcpy(path, kFolder, std::size(kFolder));
    return S_OK;
}

LSTATUS WINAPI OpenKey(HKEY root, const wchar_t*, DWORD, REGSAM, HKEY* key) {
    *key = root;
    return ERROR_SUCCESS;
}

LSTATUS WINAPI QueryValue(HKEY, const wchar_t*, DWORD*, DWORD*, BYTE* data, DWORD* bytes) {
    std::memcpy(data, kFolder, sizeof kFolder);
    *bytes = sizeof kFolder;
    return ERROR_SUCCESS;
}

LSTATUS WINAPI NoSubKey(HKEY, DWORD, wchar_t*, DWORD*, DWORD*, wchar_t*, DWORD*, FILETIME*) {
    return ERROR_NO_MORE_ITEMS;
}

LSTATUS WINAPI CloseKey(HKEY) {
    return ERROR_SUCCESS;
}

Stubs MemorySettings(HMODULE engine) {
    return {engine,
            {{"GetEnvironmentVariableW", &Variable},
             {"SHGetFolderPathW", &ShellFolder},
             {"RegOpenKeyExW", &OpenKey},
             {"RegQueryValueExW", &QueryValue},
             {"RegEnumKeyExW", &NoSubKey},
             {"RegCloseKey", &CloseKey}}};
}

// Parsing and loading take and give back memory all the time: these are their steps. The library's own functions are
// asked for by name, since the import is what is replaced.
template <class F>
F* LibraryFunction(const char* name) {
    void* address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), name));
    return reinterpret_cast<F*>(address);
}

void* CDECL CountedMalloc(size_t bytes) {
    static const auto allocate = LibraryFunction<void*(size_t)>("malloc");
    CountSteps(1);
    return allocate(bytes);
}

void CDECL CountedFree(void* block) {
    static const auto release = LibraryFunction<void(void*)>("free");
    CountSteps(1);
    release(block);
}

Stubs CountAllocations(HMODULE module) {
    return {module, {{"malloc", &CountedMalloc}, {"free", &CountedFree}}};
}

OwnWork XmlWork(const Bench& bench, const char* item) {
    // A million rules are half a gigabyte of XML, four gigabytes of memory and two minutes for a round.
    return {.item = item, .kind = {}, .unit = "us", .most = 100'000, .rounds = bench.Rounds()};
}

std::vector<double> ParsePieces(const std::wstring& path) {
    const Stubs allocations = CountAllocations(GetModuleHandleW(nullptr));
    return PiecesOf([&] { ParseXml(path); });
}

}  // namespace

std::vector<Figure> BenchOwnLoad(Bench& bench) {
    return OwnFigures(bench, XmlWork(bench, "loaded rule"), [&](size_t rules) {
        const std::wstring path =
            WriteBenchFile(std::to_wstring(rules) + L"rules.xml", "<Rules>" + MixedRules(rules) + "</Rules>");
        const auto load = [=, &bench] {
            const Stubs settings = MemorySettings(bench.Module());
            const Stubs allocations = CountAllocations(bench.Module());
            const auto engine = bench.NewEngine();
            auto pieces = PiecesOf([&] { (void)engine->Init(path.c_str(), L"", nullptr); });
            RequireSame(rules / 100, CountCategories(*engine), "categories");
            return pieces;
        };
        return OwnSides{rules, [=] { return ParsePieces(path); }, load};
    });
}

std::vector<Figure> BenchOwnLocalise(Bench& bench) {
    std::vector<CReference<IDregsweep>> engines;
    return OwnFigures(bench, XmlWork(bench, "localised node"), [&](size_t count) {
        const NamedNodes nodes(count / 100);
        const std::wstring path = WriteBenchFile(std::to_wstring(count) + L"texts.xml", nodes.texts);
        IDregsweep& engine = *engines.emplace_back(bench.LoadEngine(nodes.rules));
        const auto localise = [=, &bench, &engine] {
            const Stubs allocations = CountAllocations(bench.Module());
            auto pieces = PiecesOf([&] { (void)engine.ChangeResID(path.c_str(), nullptr); });
            RequireLocalised(engine);
            return pieces;
        };
        return OwnSides{count, [=] { return ParsePieces(path); }, localise};
    });
}
