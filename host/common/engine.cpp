#include "host/common/engine.h"

#include "host/common/executable.h"
#include "host/common/hosterror.h"
#include "host/common/texts.h"
#include "host/common/xmlfile.h"

namespace {

// Where an engine comes from.
struct Source {
    const char* factory;
    CString rules;
    unsigned rulesRemedy;
    CString text;  // empty: none
};

Source SourceOf(const EngineOptions& options) {
    if (!options.upgradeMode) return {"GetImp", options.rules, options.rulesRemedy, options.text};
    const CString folder = ExecutableFolder();
    CString text = JoinPath(folder, L"ResIDText.xml");
    if (GetFileAttributesW(text.c_str()) == INVALID_FILE_ATTRIBUTES) text.clear();
    return {"GetSysUpgradeClearImp", JoinPath(folder, L"SysUpgradeConfig.xml"), IDS_PUT_BESIDE_DSW, text};
}

// What is said of a file that is of no use.
struct FaultTexts {
    unsigned missing;
    unsigned folder;
    unsigned unreadable;
    unsigned noXml;
    unsigned noXmlInLine;
};

constexpr FaultTexts kOfRules = {IDS_RULES_MISSING, IDS_RULES_ARE_FOLDER, IDS_RULES_UNREADABLE, IDS_RULES_NO_XML,
                                 IDS_RULES_NO_XML_IN_LINE};
constexpr FaultTexts kOfNames = {IDS_NAMES_MISSING, IDS_NAMES_ARE_FOLDER, IDS_NAMES_UNREADABLE, IDS_NAMES_NO_XML,
                                 IDS_NAMES_NO_XML_IN_LINE};

// The engine takes a file that is missing or no XML for an empty one, so look before it does.
void RequireXml(const CString& path, unsigned remedy, const FaultTexts& texts) {
    TiXmlDocument document;
    const auto fault = LoadXmlFile(path, document);
    if (!fault) return;
    switch (fault->kind) {
        case XmlFileFault::Kind::Missing:
            throw CHostError(Text(texts.missing, {path, Text(remedy)}));
        case XmlFileFault::Kind::Folder:
            throw CHostError(Text(texts.folder, {path, Text(remedy)}));
        case XmlFileFault::Kind::Unreadable:
            throw CHostError(Text(texts.unreadable, {path, fault->reason}));
        case XmlFileFault::Kind::NotWellFormed:
            throw CHostError(Text(fault->line > 0 ? texts.noXmlInLine : texts.noXml,
                                  {path, fault->reason, std::to_wstring(fault->line)}));
    }
}

// The names come in a step of their own, which tells whether their file has any; an empty path is no file.
void LoadRules(IDregsweep& engine, const CString& rules) {
    const uint64_t code = engine.Init(rules.c_str(), L"", nullptr);
    if (code == kDregsweepConfigFailed) throw CHostError(Text(IDS_RULES_UNUSABLE, {rules}));
    if (code != 0) throw CHostError(Text(IDS_ENGINE_REFUSES, {std::to_wstring(code)}));
    if (!CReference<IAppCatagory>(engine.GetFirstCategory())) throw CHostError(Text(IDS_RULES_EMPTY, {rules}));
}

void LoadNames(IDregsweep& engine, const CString& text) {
    if (engine.ChangeResID(text.c_str(), nullptr) == kDregsweepNoTextTable)
        throw CHostError(Text(IDS_NAMES_EMPTY, {text}));
}

}  // namespace

CEngine::CEngine(const EngineOptions& options) {
    const Source source = SourceOf(options);
    RequireXml(source.rules, source.rulesRemedy, kOfRules);
    m_engine = m_module.CreateEngine(source.factory);
    if (!m_engine) throw CHostError(Text(IDS_RULES_UNUSABLE, {source.rules}));
    // The engine of the upgrade mode has loaded its files already: once more, to see the names of the rule file.
    m_engine->Uninit();
    LoadRules(*m_engine, source.rules);
    m_paths.emplace(*m_engine);
    if (!source.text.empty()) {
        RequireXml(source.text, options.textRemedy, kOfNames);
        LoadNames(*m_engine, source.text);
    }
    for (const std::wstring& prefix : options.allowed)
        m_engine->AddAllowedPath(prefix.c_str());
    ApplySelection(*m_engine, options.selection, Paths(), CNodePaths(*m_engine));
    if (options.noRegistry) DeselectRegistryRules(*m_engine);
    if (options.presentOnly) DeselectAbsent(*m_engine);
}
