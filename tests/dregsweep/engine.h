#pragma once

#include <gmock/gmock.h>

#include "dregsweep/dregsweep.h"
#include "tests/support/allocguard.h"
#include "tests/support/smalljob.h"
#include "tests/support/tracerecorder.h"

using Engine = CReference<CDregsweep>;

inline Engine NewEngine() {
    return Engine(new CDregsweep(/*upgradeMode=*/false));
}

// An engine that is ready for the job.
inline Engine NewEngine(const SmallJob& job) {
    Engine engine = NewEngine();
    EXPECT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
    return engine;
}

// The recorded trace lines, the number at the end of each replaced by "#".
inline Lines TakeTraces() {
    Lines lines = TakeTraceLines();
    for (std::wstring& line : lines) {
        if (iswdigit(line.back())) line.replace(line.find_last_not_of(L"0123456789") + 1, line.npos, L"#");
    }
    return lines;
}
