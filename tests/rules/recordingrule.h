#pragma once

#include <gmock/gmock.h>
#include <tinyxml.h>

#include <functional>

#include "rules/garbageinfo.h"
#include "sysservices/appinfomanager.h"
#include "tests/support/iatpatch.h"
#include "tests/support/tempfolder.h"

// A rule without a tree above it. It keeps what a host would be told and plays the host's answers.
class RecordingRule final : public CGarbageInfo {
public:
    RecordingRule() : CGarbageInfo(nullptr, nullptr) {}

    // From the attributes and the children of a "GarbageInfo" element.
    bool Load(const std::string& attributes, const std::string& children = {}) {
        TiXmlDocument document;
        document.Parse(("<GarbageInfo " + attributes + ">" + children + "</GarbageInfo>").c_str());
        return !document.Error() && LoadXml(document.RootElement());
    }
    bool ReportFound(const CString& item, const uint64_t* size, uint64_t extra) override {
        const bool goOn = CGarbageInfo::ReportFound(item, size, extra);
        found.push_back(item);
        onFound();
        return goOn && found.size() < stopAt;
    }
    bool ReportEmptied(const CString& item, const uint64_t* size, uint64_t extra, bool deleted, uint32_t n) override {
        emptied.push_back((deleted ? L"+" : L"-") + item.substr(item.rfind(L'\\') + 1));
        onEmptied();
        return CGarbageInfo::ReportEmptied(item, size, extra, deleted, n);
    }

    size_t stopAt = SIZE_MAX;  // the find that is answered false
    std::function<void()> onFound = [] {}, onEmptied = [] {};
    std::vector<CString> found, emptied;  // "+name" deleted, "-name" not deleted
};

// A temporary folder that rules reach through the environment variable DSW_BASE.
class Rules : public testing::Test {
protected:
    Rules() { SetEnvironmentVariableW(L"DSW_BASE", m_folder.path().c_str()); }
    ~Rules() override { CAppInfoManager::ReleaseInstance(); }

    std::vector<CString> Listed(IGarbageInfo& rule) const {
        struct Visitor final : IGarbageInfo::IVisitor {
            void OnItem(const wchar_t* path, uint64_t, IGarbageInfo*) override { names.push_back(path + skipped); }
            size_t skipped;
            std::vector<CString> names;
        } visitor;
        visitor.skipped = m_folder.path().size() + 1;
        rule.EnumFound(&visitor);
        return visitor.names;
    }

    TempFolder m_folder;
    const std::string m_files = "FolderEnvDir='DSW_BASE' IsFolder='1' ";
    const std::string m_pattern = m_files + "Filter='*.log' ", m_loop = m_files + "LoopPath='1' ";
};
