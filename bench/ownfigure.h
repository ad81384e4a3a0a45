#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/bench.h"

// The rows of the engine's own time: what it needs for each item beside the calls that it makes, which are answered
// from memory.

struct OwnWork {
    std::string item;  // "gathered file"
    std::string kind;  // behind the size of a run, for the reader; may be empty
    std::string unit;  // of the times, "ns" or "us"
    size_t most;       // items of the largest run; the smallest has kFewestItems
    int rounds;
    double limit = 0;   // for an item; 0: none
    double growth = 0;  // for an item of the largest run, as a multiple of one of the smallest; 0: none
};

inline constexpr size_t kFewestItems = 10'000;

// Runs of one size. Each side goes through its `items` once and returns the time in pieces.
struct OwnSides {
    size_t items;
    std::function<std::vector<double>()> floor;
    std::function<std::vector<double>()> engine;
};

// Measures runs of kFewestItems items, ten times as many, and so on; in a quick run only the first. `prepare` is called
// once for each size.
std::vector<Figure> OwnFigures(const Bench& bench, const OwnWork& work,
                               const std::function<OwnSides(size_t size)>& prepare);
