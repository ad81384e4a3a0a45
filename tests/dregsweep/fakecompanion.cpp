#include "tests/dregsweep/fakecompanion.h"

#include "dregsweep/icompanionobject.h"

__declspec(dllexport) FakeCompanionRecord g_record;

namespace {

// The table of the usage-event object, written out: its ninth operation is the one to be used.
using Operation = void (*)(const void*, uint32_t);
void SendEvent(const void*, uint32_t code) {
    g_record.events[g_record.eventCount++ % 8] = code;
    if (code == 0x11003) throw 1;
}
constexpr Operation kTable[] = {{}, {}, {}, {}, {}, {}, {}, {}, SendEvent};
const Operation* g_events = kTable;

struct CFakeCompanion : ICompanionObject {
    CFakeCompanion() { ++g_record.alive; }
    ~CFakeCompanion() override { --g_record.alive; }
    uint64_t Start() override { return g_record.starts++ == 0 ? kStartCode : throw 0; }
    void BeginRun() override {
        if (g_record.runs++ == 0) throw 1;
    }
    uint32_t Release() override {
        if (const uint32_t left = IEUObject::Release()) return left;
        if (g_record.onLastRelease) g_record.onLastRelease();
        throw 1;
    }
};

}  // namespace

extern "C" __declspec(dllexport) const void* GetTolvane() {
    if (++g_record.factoryCalls == 2) throw 1;
    return g_record.factoryCalls == 1 ? nullptr : &g_events;
}

extern "C" __declspec(dllexport) ICompanionObject* GetImp() {
    return new CFakeCompanion;
}
