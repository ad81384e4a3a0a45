#pragma once

#include <windows.h>
#include <shlobj.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/iatpatch.h"

// A shell namespace made of fakes, for what the real one cannot show. Items are named by the bytes of their last ID.

// An item-ID list of one item, from the COM task allocator.
LPITEMIDLIST MakeFakeList(const std::string& name);

// COM interfaces have no virtual destructor: nobody deletes through them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Counts references, so that a test can compare them; lives as long as the test says, whatever the count.
template <class I>
class Fake : public I {
public:
    LONG references = 1;

    // Behind the interface's operations, whose places it must not move.
    virtual ~Fake() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        *out = id == __uuidof(I) ? static_cast<I*>(this) : nullptr;
        if (*out) ++references;
        return *out ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
};

#pragma GCC diagnostic pop

// Records what it is asked to do and answers as told.
class FakeMenu : public Fake<IContextMenu> {
public:
    HRESULT answer = S_OK;
    int calls = 0;
    std::string verb;
    CMINVOKECOMMANDINFO command = {};

    HRESULT STDMETHODCALLTYPE QueryContextMenu(HMENU, UINT, UINT, UINT, UINT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InvokeCommand(LPCMINVOKECOMMANDINFO info) override;
    HRESULT STDMETHODCALLTYPE GetCommandString(UINT_PTR, UINT, UINT*, LPSTR, UINT) override { return E_NOTIMPL; }
};

// Lists `items`; binds to the folders in `folders` and nothing else.
class FakeFolder : public Fake<IShellFolder2> {
public:
    std::vector<std::string> items;
    std::map<std::string, FakeFolder*> folders;
    FakeMenu menu;
    HRESULT menuAnswer = S_OK;
    std::string menuItem;           // the last item whose menu was asked for
    std::vector<SHCONTF> listings;  // the flags of each enumeration

    bool Balanced() const { return references == 1 && menu.references == 1; }

    HRESULT STDMETHODCALLTYPE BindToObject(LPCITEMIDLIST, LPBC, REFIID, void**) override;
    HRESULT STDMETHODCALLTYPE EnumObjects(HWND, SHCONTF, IEnumIDList**) override;
    HRESULT STDMETHODCALLTYPE GetUIObjectOf(HWND, UINT, LPCITEMIDLIST*, REFIID, UINT*, void**) override;

    // Nobody asks for the rest.
    HRESULT STDMETHODCALLTYPE ParseDisplayName(HWND, LPBC, LPOLESTR, ULONG*, LPITEMIDLIST*, ULONG*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE BindToStorage(LPCITEMIDLIST, LPBC, REFIID, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CompareIDs(LPARAM, LPCITEMIDLIST, LPCITEMIDLIST) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateViewObject(HWND, REFIID, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAttributesOf(UINT, LPCITEMIDLIST*, SFGAOF*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDisplayNameOf(LPCITEMIDLIST, SHGDNF, STRRET*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetNameOf(HWND, LPCITEMIDLIST, LPCOLESTR, SHGDNF, LPITEMIDLIST*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDefaultSearchGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumSearches(IEnumExtraSearch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDefaultColumn(DWORD, ULONG*, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDefaultColumnState(UINT, SHCOLSTATEF*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDetailsEx(LPCITEMIDLIST, const SHCOLUMNID*, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDetailsOf(LPCITEMIDLIST, UINT, SHELLDETAILS*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MapColumnToSCID(UINT, SHCOLUMNID*) override { return E_NOTIMPL; }
};

// Puts `desktop` in place of the real desktop until the end of the scope, gives items the paths in `paths`, display
// names like their own and an icon each, and counts icons and blocks of the COM task allocator that are alive. One at a
// time; every list that the test executable uses meanwhile must be a fake one.
class FakeShell {
public:
    FakeShell();

    FakeFolder desktop;
    std::map<std::string, std::wstring> paths;
    std::vector<UINT> infoFlags;  // of each query for an item's information
    LONG liveIcons = 0;
    LONG liveBlocks = 0;

private:
    const IatPatch m_patches[6];
};
