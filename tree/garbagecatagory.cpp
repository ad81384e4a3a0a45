#include "tree/garbagecatagory.h"

#include <tinyxml.h>

#include "rules/systemversion.h"
#include "sysservices/nothrow.h"
#include "tree/appgarbageinfo.h"
#include "tree/gathercheckprocimpl.h"
#include "tree/gatherprocimpl.h"
#include "tree/loadresidtextimpl.h"
#include "tree/recordattribute.h"
#include "tree/volumeprocimpl.h"

CGarbageCatagory::CGarbageCatagory(CAppGarbageInfo* parent) : IGarbageCatagory(parent), CVolumeProc(parent) {}

const _DSW_Garbage_Catagory_* CGarbageCatagory::GetInfo() {
    RefreshText();
    return this;
}

void CGarbageCatagory::SetAppPresent(bool present) {
    if (CAppGarbageInfo* parent = GetParent()) parent->SetPresent(present);
}

bool CGarbageCatagory::HostNotify1(uint64_t arg) {
    CAppGarbageInfo* parent = GetParent();
    return !parent || parent->HostNotify1(arg);
}

bool CGarbageCatagory::AskHostToGoOn() {
    return HostNotify1(reinterpret_cast<uint64_t>(static_cast<IGarbageCatagory*>(this)));
}

bool CGarbageCatagory::LoadXml(const TiXmlElement* element) {
    LoadResID(element);
    LoadSelState(element);
    const bool hasName = ReadText(*element, "Name", Name);
    CatagoryID = ReadInteger(*element, "CatagoryID", 0);
    const TiXmlElement* rulesForXp = IsXpOrOlder() ? element->FirstChildElement("XP") : nullptr;
    LoadRules(rulesForXp ? *rulesForXp : *element);
    return hasName;
}

void CGarbageCatagory::LoadRules(const TiXmlElement& holder) {
    constexpr const char* kTag = "GarbageInfo";
    for (const TiXmlElement* child = holder.FirstChildElement(kTag); child; child = child->NextSiblingElement(kTag)) {
        // A bad rule costs only itself, unlike a bad application or category.
        NoThrow(false, [&] { return m_children.LoadAndAppend(new CGarbageInfo(this, this), child); });
    }
}

bool CGarbageCatagory::SaveXml(TiXmlElement* element) {
    // For display only: "CatagoryID" is lost, and whether the rules came from "XP".
    TiXmlElement* own = element->LinkEndChild(new TiXmlElement("GarbageCatagory"))->ToElement();
    WriteTextIfAny(*own, "Name", Name);
    return m_children.VisitLocked([own](CGarbageInfo& child) { return child.SaveXml(own); });
}

template class CVolumeProc<CAppGarbageInfo>;
template class CGatherProc<CGarbageCatagory, CGarbageInfo>;
template class CGatherCheckProc<IAppGarbageInfo, IGarbageCatagory, IGarbageInfo>;
template class CLoadResIdText<CGarbageCatagory>;
template class CVolumeProc<CGarbageCatagory>;
