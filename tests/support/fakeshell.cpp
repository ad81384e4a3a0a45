#include "tests/support/fakeshell.h"

#include <cstring>

namespace {

FakeShell* g_shell = nullptr;

std::string LastName(LPCITEMIDLIST list) {
    const ITEMIDLIST* last = list ? ILFindLastID(list) : nullptr;
    if (!last || !last->mkid.cb) return {};
    return {reinterpret_cast<const char*>(last->mkid.abID), last->mkid.cb - sizeof(USHORT)};
}

class FakeEnumerator : public Fake<IEnumIDList> {
public:
    explicit FakeEnumerator(FakeFolder& folder) : m_folder(folder) { ++folder.liveEnumerators; }
    ~FakeEnumerator() override { --m_folder.liveEnumerators; }

    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = --references;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG, LPITEMIDLIST* out, ULONG* fetched) override {
        *fetched = m_at < m_folder.items.size() ? 1 : 0;
        *out = *fetched ? MakeFakeList(m_folder.items[m_at++]) : nullptr;
        return *fetched ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumIDList**) override { return E_NOTIMPL; }

private:
    FakeFolder& m_folder;
    size_t m_at = 0;
};

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
    if (act) act();
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
    *out = items.empty() ? nullptr : new FakeEnumerator(*this);
    return items.empty() ? S_FALSE : S_OK;
}

HRESULT FakeFolder::GetUIObjectOf(HWND, UINT count, LPCITEMIDLIST* item, REFIID id, UINT*, void** out) {
    *out = nullptr;
    if (FAILED(menuAnswer) || count != 1) return E_FAIL;
    menuItem = LastName(*item);
    return menu.QueryInterface(id, out);
}

HRESULT FakeFolder::ParseDisplayName(HWND, LPBC, LPWSTR name, ULONG*, LPITEMIDLIST* out, ULONG*) {
    *out = nullptr;
    for (const auto& [key, folder] : folders) {
        if (std::wstring(key.begin(), key.end()) == name) *out = MakeFakeList(key);
    }
    return *out ? S_OK : HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
}

FakeShell::FakeShell(HMODULE module)
    : m_getDesktop(module, nullptr, "SHGetDesktopFolder", reinterpret_cast<void*>(&GetDesktop)),
      m_getPath(module, nullptr, "SHGetPathFromIDListW", reinterpret_cast<void*>(&GetPath)),
      m_getInfo(module, nullptr, "SHGetFileInfoW", reinterpret_cast<void*>(&GetInfo)),
      m_endIcon(module, nullptr, "DestroyIcon", reinterpret_cast<void*>(&EndIcon)),
      m_allocate(module, nullptr, "CoTaskMemAlloc", reinterpret_cast<void*>(&Allocate)),
      m_free(module, nullptr, "CoTaskMemFree", reinterpret_cast<void*>(&Free)) {
    g_shell = this;
}

FakeShell::~FakeShell() {
    g_shell = nullptr;
}

bool FakeShell::ok() const {
    return m_getDesktop.ok() && m_getPath.ok() && m_getInfo.ok() && m_endIcon.ok() && m_allocate.ok() && m_free.ok();
}

HRESULT FakeShell::GetDesktop(IShellFolder** out) {
    *out = nullptr;
    if (SUCCEEDED(g_shell->desktopAnswer)) {
        g_shell->desktop.AddRef();
        *out = &g_shell->desktop;
    }
    return g_shell->desktopAnswer;
}

BOOL FakeShell::GetPath(LPCITEMIDLIST item, wchar_t* path) {
    const auto found = g_shell->paths.find(LastName(item));
    if (found == g_shell->paths.end()) return FALSE;
    lstrcpynW(path, found->second.c_str(), MAX_PATH);
    return TRUE;
}

DWORD_PTR FakeShell::GetInfo(const wchar_t* item, DWORD, SHFILEINFOW* info, UINT, UINT flags) {
    const std::string name = LastName(reinterpret_cast<LPCITEMIDLIST>(item));
    g_shell->infoFlags.push_back(flags);
    lstrcpynW(info->szDisplayName, std::wstring(name.begin(), name.end()).c_str(), 80);
    info->hIcon = reinterpret_cast<HICON>(&g_shell->liveIcons);
    ++g_shell->liveIcons;
    return 1;
}

BOOL FakeShell::EndIcon(HICON) {
    --g_shell->liveIcons;
    return TRUE;
}

void* FakeShell::Allocate(SIZE_T bytes) {
    ++g_shell->liveBlocks;
    return g_shell->m_allocate.original<decltype(&CoTaskMemAlloc)>()(bytes);
}

void FakeShell::Free(void* block) {
    if (block) --g_shell->liveBlocks;
    g_shell->m_free.original<decltype(&CoTaskMemFree)>()(block);
}
