#include "tree/appcatagory.h"

#include <tinyxml.h>

#include "dregsweep/idregsweep.h"
#include "tree/gathercheckprocimpl.h"
#include "tree/gatherprocimpl.h"
#include "tree/loadresidtextimpl.h"
#include "tree/recordattribute.h"

const _DSW_AppCatagory_Info_* CAppCatagory::GetInfo() {
    RefreshText();
    return this;
}

bool CAppCatagory::HostNotify1(uint64_t arg) {
    return !m_notifications || m_notifications->HostNotify1(arg);
}

bool CAppCatagory::HostNotify2(uint64_t arg) {
    return !m_notifications || m_notifications->HostNotify2(arg);
}

bool CAppCatagory::HostNotify3(uint64_t arg) {
    return !m_notifications || m_notifications->HostNotify3(arg);
}

bool CAppCatagory::AskHostToGoOn() {
    return HostNotify3(reinterpret_cast<uint64_t>(static_cast<IAppCatagory*>(this)));
}

void CAppCatagory::ChangeResIDOfChildren(const CResIdTextTable& table, ITextSelector* selector) {
    m_children.VisitLocked([&](CAppGarbageInfo& child) {
        child.ChangeResID(table, selector);
        return true;
    });
}

bool CAppCatagory::LoadXml(const TiXmlElement* element) {
    LoadResID(element);
    LoadSelState(element);
    const bool hasName = ReadText(*element, "Name", Name);
    CatagoryType = static_cast<uint32_t>(ReadInteger(*element, "CatagoryType", kDefaultCatagoryType));
    LargeIcon = ReadInteger(*element, "LargeIcon", LargeIcon);
    ReadText(*element, "Icon", Icon);
    const bool childrenLoaded = LoadChildren(*element);
    return hasName && childrenLoaded;
}

bool CAppCatagory::LoadChildren(const TiXmlElement& element) {
    constexpr const char* kTag = "AppInfo";
    for (const TiXmlElement* child = element.FirstChildElement(kTag); child; child = child->NextSiblingElement(kTag)) {
        // A bad application fails its category, and that the load of the rule file.
        if (!m_children.LoadAndAppend(new CAppGarbageInfo(this), child)) return false;
    }
    return true;
}

// Writes into the given element. For display only: "ResID" and "SelState" are lost, here and below.
bool CAppCatagory::SaveXml(TiXmlElement* element) {
    WriteTextIfAny(*element, "Name", Name);
    element->SetAttribute("CatagoryType", static_cast<int>(CatagoryType));
    element->SetAttribute("LargeIcon", LargeIcon);
    WriteTextIfAny(*element, "Icon", Icon);
    return m_children.VisitLocked([element](CAppGarbageInfo& child) { return child.SaveXml(element); });
}

template class CGatherProc<CAppCatagory, CAppGarbageInfo>;
template class CGatherCheckProc<IAppCatagory, IAppCatagory, IAppGarbageInfo>;
template class CLoadResIdText<CAppCatagory>;
