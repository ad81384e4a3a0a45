#include "sysservices/registrykey.h"

CRegistryKey::CRegistryKey(HKEY root, const wchar_t* path, REGSAM access) noexcept {
    if (RegOpenKeyExW(root, path, 0, access, &m_key) != ERROR_SUCCESS) m_key = nullptr;
}

CRegistryKey::~CRegistryKey() {
    if (m_key) RegCloseKey(m_key);
}
