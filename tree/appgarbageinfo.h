#pragma once

#include "sysservices/icon.h"
#include "tree/childlist.h"
#include "tree/garbagecatagory.h"
#include "tree/gatherproc.h"
#include "tree/iappgarbageinfo.h"
#include "tree/loadresidtext.h"
#include "tree/volumeproc.h"

class CAppCatagory;

// An "AppInfo" element and its garbage categories.
class CAppGarbageInfo final : public IAppGarbageInfo,
                              public _DSW_App_Info_,
                              public CVolumeProc<CAppCatagory>,
                              public CGatherProc<CAppGarbageInfo, CGarbageCatagory>,
                              public CLoadResIdText<CAppGarbageInfo> {
public:
    explicit CAppGarbageInfo(CAppCatagory* parent);

    // IAppGarbageInfo
    IGarbageCatagory* GetFirstChild() override { return m_children.First(); }
    IGarbageCatagory* GetNextChild(IGarbageCatagory* previous) override { return m_children.Next(previous); }
    const _DSW_App_Info_* GetInfo() override;
    HICON GetAppIcon() override { return AppIcon.get(); }
    bool IsAppPresent() override { return Present; }
    bool Discard() override;
    bool HostNotify1(uint64_t arg) override;
    bool HostNotify2(uint64_t arg) override;
    const wchar_t* GetLockFile() override { return LockFile.c_str(); }

    // CVolumeProc
    bool LoadXml(const TiXmlElement* element) override;
    bool SaveXml(TiXmlElement* element) override;
    void ReleaseContent() noexcept override { m_children.Release(); }

    // For the templates: the question before the children are visited, and the localisation of the children.
    bool AskHostToGoOn();
    void ChangeResIDOfChildren(const CResIdTextTable& table, ITextSelector* selector);

    void SetPresent(bool present) noexcept { Present = present; }

private:
    bool LoadChildren(const TiXmlElement& element);
    void SettlePresence(bool isInBuildProgram);
    void FindInstalledProduct();

    CChildList<CGarbageCatagory, IGarbageCatagory> m_children;
    bool Present = false;
    CIcon AppIcon;
    CString LockFile;
    CString ProductName;
};

extern template class CVolumeProc<CAppCatagory>;
extern template class CGatherProc<CAppGarbageInfo, CGarbageCatagory>;
extern template class CLoadResIdText<CAppGarbageInfo>;
