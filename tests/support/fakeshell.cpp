#include "tests/support/fakeshell.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

FakeShell* g_shell = nullptr;
decltype(&CoTaskMemAlloc) g_allocate = nullptr;
decltype(&CoTaskMemFree) g_free = nullptr;

std::string LastName(LPCITEMIDLIST list) {
    const ITEMIDLIST* last = list ? ILFindLastID(list) : nullptr;
    if (!last || !last->mkid.cb) return {};
    return {reinterpret_cast<const char*>(last->mkid.abID), last->mkid.cb - sizeof(USHORT)};
}

// Made with new, so that the leak check sees one that is not released.
class FakeEnumerator : public Fake<IEnumIDList> {
public:
    explicit FakeEnumerator(const std::vector<std::string>& items) : m_items(items) {}

    ULONG STDMETHODCALLTYPE Release() override {
        delete this;
        return 0;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG, LPITEMIDLIST* out, ULONG* fetched) override {
        *out = m_at < m_items.size() ? MakeFakeList(m_items[m_at++]) : nullptr;
        *fetched = *out ? 1 : 0;
        return *out ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumIDList**) override { return E_NOTIMPL; }

private:
    const std::vector<std::string>& m_items;
    size_t m_at = 0;
};

HRESULT WINAPI GetDesktop(IShellFolder** out) {
    g_shell->desktop.AddRef();
    *out = &g_shell->desktop;
    return S_OK;
}

BOOL WINAPI FindPath(LPCITEMIDLIST item, wchar_t* path) {
    const auto found = g_shell->paths.find(LastName(item));
    return found != g_shell->paths.end() && lstrcpynW(path, found->second.c_str(), MAX_PATH);
}

DWORD_PTR WINAPI GetInfo(const wchar_t* item, DWORD, SHFILEINFOW* info, UINT, UINT flags) {
    const std::string name = LastName(reinterpret_cast<LPCITEMIDLIST>(item));
    g_shell->infoFlags.push_back(flags);
    lstrcpynW(info->szDisplayName, std::wstring(name.begin(), name.end()).c_str(), 80);
    info->hIcon = reinterpret_cast<HICON>(&++g_shell->liveIcons);
    return 1;
}

BOOL WINAPI EndIcon(HICON) {
    --g_shell->liveIcons;
    return TRUE;
}

void* WINAPI Allocate(SIZE_T bytes) {
    ++g_shell->liveBlocks;
    return g_allocate(bytes);
}

void WINAPI Free(void* block) {
    if (block) --g_shell->liveBlocks;
    g_free(block);
}

}  // namespace

LPITEMIDLIST MakeFakeList(const std::string& name) {
    const auto bytes = static_cast<USHORT>(name.size() + sizeof(USHORT));
    auto* list = static_cast<BYTE*>(CoTaskMemAlloc(bytes + sizeof(USHORT)));
    std::memset(list, 0, bytes + sizeof(USHORT));
    std::memcpy(list, &bytes, sizeof bytes);
    std::memcpy(list + sizeof bytes, name.data(), name.size());
    return reinterpret_cast<LPITEMIDLIST>(list);
}

HRESULT FakeMenu::InvokeCommand(LPCMINVOKECOMMANDINFO info) {
    ++calls;
    command = *info;
    verb = info->lpVerb;
    return answer;
}

HRESULT FakeFolder::BindToObject(LPCITEMIDLIST item, LPBC, REFIID id, void** out) {
    const auto found = folders.find(LastName(item));
    *out = nullptr;
    return found == folders.end() ? E_FAIL : found->second->QueryInterface(id, out);
}

HRESULT FakeFolder::EnumObjects(HWND, SHCONTF flags, IEnumIDList** out) {
    listings.push_back(flags);
    // As real folders without items do.
    *out = items.empty() ? nullptr : new FakeEnumerator(items);
    return items.empty() ? S_FALSE : S_OK;
}

HRESULT FakeFolder::GetUIObjectOf(HWND, UINT count, LPCITEMIDLIST* item, REFIID id, UINT*, void** out) {
    *out = nullptr;
    if (FAILED(menuAnswer) || count != 1) return E_FAIL;
    menuItem = LastName(*item);
    return menu.QueryInterface(id, out);
}

FakeShell::FakeShell()
    : m_patches{{"SHGetDesktopFolder", GetDesktop}, {"SHGetPathFromIDListW", FindPath}, {"SHGetFileInfoW", GetInfo},
                {"DestroyIcon", EndIcon},           {"CoTaskMemAlloc", Allocate},       {"CoTaskMemFree", Free}} {
    for (const IatPatch& patch : m_patches)
        EXPECT_TRUE(patch.ok());
    g_shell = this;
    g_allocate = m_patches[4].original<decltype(g_allocate)>();
    g_free = m_patches[5].original<decltype(g_free)>();
}
