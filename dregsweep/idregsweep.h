#pragma once

// The chief header for hosts: brings everything that a host needs to drive the cleaning engine.
//
//     HMODULE module = LoadLibraryW(L"Dregsweep.dll");
//     auto getImp = reinterpret_cast<DregsweepFactory>(GetProcAddress(module, "GetImp"));
//     IDregsweep* engine = getImp();
//     engine->Init(L"C:\\Tool\\rules.xml", L"C:\\Tool\\ResIDText.xml", nullptr);
//     engine->Gather(&callback);  // tells the items; IGarbageInfo::Explain tells what else a clean does
//     if (UserAgrees()) engine->Clean(&callback);
//     engine->Uninit();
//     engine->Release();
//
// The tree has four levels: IAppCatagory > IAppGarbageInfo > IGarbageCatagory > IGarbageInfo. Every node carries a
// reference count (IEUObject), totals (CGarbageVolume), a selection state (CGatherCheckProc) and the enumeration of its
// children (CGatherIteratorProc).

// Hosts and library share C++ classes: build the host with a compiler of the same binary interface (GCC for mingw-w64,
// 64-bit).
//
// Effects beside those of the rules. Init enables SeRestorePrivilege in the token of the process and loads the optional
// companion library "Tallyhost.dll" by the ordinary search; Clean loads "kxaide64.dll" or "kxaide.dll" from beside this
// library, if there, and sends it an event for each selected category of type 0 or 2. In upgrade mode a gather, too,
// changes the access-control list, and if need be the owner, of folders that cannot be listed, and a clean those of
// files that cannot be deleted, for good.

#include "dregsweep/idregsweepcallback.h"
#include "tree/iappcatagory.h"
#include "tree/itextselector.h"
#include "update/iinternetfileproc.h"

// What Init and ChangeResID return beside 0, which is Init's success, or that there was nothing to do.
constexpr uint64_t kDregsweepConfigFailed = 0x990006;  // Init: a root without child elements, or a category that failed
constexpr uint64_t kDregsweepChangeResID = 0xAC0006;   // ChangeResID: in every other case, success included
constexpr uint64_t kDregsweepNoTextTable = 0xB80006;   // ChangeResID: the file has no "Dregsweep" element

// The cleaning engine. Its own totals (CGarbageVolume) are those of all categories together. The engine creates no
// threads: everything runs on the calling thread. Nothing throws; when memory runs out an operation gives up with the
// answer named below.
//
// The factory calls CoInitialize and nothing calls CoUninitialize, so the creating thread keeps its apartment.
//
// The engine lives until the host has given up its last reference, also when Uninit was not called. A category that the
// host still holds stays valid, without children, and keeps the engine until it is released.
//
// Rules that browse the shell bind to it on the thread of Init: where they are used, keep Init, the runs, Uninit and
// the last Release on the thread that made the engine.
//
// Threads: AddRef and Release from any thread; AddAllowedPath and ClearAllowedPaths too. A second run, the enumeration,
// ChangeResID and Uninit wait while another thread's run lasts; what hangs below the categories does not wait, so leave
// the tree (enumeration, selection, found items; not Explain) alone during another thread's run. Do not call Init from
// two threads at once, nor the step notifications from a thread other than the run's.
class IDregsweep : public CGatherIteratorProc<IAppCatagory>, public virtual IEUObject, public virtual CGarbageVolume {
public:
    // Enumerate the top-level categories, in the order of the rule file, each with a reference for the caller. Null at
    // the end, when the engine is not initialised, and when `current` is not the category that was returned last. One
    // cursor for all callers.
    IAppCatagory* GetFirstCategory() { return GetFirstChild(); }
    IAppCatagory* GetNextCategory(IAppCatagory* current) { return GetNextChild(current); }

    // Reads the rule file (XML) and the localised names (XML, see ChangeResID). Paths are null-terminated UTF-16 of any
    // length; the pointers are not kept. `selector` may be null; it is called during Init only.
    // Returns 0 when the engine is ready. It is ready, with no category, also when the rule file is missing, empty, no
    // XML, of 2 GB or more or nested deeper than 256 elements: look at GetFirstCategory. Returns 0 and does nothing
    // when it is ready already or a path is null. Returns kDregsweepConfigFailed when the file has no element, its root
    // has no child element, a category fails to load or memory runs out: the engine is not ready, and the categories
    // before the failing one stay in its list, ahead of those of a later Init. Returns the companion library's code
    // when that refuses to start.
    virtual uint64_t Init(const wchar_t* configPath, const wchar_t* textPath, ITextSelector* selector) = 0;
    // Lets go of all categories; a further Init may follow. The allowed paths stay. Always 0.
    virtual uint64_t Uninit() = 0;
    // Gives the nodes the names of another text file: below the document's first element, the element "Dregsweep" with
    // one child element per key, named after the key, whose content is the text (UTF-8). Names without an entry keep
    // their previous language. `selector` may be null.
    // Returns kDregsweepChangeResID even on success, and kDregsweepNoTextTable when the file was read but has no
    // "Dregsweep" element. Nothing changes when the path is null, the engine is not ready or the file cannot be read.
    virtual uint64_t ChangeResID(const wchar_t* textPath, ITextSelector* selector) = 0;
    // Limits the folder scans of a gather to folders whose path begins with one of the added prefixes; without any
    // there is no limit. Single files, shell folders, registry rules and cleaners are not limited, and a clean does not
    // ask again: this is no fence around a rule file that you do not trust. A plain comparison of characters that folds
    // A to Z only and knows no separators: "C:\Temp" admits "C:\TempFiles". The text is copied; null is ignored. When
    // there is no memory for it, no folder at all is allowed until ClearAllowedPaths.
    virtual void AddAllowedPath(const wchar_t* prefix) = 0;
    virtual void ClearAllowedPaths() = 0;
    // Scans what the selected rules describe and reports every item (see IDregsweepCallback). Zeroes the totals first,
    // also when nothing is selected. `callback` may be null; it is borrowed for the call. Deletes nothing.
    // True when the run went to its end, or there was nothing to do, or the engine is not ready; false when the host
    // stopped it (totals stay as far as they got) or there was no memory to start. Memory that runs out inside a rule
    // costs that rule and still answers true.
    virtual bool Gather(IDregsweepCallback* callback) = 0;
    // Deletes what the last Gather found for the rules that are still selected, and runs the registry rules and special
    // cleaners among them, of which no notification tells: ask IGarbageInfo::Explain before. Arguments and answers as
    // for Gather. A gather makes all that is selected in a category part of the job as it enters the category, and
    // nothing takes it out again but deselecting: after a gather that was stopped, a clean also runs registry rules and
    // special cleaners that the gather had not reached, and those that an earlier gather had. A category that no gather
    // has entered is not cleaned.
    virtual bool Clean(IDregsweepCallback* callback) = 0;
    // What Gather and Clean do to all categories before they start. Always true.
    virtual bool ResetForGather() = 0;
    virtual bool PrepareForClean() = 0;
    // Selects everything, or nothing. A partly selected category is toggled twice. Always 0.
    virtual uint64_t SetAllChecked(bool checked) = 0;
    // Zeroes all totals, and restores the selection of the rule file. What was found stays listed, so a Clean still
    // deletes it. Always 0.
    virtual uint64_t ClearTotals() = 0;
    // Relay `arg` to the host's step notifications; true when no run is in progress.
    virtual bool HostNotify1(uint64_t arg) = 0;
    virtual bool HostNotify2(uint64_t arg) = 0;
    virtual bool HostNotify3(uint64_t arg) = 0;
};

// The exports that hand out engines. None of them throws.
//
// "GetImp" and "GetPrivacyProcImp" (one function): a new engine, not yet initialised, with one reference for the
// caller; null when memory runs out.
//
// "GetSysUpgradeClearImp": an engine for the leftovers of a system upgrade, initialised from "SysUpgradeConfig.xml" and
// "ResIDText.xml" beside the host's executable, in upgrade mode: files and folders that refuse are unlocked and tried
// once more, for which it enables the restore and take-ownership privileges of the process. Make and run one such
// engine at a time. An engine without categories when the first file is missing or broken; null when Init refuses,
// memory runs out, or the executable's path cannot be had or is of 260 characters or more.
using DregsweepFactory = IDregsweep* (*)();

// The export "GetInetFileProcImp": the process's one update object; see iinternetfileproc.h.
using DregsweepUpdateFactory = IInternetFileProc* (*)();

// The exports "StartFunc" and "EndFunc", each a one-byte boolean. StartFunc starts the companion service; true also
// when it runs already. EndFunc does nothing and answers true.
using DregsweepServiceFunction = bool (*)();

// While the library is loaded, an exception in the process that nobody handles leaves "dsw.dmp" in the folder of the
// host's executable; the exception filter that was there before is discarded. A filter that was installed later and
// calls ours keeps a pointer into the library. Before FreeLibrary, release every engine and node, and uninitialise and
// release the update object: their code goes with the library.
