#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Security_Proc {

// Everything: GENERIC_ALL and STANDARD_RIGHTS_ALL, 0x101F0000.
constexpr DWORD kFullAccess = GENERIC_ALL | STANDARD_RIGHTS_ALL;

// Builds an ACL from the entries of an older one and further entries for accounts. Only memory running out throws
// (std::bad_alloc), and leaves the list as it was. One thread at a time.
class CAccessControlList {
public:
    // One further entry of the list.
    class CAccessEntry {
    public:
        enum class Kind : uint32_t { Allow = 0, Deny = 1 };

        // `sid` holds a valid SID and is owned from here on.
        CAccessEntry(DWORD mask, std::unique_ptr<BYTE[]> sid, Kind kind) noexcept;
        virtual ~CAccessEntry() = default;
        CAccessEntry(const CAccessEntry&) = delete;
        CAccessEntry& operator=(const CAccessEntry&) = delete;

        Kind GetKind() const noexcept { return m_kind; }
        // The bytes that the entry takes in an ACL.
        DWORD AceSize() const noexcept;
        // Appends the entry to an ACL; one that does not fit is left out.
        void AppendTo(PACL acl) const noexcept;

    private:
        DWORD m_mask;
        std::unique_ptr<BYTE[]> m_sid;
        Kind m_kind;
    };

    // `oldAcl`          the ACL to extend; borrowed, must live as long as the list. May be null, but then the built ACL
    //                   has no room for all of its entries.
    // `addCurrentUser`  adds full access for the current user; an account that cannot be found is left out.
    // `skipOldDeny`     leaves the deny entries of `oldAcl` out.
    CAccessControlList(PACL oldAcl, bool addCurrentUser, bool skipOldDeny);
    virtual ~CAccessControlList() = default;
    CAccessControlList(const CAccessControlList&) = delete;
    CAccessControlList& operator=(const CAccessControlList&) = delete;

    // Adds an allow entry for the account `name` of the computer `system` (null: this one). False when there is no such
    // account; the list is then unchanged.
    bool AddAccount(const wchar_t* name, DWORD mask, const wchar_t* system);
    // Adds an allow entry for Everyone. False when the system cannot make the SID; the list is then unchanged.
    bool AddWellKnownSid(DWORD mask);
    void AddEntry(std::unique_ptr<CAccessEntry> entry);

    // The ACL: the old entries in their order, then the added deny entries, then the added allow entries. Built at the
    // first call and after each change; owned by the list and good until the next change. Null when it cannot be
    // built, as when the old ACL does not tell its size.
    PACL GetAcl();

private:
    std::unique_ptr<BYTE[]> Build() const;
    void CopyOldEntries(PACL acl, DWORD count) const noexcept;
    void AppendEntries(PACL acl, CAccessEntry::Kind kind) const noexcept;

    std::vector<std::unique_ptr<CAccessEntry>> m_entries;
    bool m_skipOldDeny;
    std::unique_ptr<BYTE[]> m_acl;
    // Bytes for m_entries alone.
    DWORD m_size = 0;
    PACL m_oldAcl;
};

}  // namespace Security_Proc
