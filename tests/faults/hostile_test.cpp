// Broken and hostile files: whatever they hold, the engine loads, runs and lets go of them, and touches nothing else.

#include <windows.h>

#include <tinyxml.h>

#include <fstream>
#include <random>

#include "sysservices/xmldocument.h"
#include "tests/dregsweep/engine.h"
#include "tree/residtexttable.h"
#include "update/configversion.h"
#include "update/rulefilelist.h"

namespace {

// What is inserted, "~" before each. Nothing that could lead a rule out of its folder: that a rule file may do.
const std::string kSnippets =
    "~<~>~'~\"~/>~&#0;~&#xFFFF;~&lt~<!--~<![CDATA[~]]>~<?xml encoding='UTF-16'?>~ Iteration='1'~ LoopPath='1'~"
    " ExcludePath='1'~ Filter='~ Filter='*?*?*?*?'~ SelState='-1'~ IsFolder='99999999999999999999'~"
    "<LoopPath Path='*'/>~<LoopPath TerminalPath='|'/>~<ExcludePath Path=''/>~\xEF\xBB\xBF~\xC0\x80~\xED\xA0\x80~"
    "\r\n~\n\n~|~[Config]\n~version=-9999999999\n~\xFE\xFF";

class Mutator {
public:
    explicit Mutator(unsigned seed) : m_random(seed) {}

    std::string operator()(std::string text) {
        for (size_t count = 1 + Number(3); count > 0; --count)
            Mutate(text, Number(30));
        return text;
    }

private:
    size_t Number(size_t limit) { return m_random() % limit; }

    void Mutate(std::string& text, size_t kind) {
        const size_t at = Number(text.size() + 1), length = std::min(Number(40), text.size() - at);
        if (kind == 0) {
            text.resize(at);
        } else if (kind == 1) {  // nesting
            const std::string tag = Number(2) ? "<GarbageCatagory Name='x'>" : "<a>";
            for (size_t depth = Number(300); depth > 0; --depth)
                text.insert(at, tag);
        } else if (kind == 2) {  // a huge attribute or name
            text.insert(at, std::string(Number(100'000), "x\\*&\xC3"[Number(5)]));
        } else if (kind == 3) {  // in UTF-16
            std::string wide = "\xFF\xFE";
            for (const char c : text)
                wide += {c, '\0'};
            text = wide;
        } else if (kind == 4) {  // a piece twice, or somewhere else
            text.insert(Number(text.size() + 1), std::string(text, at, length * 5));
        } else if (kind == 5) {
            text.erase(at, length);
        } else if (kind < 9 && !text.empty()) {  // a byte
            text[Number(text.size())] = static_cast<char>(m_random());
        } else {
            const size_t begin = kSnippets.find('~', Number(kSnippets.rfind('~'))) + 1;
            text.insert(at, kSnippets, begin, kSnippets.find('~', begin) - begin);
        }
    }

    std::mt19937 m_random;
};

// Loads a file of rules, and runs them when there are no texts for them; how many categories there were. The engine is
// there for its allowed paths.
int Load(const std::wstring& rules, const std::wstring& texts, const Engine& engine) {
    TiXmlDocument document, textDocument;
    if (!LoadXmlDocument(rules.c_str(), document) || !document.FirstChildElement()) return 0;
    int loaded = 0;
    const bool hasTexts =
        !texts.empty() && LoadXmlDocument(texts.c_str(), textDocument) && textDocument.FirstChildElement();
    const TiXmlElement* element = document.FirstChildElement()->FirstChildElement();
    for (; element; element = element->NextSiblingElement()) {
        const CReference category(new CAppCatagory(engine.get(), engine.get()));
        loaded += category->LoadXml(element);
        if (hasTexts) category->ChangeResID(CResIdTextTable(*textDocument.FirstChildElement()), nullptr);
        category->Mark(0);
        EXPECT_TRUE(!texts.empty() || (category->RunGather() && category->RunClean()));
        category->ReleaseContent();
    }
    return loaded;
}

}  // namespace

TEST(HostileFiles, TwentyThousandMutationsTouchNothingElse) {
    RecordProperty("leaks", "TinyXML loses what it cannot parse");
    const SmallJob job;
    const std::string originals[] = {ReadFileBytes(job.rules), ReadFileBytes(job.texts),
                                     "\xEF\xBB\xBFrules.xml\r\nsub\\text.xml\nä.xml", "[Config]\r\nversion=0012\r\n"};
    // Rules that lost their pattern may take all of this; what lost its base folder finds nothing.
    const TempFolder own;
    SetEnvironmentVariableW(L"DSW_JOB", own.path().c_str());
    SetCurrentDirectoryW(own.path().c_str());
    const Engine engine = NewEngine();
    engine->AddAllowedPath(own.path().c_str());
    const std::wstring file = job.folder.Write(L"mutated");
    int loaded = 0, listed = 0;
    for (unsigned seed = 0; seed < 20'000; ++seed) {
        Mutator mutate(seed);
        const auto kind = static_cast<unsigned>("0000111223"[seed % 10] - '0');
        const std::string mutated = mutate(originals[kind]);
        std::ofstream(file.c_str(), std::ios::binary) << mutated;
        if (kind == 0) loaded += Load(file, L"", engine);
        if (kind == 1) loaded += Load(job.rules, file, engine);
        if (kind == 2) listed += static_cast<int>(std::ranges::count_if(ReadRuleFileList(file), IsSafeRuleFileName));
        if (kind == 3) LoadConfigVersion(file), StoreConfigVersion(file, CurrentConfigVersion());
        if (seed % 20 == 0) {
            own.Write(L"a\\1.tmp");
            ASSERT_TRUE(job.FilesLeft() == 4 && job.HasBystander()) << "at most 20 before " << seed;
        }
        TakeTraceLines();
        ASSERT_FALSE(HasFailure()) << seed << "\n" << mutated;
    }
    SetCurrentDirectoryW(L"C:\\");
    EXPECT_TRUE(loaded > 6000 && listed > 5'000) << loaded << " " << listed;
}
