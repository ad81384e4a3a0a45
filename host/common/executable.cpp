#include "host/common/executable.h"

#include <windows.h>

CString ExecutablePath() {
    CString path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

CString ExecutableFolder() {
    const CString executable = ExecutablePath();
    return executable.substr(0, executable.rfind(L'\\'));
}
