#include "tests/dregsweep/fakecompanion.h"

#include <stdexcept>

#include "dregsweep/icompanionobject.h"
#include "dregsweep/iusageevents.h"

namespace {

FakeCompanionRecord g_record;

class CFakeEvents final : public IUsageEvents {
    void Reserved1() override { ++g_record.strayCalls; }
    void Reserved2() override { ++g_record.strayCalls; }
    void Reserved3() override { ++g_record.strayCalls; }
    void Reserved4() override { ++g_record.strayCalls; }
    void Reserved5() override { ++g_record.strayCalls; }
    void Reserved6() override { ++g_record.strayCalls; }
    void Reserved7() override { ++g_record.strayCalls; }
    void Reserved8() override { ++g_record.strayCalls; }
    void SendEvent(uint32_t code) override {
        ++g_record.eventCount;
        g_record.lastEvent = code;
        if (code == kEventThatThrows) throw std::runtime_error("refused");
    }
};

class CFakeCompanion : public ICompanionObject {
    uint64_t Start() override { return kStartCode; }
    void BeginRun() override { ++g_record.runs; }
};

CFakeEvents g_events;

}  // namespace

extern "C" {

__declspec(dllexport) FakeCompanionRecord* Recorded() {
    return &g_record;
}

__declspec(dllexport) IUsageEvents* GetTolvane() {
    switch (++g_record.factoryCalls) {
        case 1:
            return nullptr;
        case 2:
            throw std::runtime_error("not yet");
        default:
            return &g_events;
    }
}

__declspec(dllexport) ICompanionObject* GetImp() {
    return new CFakeCompanion;
}

__declspec(dllexport) ICompanionObject* GetThrowing() {
    throw 1;
}
}
