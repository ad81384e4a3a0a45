#pragma once

#include <gmock/gmock.h>

#include "dregsweep/dregsweep.h"
#include "tests/support/allocguard.h"
#include "tests/support/smalljob.h"
#include "tests/support/tracerecorder.h"

using Engine = CReference<CDregsweep>;

inline Engine NewEngine(bool upgradeMode = false) {
    return Engine(new CDregsweep(upgradeMode));
}

// Engines that are ready: for the job, or for these categories.
inline Engine NewEngine(const SmallJob& job) {
    Engine engine = NewEngine();
    EXPECT_EQ(engine->Init(job.rules.c_str(), job.texts.c_str(), nullptr), 0u);
    return engine;
}
inline Engine NewEngine(const TempFolder& folder, const std::string& categories, bool upgradeMode = false) {
    Engine engine = NewEngine(upgradeMode);
    const std::wstring rules = folder.Write(L"categories.xml", "<R>" + categories + "</R>");
    EXPECT_EQ(engine->Init(rules.c_str(), L"", nullptr), 0u);
    return engine;
}

// A selected category with one garbage category "G" that holds these rules.
inline std::string CategoryOf(const std::string& rules) {
    return "<AppCategoryInfo Name='C' SelState='2'><AppInfo Name='A'><GarbageCatagory Name='G'>" + rules
           + "</GarbageCatagory></AppInfo></AppCategoryInfo>";
}
