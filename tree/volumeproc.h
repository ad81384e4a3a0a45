#pragma once

#include <cstdint>

#include "rules/garbagevolume.h"
#include "sysservices/text.h"

class TiXmlElement;

// The link of a node to its parent. Found and emptied items climb it to the engine, every level keeping its own totals
// on the way; questions that only the engine can answer climb it too. The parent is null at the top.
//
// A child keeps its parent alive by a counted reference; the parent breaks the cycle with ReleaseContent.
template <class Parent>
class CVolumeProc : public virtual CGarbageVolume {
public:
    explicit CVolumeProc(Parent* parent) noexcept;
    ~CVolumeProc() override;
    CVolumeProc(const CVolumeProc&) = delete;
    CVolumeProc& operator=(const CVolumeProc&) = delete;

    // May a refused folder or file be unlocked and tried again?
    virtual bool QueryUpgradeMode();
    // May the folder be scanned? `withFiles` is carried up but decides nothing: the engine looks at the path alone.
    virtual bool QueryPathAllowed(const CString& path, bool withFiles);
    // The answers of these three are the host's: true to go on. A level's totals are not rolled back after a refusal.
    virtual bool ReportProgress(uint32_t begin, uint32_t end);
    virtual bool ReportFound(const CString& item, const uint64_t* size, uint64_t extra);
    // Goes up whether or not `subtract` is set: the host hears of what could not be deleted, too.
    virtual bool ReportEmptied(const CString& item, const uint64_t* size, uint64_t extra, bool subtract,
                               uint32_t count);
    // Takes the size out of the parents' totals first, then out of this level's: `size` must be none of these totals.
    virtual void SubtractVolume(const uint64_t* size);
    // Fill the node from its element of the rule file, and write it below `element`.
    virtual bool LoadXml(const TiXmlElement* /*element*/) { return false; }
    virtual bool SaveXml(TiXmlElement* /*element*/) { return false; }
    // The answers of the topmost object.
    virtual bool IsUpgradeMode() { return false; }
    virtual bool IsPathAllowed(const CString& /*path*/) { return true; }

    // Lets go of the children, and of theirs.
    virtual void ReleaseContent() noexcept {}

protected:
    Parent* GetParent() const noexcept { return m_parent; }

private:
    Parent* m_parent;
};
