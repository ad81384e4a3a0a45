#include "sysservices/accesscontrollist.h"

#include <cstddef>
#include <utility>

namespace Security_Proc {
namespace {

constexpr DWORD kUserNameChars = 260;
constexpr DWORD kDomainNameChars = 520;
// Added entries claim to be inherited although they stand on the object itself: the next inheritance from the folder
// above may drop them.
constexpr DWORD kAllowFlags = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE | INHERITED_ACE;

PACL AsAcl(const std::unique_ptr<BYTE[]>& bytes) noexcept {
    return reinterpret_cast<PACL>(bytes.get());
}

}  // namespace

CAccessControlList::CAccessEntry::CAccessEntry(DWORD mask, std::unique_ptr<BYTE[]> sid, Kind kind) noexcept
    : m_mask(mask),
      m_sid(std::move(sid)),
      m_kind(kind) {}

DWORD CAccessControlList::CAccessEntry::AceSize() const noexcept {
    return GetLengthSid(m_sid.get()) + offsetof(ACCESS_ALLOWED_ACE, SidStart);
}

void CAccessControlList::CAccessEntry::AppendTo(PACL acl) const noexcept {
    if (m_kind == Kind::Deny) {
        AddAccessDeniedAce(acl, ACL_REVISION_DS, m_mask, m_sid.get());
    } else {
        AddAccessAllowedAceEx(acl, ACL_REVISION_DS, kAllowFlags, m_mask, m_sid.get());
    }
}

CAccessControlList::CAccessControlList(PACL oldAcl, bool addCurrentUser, bool skipOldDeny)
    : m_skipOldDeny(skipOldDeny),
      m_oldAcl(oldAcl) {
    if (!addCurrentUser) return;
    wchar_t user[kUserNameChars];
    DWORD userChars = kUserNameChars;
    if (GetUserNameW(user, &userChars)) AddAccount(user, kFullAccess, /*system=*/nullptr);
}

bool CAccessControlList::AddAccount(const wchar_t* name, DWORD mask, const wchar_t* system) {
    wchar_t domain[kDomainNameChars];
    DWORD domainChars = kDomainNameChars;
    DWORD sidBytes = 0;
    SID_NAME_USE use;
    LookupAccountNameW(system, name, nullptr, &sidBytes, domain, &domainChars, &use);
    if (sidBytes == 0) return false;

    auto sid = std::make_unique<BYTE[]>(sidBytes);
    domainChars = kDomainNameChars;  // the first call has written over it
    if (!LookupAccountNameW(system, name, sid.get(), &sidBytes, domain, &domainChars, &use)) return false;
    if (!IsValidSid(sid.get())) return false;
    AddEntry(std::make_unique<CAccessEntry>(mask, std::move(sid), CAccessEntry::Kind::Allow));
    return true;
}

bool CAccessControlList::AddWellKnownSid(DWORD mask) {
    DWORD sidBytes = SECURITY_MAX_SID_SIZE;
    auto sid = std::make_unique<BYTE[]>(sidBytes);
    if (!CreateWellKnownSid(WinWorldSid, nullptr, sid.get(), &sidBytes)) return false;
    AddEntry(std::make_unique<CAccessEntry>(mask, std::move(sid), CAccessEntry::Kind::Allow));
    return true;
}

void CAccessControlList::AddEntry(std::unique_ptr<CAccessEntry> entry) {
    const DWORD size = entry->AceSize();
    m_entries.push_back(std::move(entry));
    m_size += size;
    m_acl.reset();
}

PACL CAccessControlList::GetAcl() {
    if (!m_acl) m_acl = Build();
    return AsAcl(m_acl);
}

std::unique_ptr<BYTE[]> CAccessControlList::Build() const {
    // The header is counted among the old ACL's bytes: without one the last entries may not fit.
    ACL_SIZE_INFORMATION old = {};
    if (m_oldAcl && !GetAclInformation(m_oldAcl, &old, sizeof old, AclSizeInformation)) return nullptr;
    const DWORD size = m_size + old.AclBytesInUse;

    auto bytes = std::make_unique<BYTE[]>(size);
    ACL* const acl = AsAcl(bytes);
    if (!InitializeAcl(acl, size, ACL_REVISION_DS)) return nullptr;
    // Not the canonical order: the old entries decide first, so what they deny stays denied.
    CopyOldEntries(acl, old.AceCount);
    AppendEntries(acl, CAccessEntry::Kind::Deny);
    AppendEntries(acl, CAccessEntry::Kind::Allow);
    return bytes;
}

// Here and in AppendEntries an entry that cannot be added is passed over; the others still count.
void CAccessControlList::CopyOldEntries(PACL acl, DWORD count) const noexcept {
    for (DWORD i = 0; i < count; ++i) {
        void* entry = nullptr;
        if (!GetAce(m_oldAcl, i, &entry)) continue;
        const auto* header = static_cast<const ACE_HEADER*>(entry);
        if (m_skipOldDeny && header->AceType == ACCESS_DENIED_ACE_TYPE) continue;
        // The ACL keeps its own revision, 4, which is the higher.
        AddAce(acl, ACL_REVISION, MAXDWORD, entry, header->AceSize);
    }
}

void CAccessControlList::AppendEntries(PACL acl, CAccessEntry::Kind kind) const noexcept {
    for (const auto& entry : m_entries) {
        if (entry->GetKind() == kind) entry->AppendTo(acl);
    }
}

}  // namespace Security_Proc
