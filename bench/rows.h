#pragma once

#include <vector>

#include "bench/bench.h"

// The rows of the report, each with the figures that it measures. Each is in the file named for it.

std::vector<Figure> BenchGrowth(Bench& bench);
std::vector<Figure> BenchGather(Bench& bench);
std::vector<Figure> BenchPattern(Bench& bench);    // gather.cpp
std::vector<Figure> BenchManyRules(Bench& bench);  // gather.cpp
std::vector<Figure> BenchClean(Bench& bench);
std::vector<Figure> BenchLoad(Bench& bench);
std::vector<Figure> BenchLocalise(Bench& bench);  // load.cpp
std::vector<Figure> BenchCancel(Bench& bench);
std::vector<Figure> BenchLoop(Bench& bench);
std::vector<Figure> BenchDownload(Bench& bench);
std::vector<Figure> BenchOwnGather(Bench& bench);    // ownfiles.cpp
std::vector<Figure> BenchOwnPattern(Bench& bench);   // ownfiles.cpp
std::vector<Figure> BenchOwnClean(Bench& bench);     // ownfiles.cpp
std::vector<Figure> BenchOwnLoad(Bench& bench);      // ownload.cpp
std::vector<Figure> BenchOwnLocalise(Bench& bench);  // ownload.cpp
