// A complete small host: shows the tree, gathers, asks, cleans.
//
//     minimal_host RULES TEXT

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>

#include "dregsweep/idregsweep.h"

namespace {

// Gives the reference back that every pointer from the engine carries.
struct Releaser {
    void operator()(IEUObject* object) const noexcept { object->Release(); }
};
template <class T>
using Reference = std::unique_ptr<T, Releaser>;

struct ModuleFreer {
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};
using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

std::atomic<bool> g_stop{false};

// Runs on a thread of the system's: it only leaves a wish behind, which the next notification hands to the engine.
BOOL WINAPI OnControl(DWORD) {
    g_stop = true;
    return TRUE;
}

void Print(const std::wstring& line) {
    std::string utf8(line.size() * 3 + 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    std::puts(utf8.c_str());
}

class CRun final : public IDregsweepCallback {
public:
    bool StepNotify1(uint64_t) override { return !g_stop; }
    bool StepNotify2(uint64_t) override { return !g_stop; }
    bool StepNotify3(uint64_t node) override {
        Print(reinterpret_cast<IAppCatagory*>(node)->GetInfo()->NameText);
        return !g_stop;
    }
    bool Progress(uint32_t begin, uint32_t /*end*/) override {
        // Neighbours' ranges overlap and ranges are announced from the outside in: only the greatest begin moves on.
        if (begin > m_percent) m_percent = begin;
        return !g_stop;
    }
    bool FoundItem(const wchar_t* path, uint64_t size, uint64_t /*category*/) override {
        Print(Percent() + L"found " + path + L", " + std::to_wstring(size) + L" bytes");
        return !g_stop;
    }
    bool Reserved() override { return true; }
    bool EmptiedItem(const wchar_t* path, uint64_t size, uint64_t /*category*/, bool removed) override {
        if (removed) m_freed += size;
        Print(Percent() + (removed ? L"deleted " : L"not deleted ") + (*path ? path : L"everything the rule found"));
        return !g_stop;
    }

    uint64_t Freed() const noexcept { return m_freed; }

private:
    std::wstring Percent() const { return std::to_wstring(m_percent) + L"% "; }

    uint32_t m_percent = 0;
    uint64_t m_freed = 0;
};

// One enumeration at a time: each node has a single cursor.
template <class Node, class Visit>
void ForEachChild(Node& node, Visit visit) {
    using Child = std::remove_pointer_t<decltype(node.GetFirstChild())>;
    for (Reference<Child> child(node.GetFirstChild()); child; child.reset(node.GetNextChild(child.get())))
        visit(*child);
}

template <class Node>
void PrintNode(const wchar_t* indent, Node& node) {
    const wchar_t* const boxes[] = {L"[ ] ", L"[-] ", L"[x] "};
    const uint32_t state = node.GetState();
    // A rule file may give any number; what is no state counts as partly.
    Print(indent + std::wstring(boxes[state <= SelectionAll ? state : SelectionPartly]) + node.GetInfo()->NameText);
}

void PrintTree(IDregsweep& engine) {
    ForEachChild(engine, [](IAppCatagory& category) {
        PrintNode(L"", category);
        ForEachChild(category, [](IAppGarbageInfo& application) {
            PrintNode(L"  ", application);
            ForEachChild(application, [](IGarbageCatagory& garbage) { PrintNode(L"    ", garbage); });
        });
    });
}

// What a clean would do beside deleting what was found.
class CActionPrinter final : public IGarbageInfo::IExplanationVisitor {
public:
    bool OnScope(const GarbageScope*) override { return true; }
    bool OnAction(const GarbageAction* action) override {
        const std::wstring target = action->Target, items = std::to_wstring(action->Items);
        switch (action->Kind) {
            case ActionProcedure:
                Print(std::wstring(L"will run ") + action->Name);
                break;
            case ActionDeleteKey:
                Print(L"will delete the key " + target);
                break;
            case ActionDeleteValue:
                Print(L"will delete the value \"" + std::wstring(action->Name) + L"\" of " + target);
                break;
            case ActionShellItems:
                Print(L"will delete " + items + L" more items of " + target);
                break;
            case ActionEmptyBin:
                Print(action->Items == kGarbageUnknown ? L"will empty the recycle bin"
                                                       : L"will empty the recycle bin of " + items + L" items");
                break;
            default:
                break;  // a folder that is left alone
        }
        return true;
    }
};

// A program keeps its lock file open while it runs: nobody else can have it to himself then.
void WarnIfRunning(IAppGarbageInfo& application) {
    wchar_t path[MAX_PATH];
    const DWORD length = ExpandEnvironmentStringsW(application.GetLockFile(), path, MAX_PATH);
    if (length <= 1 || length > MAX_PATH) return;
    const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    else if (GetLastError() == ERROR_SHARING_VIOLATION)
        Print(application.GetInfo()->NameText + std::wstring(L" is running: some of its files will stay"));
}

// Visits the children that a run visits.
template <class Node, class Visit>
void ForEachSelected(Node& node, Visit visit) {
    ForEachChild(node, [&](auto& child) {
        if (child.GetState() != SelectionNone) visit(child);
    });
}

void PrintActions(IDregsweep& engine) {
    CActionPrinter printer;
    ForEachSelected(engine, [&](IAppCatagory& category) {
        ForEachSelected(category, [&](IAppGarbageInfo& application) {
            WarnIfRunning(application);
            ForEachSelected(application, [&](IGarbageCatagory& garbage) {
                ForEachSelected(garbage, [&](IGarbageInfo& rule) { rule.Explain(&printer); });
            });
        });
    });
}

bool UserAgrees() {
    Print(L"Delete these items, and do the rest? [y/N]");
    return std::getchar() == 'y';
}

int Fail(const std::wstring& message) {
    Print(L"minimal_host: " + message);
    return 1;
}

int RunJob(IDregsweep& engine, const wchar_t* rules, const wchar_t* text) {
    if (const uint64_t code = engine.Init(rules, text, nullptr)) return Fail(L"Init: code " + std::to_wstring(code));
    // A missing or broken rule file is no error to the engine.
    if (!Reference<IAppCatagory>(engine.GetFirstCategory())) return Fail(L"the rule file holds no category");
    PrintTree(engine);

    CRun gather;
    // A job that was stopped halfway is not cleaned: its totals are partial.
    if (!engine.Gather(&gather)) return Fail(L"stopped");
    Print(L"found " + std::to_wstring(engine.GetTotalSize()) + L" bytes");
    PrintActions(engine);
    if (!UserAgrees()) return 0;
    CRun clean;
    const bool finished = engine.Clean(&clean);
    Print(L"freed " + std::to_wstring(clean.Freed()) + L" bytes");
    return finished ? 0 : Fail(L"stopped");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 3) return Fail(L"usage: minimal_host RULES TEXT");
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCtrlHandler(OnControl, TRUE);

    const Module module(LoadLibraryW(L"Dregsweep.dll"));
    if (!module) return Fail(L"cannot load Dregsweep.dll");
    void* factory = reinterpret_cast<void*>(GetProcAddress(module.get(), "GetImp"));
    if (!factory) return Fail(L"Dregsweep.dll has no GetImp");
    // Declared after the module, so that the engine goes before its code does.
    const Reference<IDregsweep> engine(reinterpret_cast<DregsweepFactory>(factory)());
    if (!engine) return Fail(L"no memory for an engine");
    const int status = RunJob(*engine, arguments[1], arguments[2]);
    engine->Uninit();
    return status;
}
