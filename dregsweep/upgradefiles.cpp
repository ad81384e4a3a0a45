#include "dregsweep/upgradefiles.h"

#include <windows.h>

UpgradeFiles FindUpgradeFiles() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return {};
    const std::wstring_view executable(path, length);
    const std::wstring_view folder = executable.substr(0, executable.rfind(L'\\'));
    return {JoinPath(folder, L"SysUpgradeConfig.xml"), JoinPath(folder, L"ResIDText.xml")};
}
