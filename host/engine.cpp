#include "host/engine.h"

#include <tinyxml.h>

#include <cstdio>
#include <memory>

#include "host/hosterror.h"
#include "sysservices/xmldocument.h"

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The engine takes a file that is missing or no XML for an empty one, so look before it does. `name` and `remedy` are
// for the message.
void RequireXml(const CString& path, const CString& name, const CString& remedy) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) throw CHostError(L"cannot find " + name + L": " + remedy);
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) throw CHostError(name + L" is a folder: " + remedy);
    if (!File(_wfopen(path.c_str(), L"rb")))
        throw CHostError(L"cannot open " + name + L": another program holds it, or you may not read it");
    TiXmlDocument document;
    if (LoadXmlDocument(path.c_str(), document)) return;
    if (!document.Error()) throw CHostError(name + L" is empty, open for writing elsewhere, or nested too deeply");
    CString line;
    if (document.ErrorRow() > 0) line = L", line " + std::to_wstring(document.ErrorRow()) + L",";
    throw CHostError(name + line + L" is no well-formed XML: " + Utf8ToWide(document.ErrorDesc()));
}

[[noreturn]] void ThrowUnusable(const CString& rules) {
    throw CHostError(L"the rule file " + rules
                     + L" has no category, or one that cannot be loaded: give each level its \"Name\"");
}

CReference<IDregsweep> LoadRules(const CEngineModule& module, const CString& rules) {
    RequireXml(rules, L"the rule file " + rules, L"check the path after --rules");
    CReference<IDregsweep> engine = module.CreateEngine("GetImp");
    if (!engine) throw CHostError(L"the engine gave no object: is Dregsweep.dll the one of this dsw.exe?");
    // The names come in a step of their own, which tells whether the file has any; an empty path is no file.
    const uint64_t code = engine->Init(rules.c_str(), L"", nullptr);
    if (code == kDregsweepConfigFailed) ThrowUnusable(rules);
    if (code != 0) throw CHostError(L"the engine refuses to start, code " + std::to_wstring(code));
    return engine;
}

// This engine has loaded its files already.
CReference<IDregsweep> LoadUpgradeRules(const CEngineModule& module, const CString& rules) {
    RequireXml(rules, L"the rule file " + rules, L"put it beside dsw.exe");
    CReference<IDregsweep> engine = module.CreateEngine("GetSysUpgradeClearImp");
    if (!engine) ThrowUnusable(rules);
    return engine;
}

void LoadNames(IDregsweep& engine, const CString& text) {
    RequireXml(text, L"the text file " + text, L"check the path after --text");
    if (engine.ChangeResID(text.c_str(), nullptr) == kDregsweepNoTextTable)
        throw CHostError(L"the text file " + text + L" holds no names: its root needs a \"Dregsweep\" element");
}

}  // namespace

CEngine::CEngine(const EngineOptions& options) {
    const CString rules =
        options.upgradeMode ? JoinPath(ExecutableFolder(), L"SysUpgradeConfig.xml") : Utf8ToWide(options.rules);
    m_engine = options.upgradeMode ? LoadUpgradeRules(m_module, rules) : LoadRules(m_module, rules);
    if (!CReference<IAppCatagory>(m_engine->GetFirstCategory()))
        throw CHostError(L"the rule file " + rules + L" holds no rules: its root needs \"AppCategoryInfo\" elements");
    m_paths.emplace(*m_engine);
    if (!options.text.empty()) LoadNames(*m_engine, Utf8ToWide(options.text));
    for (const std::string& prefix : options.allowed)
        m_engine->AddAllowedPath(Utf8ToWide(prefix).c_str());
    ApplySelection(*m_engine, options.selection, Paths(), CNodePaths(*m_engine));
}
