#pragma once

#include "rules/garbageinfo.h"
#include "tree/childlist.h"
#include "tree/gatherproc.h"
#include "tree/igarbagecatagory.h"
#include "tree/loadresidtext.h"
#include "tree/volumeproc.h"

class CAppGarbageInfo;

// A "GarbageCatagory" element and its rules.
class CGarbageCatagory final : public IGarbageCatagory,
                               public _DSW_Garbage_Catagory_,
                               public CVolumeProc<CAppGarbageInfo>,
                               public CGatherProc<CGarbageCatagory, CGarbageInfo>,
                               public CLoadResIdText<CGarbageCatagory> {
public:
    explicit CGarbageCatagory(CAppGarbageInfo* parent);

    // IGarbageCatagory
    IGarbageInfo* GetFirstChild() override { return m_children.First(); }
    IGarbageInfo* GetNextChild(IGarbageInfo* previous) override { return m_children.Next(previous); }
    const _DSW_Garbage_Catagory_* GetInfo() override;
    void SetAppPresent(bool present) override;
    bool HostNotify1(uint64_t arg) override;

    // CVolumeProc
    bool LoadXml(const TiXmlElement* element) override;
    bool SaveXml(TiXmlElement* element) override;
    void ReleaseContent() noexcept override { m_children.Release(); }

    // For the templates: the question before the children are visited, and the localisation of the children (rules
    // have no names).
    bool AskHostToGoOn();
    void ChangeResIDOfChildren(const CResIdTextTable&, ITextSelector*) {}

private:
    void LoadRules(const TiXmlElement& holder);

    CChildList<CGarbageInfo, IGarbageInfo> m_children;
};

extern template class CVolumeProc<CAppGarbageInfo>;
extern template class CGatherProc<CGarbageCatagory, CGarbageInfo>;
extern template class CLoadResIdText<CGarbageCatagory>;
