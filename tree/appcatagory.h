#pragma once

#include "tree/appgarbageinfo.h"
#include "tree/childlist.h"
#include "tree/gatherproc.h"
#include "tree/iappcatagory.h"
#include "tree/loadresidtext.h"
#include "tree/volumeproc.h"

class CDregsweep;
class IDregsweep;

// An "AppCategoryInfo" element and its applications.
class CAppCatagory final : public IAppCatagory,
                           public _DSW_AppCatagory_Info_,
                           public CVolumeProc<CDregsweep>,
                           public CGatherProc<CAppCatagory, CAppGarbageInfo>,
                           public CLoadResIdText<CAppCatagory> {
public:
    // Two views of one engine, whose class is not known down here; both may be null.
    CAppCatagory(CDregsweep* engine, IDregsweep* notifications) : CVolumeProc(engine), m_notifications(notifications) {}

    // IAppCatagory
    IAppGarbageInfo* GetFirstChild() override { return m_children.First(); }
    IAppGarbageInfo* GetNextChild(IAppGarbageInfo* previous) override { return m_children.Next(previous); }
    const _DSW_AppCatagory_Info_* GetInfo() override;
    bool HostNotify1(uint64_t arg) override;
    bool HostNotify2(uint64_t arg) override;
    bool HostNotify3(uint64_t arg) override;

    // CVolumeProc
    bool LoadXml(const TiXmlElement* element) override;
    bool SaveXml(TiXmlElement* element) override;
    void ReleaseContent() noexcept override { m_children.Release(); }

    // For the templates: the question before the children are visited, and the localisation of the children.
    bool AskHostToGoOn();
    void ChangeResIDOfChildren(const CResIdTextTable& table, ITextSelector* selector);

private:
    bool LoadChildren(const TiXmlElement& element);

    IDregsweep* const m_notifications;  // kept alive by CVolumeProc
    CChildList<CAppGarbageInfo, IAppGarbageInfo> m_children;
};

extern template class CVolumeProc<CDregsweep>;
extern template class CGatherProc<CAppCatagory, CAppGarbageInfo>;
extern template class CLoadResIdText<CAppCatagory>;
