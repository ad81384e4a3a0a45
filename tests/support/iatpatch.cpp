#include "tests/support/iatpatch.h"

#include <cstring>

IatPatch::IatPatch(HMODULE module, const char* dll, const char* function, const void* replacement) {
    auto* base = reinterpret_cast<BYTE*>(module ? module : GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!imports.VirtualAddress) return;

    const auto* descriptor = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
    for (; descriptor->Name; ++descriptor) {
        if (dll && _stricmp(reinterpret_cast<const char*>(base + descriptor->Name), dll) != 0) continue;
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
        auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + descriptor->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), function) != 0) continue;
            m_slots.push_back({&slot->u1.Function, slot->u1.Function});
            Write(&slot->u1.Function, reinterpret_cast<ULONGLONG>(replacement));
        }
    }
}

IatPatch::~IatPatch() {
    for (const Slot& slot : m_slots)
        Write(slot.at, slot.old);
}

void IatPatch::Write(ULONGLONG* at, ULONGLONG value) {
    DWORD protection = 0;
    VirtualProtect(at, sizeof *at, PAGE_READWRITE, &protection);
    *at = value;
    VirtualProtect(at, sizeof *at, protection, &protection);
}
