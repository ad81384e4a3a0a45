#include "bench/bench.h"

#include <filesystem>
#include <fstream>

#include "host/common/hosterror.h"

CReference<IDregsweep> Bench::LoadEngine(const std::string& rules) const {
    const std::wstring path = WriteBenchFile(L"rules.xml", "<Rules>" + rules + "</Rules>");
    CReference<IDregsweep> engine = NewEngine();
    if (engine->Init(path.c_str(), L"", nullptr) != 0 || !CReference<IAppCatagory>(engine->GetFirstCategory()))
        throw CHostError(L"the engine does not take the rules of a benchmark");
    return engine;
}

std::wstring WriteBenchFile(const std::wstring& name, const std::string& content) {
    MakeFolders(L"C:\\bench");
    const std::wstring path = L"C:\\bench\\" + name;
    std::ofstream stream(std::filesystem::path(path), std::ios::binary);
    if (!(stream << content)) throw CHostError(L"cannot write " + path);
    return path;
}

std::string OneCategory(const std::string& rules) {
    return R"(<AppCategoryInfo Name="C" SelState="2"><AppInfo Name="A"><GarbageCatagory Name="G">)" + rules
           + "</GarbageCatagory></AppInfo></AppCategoryInfo>";
}

std::string FolderRule(const std::wstring& folder, const std::string& attributes, const std::string& children) {
    const std::string path = WideToUtf8(folder.substr(3));
    return R"(<GarbageInfo FolderEnvDir="SystemDrive" IsFolder="1" Path=")" + path + "\" " + attributes + ">" + children
           + "</GarbageInfo>";
}

std::string PatternRule(const std::wstring& folder) {
    return FolderRule(
        folder, std::string(R"(Iteration="1" Filter="*.tmp" ExcludePath="1" ExcludeFilter=")") + kKeptTokens + "\"",
        R"(<ExcludePath Path="no such name"/><ExcludePath Path="\no\such\path" ExactMatch="1"/>)");
}

void RequireSame(uint64_t floor, uint64_t engine, const char* what) {
    if (floor == engine) return;
    throw CHostError(L"the engine and its floor differ: " + Utf8ToWide(what) + L" " + std::to_wstring(engine)
                     + L", not " + std::to_wstring(floor));
}
