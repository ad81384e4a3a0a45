#pragma once

#include <cstdint>

#include "tree/ownedtext.h"

// The plain records that a node's GetInfo hands to the host, packed to 4 bytes. The record belongs to the node and
// lives as long as it; hosts read it and change nothing. Texts are UTF-16, null-terminated and never null after
// GetInfo; read them through the ...Text pointers, which GetInfo refreshes and the next GetInfo or ChangeResID may
// move.

constexpr uint32_t kDefaultCatagoryType = 3;

#pragma pack(push, 4)

struct _DSW_AppCatagory_Info_ {
    uint32_t CatagoryType =
        kDefaultCatagoryType;  // 0 and 2 make every application in it present; 1 and 3 mean what the host wants
    COwnedText Name;
    const wchar_t* NameText = nullptr;
    int32_t LargeIcon = 0;  // icon index or resource number, for the host
    COwnedText Icon;
    const wchar_t* IconText = nullptr;  // icon reference, for the host; may be empty

    void RefreshText() noexcept {
        NameText = Name.c_str();
        IconText = Icon.c_str();
    }
};

struct _DSW_App_Info_ {
    COwnedText Name;
    const wchar_t* NameText = nullptr;
    int32_t LargeIcon = 0;
    COwnedText Icon;
    const wchar_t* IconText = nullptr;

    void RefreshText() noexcept {
        NameText = Name.c_str();
        IconText = Icon.c_str();
    }
};

struct _DSW_Garbage_Catagory_ {
    COwnedText Name;
    const wchar_t* NameText = nullptr;
    int32_t CatagoryID = 0;  // numeric identity, for the host

    void RefreshText() noexcept { NameText = Name.c_str(); }
};

#pragma pack(pop)

static_assert(alignof(_DSW_AppCatagory_Info_) == 4 && sizeof(_DSW_AppCatagory_Info_) == 40);
static_assert(alignof(_DSW_App_Info_) == 4 && sizeof(_DSW_App_Info_) == 36);
static_assert(alignof(_DSW_Garbage_Catagory_) == 4 && sizeof(_DSW_Garbage_Catagory_) == 20);
