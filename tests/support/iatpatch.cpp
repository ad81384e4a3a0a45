#include "tests/support/iatpatch.h"

#include <cstring>

namespace {

// Each import by name, with its slot.
template <class Visit>
void EachImport(HMODULE module, Visit visit) {
    auto* base = reinterpret_cast<BYTE*>(module ? module : GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!imports.VirtualAddress) return;

    const auto* descriptor = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
    for (; descriptor->Name; ++descriptor) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
        auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + descriptor->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            visit(reinterpret_cast<const char*>(base + descriptor->Name), reinterpret_cast<const char*>(import->Name),
                  slot->u1.Function);
        }
    }
}

}  // namespace

IatPatch::IatPatch(HMODULE module, const char* dll, const char* function, const void* replacement) {
    EachImport(module, [&](const char* library, const char* name, ULONGLONG& slot) {
        if ((dll && _stricmp(library, dll) != 0) || std::strcmp(name, function) != 0) return;
        m_slots.push_back({&slot, slot});
        Write(&slot, reinterpret_cast<ULONGLONG>(replacement));
    });
}

std::vector<std::pair<std::string, std::string>> ImportsOf(HMODULE module) {
    std::vector<std::pair<std::string, std::string>> imports;
    EachImport(module, [&](const char* library, const char* name, ULONGLONG&) { imports.emplace_back(library, name); });
    return imports;
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
