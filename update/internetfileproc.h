#pragma once

#include <array>

#include "sysservices/text.h"
#include "update/iinternetfileproc.h"
#include "update/inethandle.h"

// The update object behind IInternetFileProc.
class CInternetFileProc : public IInternetFileProc {
public:
    CInternetFileProc() noexcept = default;

    uint32_t Init() noexcept override;
    uint32_t Uninit() noexcept override;
    uint32_t GetCurConfigVersion(uint32_t* version) noexcept override;
    uint32_t SetConfigVersion(uint32_t version) noexcept override;
    uint32_t GetWanConfigVersion(const wchar_t* url, uint32_t* version) noexcept override;
    uint32_t GetFileFromURL(const wchar_t* url, const wchar_t* localPath) noexcept override;
    uint32_t GetFileBufFromURL(const wchar_t* url, IInternetDataSink* sink) noexcept override;
    uint32_t GetStreamFileInfo(const wchar_t* url, StreamText* text) noexcept override;
    uint32_t GetFileListFromURL(const wchar_t* listUrl, const wchar_t* destFolder) noexcept override;

private:
    uint32_t OpenRoots() noexcept;
    void CloseRoots() noexcept;
    bool LoadVersion() noexcept;

    bool m_initialised = false;
    // Ten, of which the table of ways of access lets four be looked at and fills three.
    std::array<CInetHandle, 10> m_roots;
    CString m_iniPath;
};

// The process's only update object, made by the first call, with a reference for the caller; null when memory is short.
// It is never destroyed: its count may fall to 0, and the next call makes it 1 again. Without a lock: one thread at a
// time uses the object.
IInternetFileProc* SharedInternetFileProc() noexcept;
