#include "tree/appgarbageinfo.h"

#include <shellapi.h>
#include <tinyxml.h>

#include "sysservices/appinfomanager.h"
#include "tree/appcatagory.h"
#include "tree/gathercheckprocimpl.h"
#include "tree/gatherprocimpl.h"
#include "tree/loadresidtextimpl.h"
#include "tree/recordattribute.h"
#include "tree/volumeprocimpl.h"

CAppGarbageInfo::CAppGarbageInfo(CAppCatagory* parent) : IAppGarbageInfo(parent), CVolumeProc(parent) {}

const _DSW_App_Info_* CAppGarbageInfo::GetInfo() {
    RefreshText();
    return this;
}

bool CAppGarbageInfo::Discard() {
    // A copy: on its way up the size must not change under the levels that subtract it.
    const uint64_t size = GetTotalSize();
    if (CAppCatagory* parent = GetParent()) parent->SubtractVolume(&size);
    // Marks, and does not unmark, on purpose.
    return Mark(0);
}

bool CAppGarbageInfo::HostNotify1(uint64_t arg) {
    CAppCatagory* parent = GetParent();
    return !parent || parent->HostNotify1(arg);
}

bool CAppGarbageInfo::HostNotify2(uint64_t arg) {
    CAppCatagory* parent = GetParent();
    return !parent || parent->HostNotify2(arg);
}

bool CAppGarbageInfo::AskHostToGoOn() {
    return HostNotify2(reinterpret_cast<uint64_t>(static_cast<IAppGarbageInfo*>(this)));
}

void CAppGarbageInfo::ChangeResIDOfChildren(const CResIdTextTable& table, ITextSelector* selector) {
    m_children.VisitLocked([&](CGarbageCatagory& child) {
        child.ChangeResID(table, selector);
        return true;
    });
}

bool CAppGarbageInfo::LoadXml(const TiXmlElement* element) {
    LoadResID(element);
    LoadSelState(element);
    const bool hasName = ReadText(*element, "Name", Name);
    LargeIcon = ReadInteger(*element, "LargeIcon", LargeIcon);
    ReadText(*element, "Icon", Icon);
    ReadText(*element, "ProductName", ProductName);
    // Exactly 1, on purpose: 2 counts as absent.
    const bool isInBuildProgram = ReadInteger(*element, "InBuildProgram", -1) == 1;
    ReadText(*element, "LockFile", LockFile);
    const bool childrenLoaded = LoadChildren(*element);
    // Also when a child failed, on purpose.
    SettlePresence(isInBuildProgram);
    // Without a name the load fails, but everything read is kept, on purpose.
    return hasName && childrenLoaded;
}

bool CAppGarbageInfo::LoadChildren(const TiXmlElement& element) {
    constexpr const char* kTag = "GarbageCatagory";
    for (const TiXmlElement* child = element.FirstChildElement(kTag); child; child = child->NextSiblingElement(kTag)) {
        // A bad category stops its application; the categories before it stay, on purpose.
        if (!m_children.LoadAndAppend(new CGarbageCatagory(this), child)) return false;
    }
    return true;
}

// Overwrites what the rules said through SetAppPresent while they loaded, on purpose.
void CAppGarbageInfo::SettlePresence(bool isInBuildProgram) {
    Present = isInBuildProgram;
    if (!ProductName.empty()) FindInstalledProduct();
    const CAppCatagory* parent = GetParent();
    if (parent && (parent->CatagoryType == 0 || parent->CatagoryType == 2)) Present = true;
}

// An icon that cannot be had leaves the application present, on purpose.
void CAppGarbageInfo::FindInstalledProduct() {
    const auto apps = CAppInfoManager::GetInstance();
    if (!apps) return;
    apps->Load();  // again, if another engine's end has emptied the list meanwhile
    CInstalledApp product;
    if (!apps->Find(ProductName, product)) return;
    Present = true;
    if (product.displayIcon.empty()) return;
    SHFILEINFOW info{};
    if (SHGetFileInfoW(product.displayIcon.c_str(), 0, &info, sizeof info, SHGFI_ICON | SHGFI_OPENICON)) {
        AppIcon = CIcon(info.hIcon);
    }
}

bool CAppGarbageInfo::SaveXml(TiXmlElement* element) {
    // Linked before its attributes are set, and without most of what was loaded, on purpose: it is for display.
    TiXmlElement* own = element->LinkEndChild(new TiXmlElement("AppInfo"))->ToElement();
    WriteTextIfAny(*own, "Name", Name);
    own->SetAttribute("LargeIcon", LargeIcon);
    WriteTextIfAny(*own, "Icon", Icon);
    return m_children.VisitLocked([own](CGarbageCatagory& child) { return child.SaveXml(own); });
}

template class CVolumeProc<CAppCatagory>;
template class CGatherProc<CAppGarbageInfo, CGarbageCatagory>;
template class CGatherCheckProc<IAppCatagory, IAppGarbageInfo, IGarbageCatagory>;
template class CLoadResIdText<CAppGarbageInfo>;
