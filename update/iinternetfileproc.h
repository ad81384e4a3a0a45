#pragma once

#include <cstdint>

#include "rules/ieuobject.h"
#include "update/iinternetdatasink.h"

// Result codes of the update object. The high half names the place, the low half the kind: 1 general failure,
// 2 network failure, 5 stopped by the sink, 6 wrong state or missing argument.
namespace InternetFileResult {

inline constexpr uint32_t kSuccess = 0;

inline constexpr uint32_t kInitNoHandle = 0x00320001;        // no way of access opened, or memory ran out
inline constexpr uint32_t kUninitNotReady = 0x00630006;      // not initialised
inline constexpr uint32_t kCurVersionNotReady = 0x006E0006;  // not initialised, or an argument is missing
inline constexpr uint32_t kSetVersionAlways = 0x00780006;    // every call, also a successful one
inline constexpr uint32_t kWanVersionNotReady = 0x00850006;  // not initialised, or an argument is missing

inline constexpr uint32_t kFileNotReady = 0x00930006;     // not initialised, or an argument is missing
inline constexpr uint32_t kFileFailed = 0x00990001;       // no way of access delivered the resource
inline constexpr uint32_t kFileSizeUnknown = 0x00A70002;  // the server tells no size

inline constexpr uint32_t kBufNotReady = 0x00E60006;     // not initialised, or an argument is missing
inline constexpr uint32_t kBufFailed = 0x00EC0001;       // no way of access delivered the resource
inline constexpr uint32_t kBufSizeUnknown = 0x00FB0002;  // the server tells no size
inline constexpr uint32_t kSinkCancelled = 0x010E0005;   // IsCancelled answered non-zero
inline constexpr uint32_t kSinkRefused = 0x01180005;     // OnData answered non-zero, or the sink threw

inline constexpr uint32_t kStreamNotReady = 0x013D0006;     // not initialised, or an argument is missing
inline constexpr uint32_t kStreamFailed = 0x01430001;       // no way of access delivered the resource
inline constexpr uint32_t kStreamSizeUnknown = 0x01520002;  // the server tells no size
inline constexpr uint32_t kStreamTooLarge = 0x01590002;     // more than 400 bytes announced or received

inline constexpr uint32_t kListNotReady = 0x01920006;      // not initialised, no argument, or no "/" in the URL
inline constexpr uint32_t kListRenameFailed = 0x01B30001;  // a downloaded copy could not take its place

}  // namespace InternetFileResult

// Room for the text of GetStreamFileInfo: 400 bytes of UTF-8 are at most 400 UTF-16 characters, and the terminator.
inline constexpr uint32_t kStreamTextCapacity = 401;
using StreamText = wchar_t[kStreamTextCapacity];

// The update object: fetches rule files over HTTP and keeps the number of the installed rule version.
//
// The library's export GetInetFileProcImp hands out its only instance, each time with a reference that the host gives
// up with Release. The instance is never destroyed: Release may return 0, and the next GetInetFileProcImp returns the
// same object in the state in which it was left. Release does not imply Uninit. Call Uninit before unloading the
// library.
//
//     HMODULE module = LoadLibraryW(L"Dregsweep.dll");
//     auto getUpdate = reinterpret_cast<DregsweepUpdateFactory>(GetProcAddress(module, "GetInetFileProcImp"));
//     IInternetFileProc* update = getUpdate();
//     if (update && update->Init() == InternetFileResult::kSuccess) {
//         update->GetFileListFromURL(L"http://update.example/rules/list.txt", L"C:\\Host\\Rules");
//         update->Uninit();
//     }
//     if (update) update->Release();
//
// Texts are UTF-16 and zero-terminated; the object borrows them for the call. Every operation returns 0 or a code of
// InternetFileResult, and none throws. Out-parameters change only when the result is 0.
//
// Threads: one at a time, nothing inside is locked. Calls block until done. A sink may use other objects freely, but
// must not call back into this one.
//
// Trust: resources travel over plain HTTP and carry no signature. The host chooses the address, and may check the files
// before an engine loads them. What a server sends is taken as it comes:
// - the HTTP status is not looked at, so the body of a "404 Not Found" page arrives as if it were the resource;
// - a read that brings fewer bytes than were asked for ends the resource, so a connection that closes early gives a
//   shorter resource and success.
// Up to three ways of access (the preconfigured one, the system proxy, the direct one) are tried in turn for every
// download, until one delivers; the result is the last code that any of them set.
class IInternetFileProc : public virtual IEUObject {
public:
    // Opens the ways of access and loads the version from the INI file. Call it first; when already initialised it does
    // nothing and returns 0. kInitNoHandle leaves the object uninitialised, the version loaded all the same (unless
    // memory runs out for the path).
    //
    // The INI file is named dswconfig.ini, section "Config", key "version". Its folder derives from the path of the
    // host's executable, but is not the executable's folder: it is the first characters of that path, as many as the
    // file name has, plus one. For C:\Apps\Host\host.exe it is C:\Apps\H. It is not created.
    virtual uint32_t Init() noexcept = 0;

    // Closes the ways of access and writes the version to the INI file. kUninitNotReady when not initialised.
    virtual uint32_t Uninit() noexcept = 0;

    // Gives the version in memory, which is one for the whole process and 1 until something else was loaded or set.
    // kCurVersionNotReady.
    virtual uint32_t GetCurConfigVersion(uint32_t* version) noexcept = 0;

    // Sets the version in memory and writes it to the INI file as decimal text of at least four digits. Returns
    // kSetVersionAlways, whether it worked or not: ignore it. Changes nothing when not initialised.
    virtual uint32_t SetConfigVersion(uint32_t version) noexcept = 0;

    // Fetches a small text resource, the full address of which is `url`, and reads it as a decimal number: leading
    // blanks and a sign are allowed, the first other character ends it, no digits give 0, a number that does not fit 32
    // signed bits gives their limit. kWanVersionNotReady, or a code of GetStreamFileInfo.
    virtual uint32_t GetWanConfigVersion(const wchar_t* url, uint32_t* version) noexcept = 0;

    // Downloads `url` into the file `localPath`, replacing it. kFileNotReady, kFileFailed, kFileSizeUnknown.
    // A failure before the local file is created leaves an existing file alone; a later one leaves no file. The disk is
    // not asked whether it took every byte: a full disk gives a shorter file and success.
    virtual uint32_t GetFileFromURL(const wchar_t* url, const wchar_t* localPath) noexcept = 0;

    // Downloads `url` and hands its bytes to `sink`. kBufNotReady, kBufFailed, kBufSizeUnknown, and kSinkCancelled or
    // kSinkRefused, after which no further way of access is tried.
    virtual uint32_t GetFileBufFromURL(const wchar_t* url, IInternetDataSink* sink) noexcept = 0;

    // Downloads a resource of at most 400 bytes of UTF-8 and gives it as zero-terminated text, up to its first zero
    // byte. kStreamNotReady, kStreamFailed, kStreamSizeUnknown, kStreamTooLarge.
    virtual uint32_t GetStreamFileInfo(const wchar_t* url, StreamText* text) noexcept = 0;

    // Replaces the files in the existing folder `destFolder` that the list at `listUrl` names. The list is UTF-8 text,
    // one name a line (any line end, a byte-order mark allowed, blanks kept); the files lie beside the list on the
    // server. The list itself is stored in the folder under its own name, which is what follows the last "/".
    //
    // 1. The list is downloaded; a failure returns the code of GetFileFromURL.
    // 2. Each file is downloaded to NAME_bak; the first failure returns its code. The old files are untouched, and the
    //    copies downloaded so far stay in the folder. A name that is empty, begins with "\" or "/", contains ":" or
    //    has a ".." component fails with kFileFailed without being asked for. Memory running out gives kFileFailed too,
    //    and does so before any old file is touched.
    // 3. Each old file is deleted and its copy takes the name. A copy that cannot be renamed (the old file is in use)
    //    ends the operation with kListRenameFailed: the files before it are new, its own old file may be gone, the ones
    //    after it are old, and their copies stay. A name that is listed twice loses its file this way.
    //
    // A list that cannot be read, is empty, or has 20480 bytes or more counts as a list without names: success.
    // kListNotReady.
    virtual uint32_t GetFileListFromURL(const wchar_t* listUrl, const wchar_t* destFolder) noexcept = 0;
};
