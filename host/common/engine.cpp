#include "host/common/engine.h"

#include "host/common/executable.h"
#include "host/common/hosterror.h"
#include "host/common/xmlfile.h"

namespace {

// Where a command's engine comes from.
struct Source {
    const char* factory;
    CString rules;
    CString text;           // empty: none
    const wchar_t* remedy;  // when there are no rules
};

Source SourceOf(const EngineOptions& options) {
    if (!options.upgradeMode) return {"GetImp", options.rules, options.text, L"check the path after --rules"};
    const CString folder = ExecutableFolder();
    CString text = JoinPath(folder, L"ResIDText.xml");
    if (GetFileAttributesW(text.c_str()) == INVALID_FILE_ATTRIBUTES) text.clear();
    return {"GetSysUpgradeClearImp", JoinPath(folder, L"SysUpgradeConfig.xml"), text, L"put it beside dsw.exe"};
}

// The engine takes a file that is missing or no XML for an empty one, so look before it does. `name` and `remedy` are
// for the message.
void RequireXml(const CString& path, const CString& name, const CString& remedy) {
    TiXmlDocument document;
    const auto fault = LoadXmlFile(path, document);
    if (!fault) return;
    switch (fault->kind) {
        case XmlFileFault::Kind::Missing:
            throw CHostError(L"cannot find " + name + L": " + remedy);
        case XmlFileFault::Kind::Folder:
            throw CHostError(name + L" is a folder: " + remedy);
        case XmlFileFault::Kind::Unreadable:
            throw CHostError(L"cannot read " + name + L": " + fault->reason);
        case XmlFileFault::Kind::NotWellFormed:
            const CString line = fault->line > 0 ? L", line " + std::to_wstring(fault->line) + L"," : CString();
            throw CHostError(name + line + L" is no well-formed XML: " + fault->reason);
    }
}

[[noreturn]] void ThrowUnusable(const CString& rules) {
    throw CHostError(L"the rule file " + rules
                     + L" has no category, or one that cannot be loaded: give each level its \"Name\"");
}

// The names come in a step of their own, which tells whether their file has any; an empty path is no file.
void LoadRules(IDregsweep& engine, const CString& rules) {
    const uint64_t code = engine.Init(rules.c_str(), L"", nullptr);
    if (code == kDregsweepConfigFailed) ThrowUnusable(rules);
    if (code != 0) throw CHostError(L"the engine refuses to start, code " + std::to_wstring(code));
    if (!CReference<IAppCatagory>(engine.GetFirstCategory()))
        throw CHostError(L"the rule file " + rules + L" holds no rules: its root needs \"AppCategoryInfo\" elements");
}

void LoadNames(IDregsweep& engine, const CString& text) {
    RequireXml(text, L"the text file " + text, L"check the path after --text");
    if (engine.ChangeResID(text.c_str(), nullptr) == kDregsweepNoTextTable)
        throw CHostError(L"the text file " + text + L" holds no names: its root needs a \"Dregsweep\" element");
}

}  // namespace

CEngine::CEngine(const EngineOptions& options) {
    const Source source = SourceOf(options);
    RequireXml(source.rules, L"the rule file " + source.rules, source.remedy);
    m_engine = m_module.CreateEngine(source.factory);
    if (!m_engine) ThrowUnusable(source.rules);
    // The engine of the upgrade mode has loaded its files already: once more, to see the names of the rule file.
    m_engine->Uninit();
    LoadRules(*m_engine, source.rules);
    m_paths.emplace(*m_engine);
    if (!source.text.empty()) LoadNames(*m_engine, source.text);
    for (const std::wstring& prefix : options.allowed)
        m_engine->AddAllowedPath(prefix.c_str());
    ApplySelection(*m_engine, options.selection, Paths(), CNodePaths(*m_engine));
}
