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
    // Marks and does not unmark: what is selected is part of the next clean all the same.
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
    const bool isInBuildProgram = ReadInteger(*element, "InBuildProgram", -1) == 1;
    ReadText(*element, "LockFile", LockFile);
    const bool childrenLoaded = LoadChildren(*element);
    SettlePresence(isInBuildProgram);
    return hasName && childrenLoaded;
}

bool CAppGarbageInfo::LoadChildren(const TiXmlElement& element) {
    constexpr const char* kTag = "GarbageCatagory";
    for (const TiXmlElement* child = element.FirstChildElement(kTag); child; child = child->NextSiblingElement(kTag)) {
        // A bad category fails its application, and that the load of the rule file.
        if (!m_children.LoadAndAppend(new CGarbageCatagory(this), child)) return false;
    }
    return true;
}

// Overwrites what the rules said through SetAppPresent while they loaded: a rule whose location can be resolved does
// not make its application present.
void CAppGarbageInfo::SettlePresence(bool isInBuildProgram) {
    Present = isInBuildProgram;
    if (!ProductName.empty()) FindInstalledProduct();
    const CAppCatagory* parent = GetParent();
    if (parent && (parent->CatagoryType == 0 || parent->CatagoryType == 2)) Present = true;
}

void CAppGarbageInfo::FindInstalledProduct() {
    const auto apps = CAppInfoManager::GetInstance();
    if (!apps) return;
    apps->Load();  // again, if another engine's end has emptied the list meanwhile
    InstalledApp product;
    if (!apps->Find(ProductName, product)) return;
    Present = true;
    if (product.displayIcon.empty()) return;
    SHFILEINFOW info{};
    if (SHGetFileInfoW(product.displayIcon.c_str(), 0, &info, sizeof info, SHGFI_ICON | SHGFI_OPENICON)) {
        AppIcon = CIcon(info.hIcon);
    }
}

bool CAppGarbageInfo::SaveXml(TiXmlElement* element) {
    // For display only: "ProductName", "InBuildProgram" and "LockFile" are lost.
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
