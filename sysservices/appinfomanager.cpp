#include "sysservices/appinfomanager.h"

#include <windows.h>

#include <atomic>
#include <initializer_list>
#include <utility>

#include "sysservices/registrykey.h"

namespace {

using InstalledApps = std::map<CString, InstalledApp>;

// The system spells it "Uninstall"; key names compare without case.
constexpr wchar_t kUninstallPath[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\UnInstall";

// Bytes: a name of 130 characters or more does not fit with its terminator, and its program is not listed.
constexpr DWORD kValueBytes = 260;

constexpr DWORD kNameChars = 260;
constexpr DWORD kModulePathChars = 260;

// Paths of up to this length are lower-cased without an allocation.
constexpr size_t kStackPathChars = 512;

std::atomic<std::shared_ptr<CAppInfoManager>> g_instance;

// In lower case. An executable in the root of a drive protects the whole drive. A path that does not fit is cut off by
// the call and leaves a folder above the host's, which protects more; an empty one stays empty.
CString HostFolder() {
    wchar_t path[kModulePathChars];
    const std::wstring_view file(path, GetModuleFileNameW(nullptr, path, kModulePathChars));
    return ToLower(file.substr(0, file.rfind(L'\\')));
}

// "file,index" becomes "file". A text that begins with a comma is kept whole.
void CutIconIndex(CString& icon) {
    const size_t comma = icon.find(L',');
    if (comma != 0 && comma != CString::npos) icon.resize(comma);
}

void ReadEntry(HKEY root, const CString& keyPath, REGSAM view, InstalledApps& apps) {
    const CRegistryKey key(root, keyPath.c_str(), KEY_QUERY_VALUE | view);
    InstalledApp app;
    if (!key || !key.ReadText(L"DisplayName", kValueBytes, app.displayName)) return;
    app.displayName = ToLower(app.displayName);
    // Who is read first keeps the name: the machine's entries before the user's.
    if (apps.contains(app.displayName)) return;

    app.keyPath = keyPath;
    // Missing or too long leaves them empty.
    key.ReadText(L"DisplayVersion", kValueBytes, app.displayVersion);
    key.ReadText(L"DisplayIcon", kValueBytes, app.displayIcon);
    CutIconIndex(app.displayIcon);
    CString name = app.displayName;
    apps.emplace(std::move(name), std::move(app));
}

void ReadView(HKEY root, REGSAM view, InstalledApps& apps) {
    const CRegistryKey key(root, kUninstallPath, KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | view);
    if (!key) return;
    wchar_t name[kNameChars];
    for (DWORD index = 0;; ++index) {
        DWORD length = kNameChars;
        if (RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return;
        ReadEntry(root, JoinPath(kUninstallPath, {name, length}), view, apps);
    }
}

}  // namespace

std::shared_ptr<CAppInfoManager> CAppInfoManager::GetInstance() noexcept {
    std::shared_ptr<CAppInfoManager> instance = g_instance;
    if (instance) return instance;
    try {
        std::shared_ptr<CAppInfoManager> created(new CAppInfoManager);
        // A race of two creators ends with one instance for both.
        return g_instance.compare_exchange_strong(instance, created) ? created : instance;
    } catch (...) {
        return nullptr;
    }
}

void CAppInfoManager::ReleaseInstance() noexcept {
    g_instance.store(nullptr);
}

CAppInfoManager::CAppInfoManager() : m_hostFolder(HostFolder()) {}

CAppInfoManager::~CAppInfoManager() {
    Clear();
}

void CAppInfoManager::Load() noexcept {
    const CLockGuard guard(m_lock);
    if (m_loaded) return;
    try {
        InstalledApps apps;
        for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
            for (const REGSAM view : std::initializer_list<REGSAM>{KEY_WOW64_64KEY, 0})
                ReadView(root, view, apps);
        }
        m_apps.swap(apps);
        m_loaded = true;
    } catch (...) {
        // Out of memory: half a list would show installed programs as absent until the next Clear.
    }
}

bool CAppInfoManager::Find(std::wstring_view displayName, InstalledApp& out) noexcept {
    const CLockGuard guard(m_lock);
    try {
        const auto found = m_apps.find(ToLower(displayName));
        if (found != m_apps.end()) {
            out = found->second;
            return true;
        }
    } catch (...) {
        // Out of memory: not found.
    }
    out = {};
    return false;
}

// Anywhere in the path, not as whole names: for "C:\Host" also "\\?\C:\Host" and "C:\Hostile" are protected. Another
// spelling of the folder (doubled separators, short names) is not seen.
bool CAppInfoManager::IsInHostFolder(std::wstring_view path) const noexcept {
    // Lower-casing keeps the length.
    if (m_hostFolder.empty() || path.size() < m_hostFolder.size()) return false;
    if (path.size() <= kStackPathChars) {
        wchar_t lower[kStackPathChars];
        // What cannot be compared may be one of the host's files.
        if (!ToLower(path, lower)) return true;
        return std::wstring_view(lower, path.size()).find(m_hostFolder) != std::wstring_view::npos;
    }
    try {
        return ToLower(path).find(m_hostFolder) != CString::npos;
    } catch (...) {
        return true;
    }
}

void CAppInfoManager::Clear() noexcept {
    const CLockGuard guard(m_lock);
    m_apps.clear();
    m_loaded = false;
}
