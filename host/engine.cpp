#include "host/engine.h"

#include <cstdio>
#include <memory>

#include "host/hosterror.h"

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The engine takes a missing file for an empty one, so look before it does. `what` and `option` are for the message.
void RequireReadable(const CString& path, const CString& what, const CString& option) {
    const CString name = L"the " + what + L" " + path;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        throw CHostError(L"cannot find " + name + L": check the path after " + option);
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        throw CHostError(name + L" is a folder: give the file itself after " + option);
    if (!File(_wfopen(path.c_str(), L"rb")))
        throw CHostError(L"cannot open " + name + L": another program holds it, or you may not read it");
}

void LoadRules(IDregsweep& engine, const CString& rules) {
    // The names come in a step of their own, which tells whether the file has any; an empty path is no file.
    const uint64_t code = engine.Init(rules.c_str(), L"", nullptr);
    if (code == kDregsweepConfigFailed)
        throw CHostError(L"the rule file " + rules
                         + L" has no category, or one that cannot be loaded: give each level its \"Name\"");
    if (code != 0) throw CHostError(L"the engine refuses to start, code " + std::to_wstring(code));
    if (!CReference<IAppCatagory>(engine.GetFirstCategory()))
        throw CHostError(L"the rule file " + rules
                         + L" holds no rules: it must be well-formed XML with \"AppCategoryInfo\" elements");
}

void LoadNames(IDregsweep& engine, const CString& text) {
    if (engine.ChangeResID(text.c_str(), nullptr) == kDregsweepNoTextTable)
        throw CHostError(L"the text file " + text + L" holds no names: its root needs a \"Dregsweep\" element");
}

}  // namespace

CEngine::CEngine(const EngineOptions& options) : m_engine(m_module.CreateEngine()) {
    const CString rules = Utf8ToWide(options.rules);
    const CString text = Utf8ToWide(options.text);
    RequireReadable(rules, L"rule file", L"--rules");
    if (!text.empty()) RequireReadable(text, L"text file", L"--text");
    LoadRules(*m_engine, rules);
    if (!text.empty()) LoadNames(*m_engine, text);
}
