#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the benchmarks share: rounds, clocks, memory, and the figures that come out.

// One figure of the report, with one value per round.
struct Figure {
    std::string work;            // what was done
    std::string floor;           // what the floor needed for it, for the reader; may be empty
    std::string engine;          // what the engine needed
    std::vector<double> values;  // the figure itself
    std::string unit;            // behind each value; empty for a ratio to the floor
    double limit = 0;            // the most that the median may be; 0: none
    bool limitsAll = false;      // the most that any value may be
    double fastest = 0;          // the fastest round of the engine to the fastest of the floor; 0: none
};

// The value in the middle; the mean of the two middle ones of an even number.
double Median(std::vector<double> values);

// The times of both sides, by round, in seconds.
struct Rounds {
    std::vector<double> floor;
    std::vector<double> engine;
    std::vector<double> Ratios() const;
};

// Runs floor and engine in turn: a round in which each goes once, to warm up, and then `count` more. Who goes first
// changes with every round, so that a machine that grows slower or faster favours neither. Each side returns its own
// seconds, so that it can prepare outside the clock.
Rounds Alternate(int count, const std::function<double()>& floor, const std::function<double()>& engine);

// A ratio to the floor.
Figure RatioFigure(std::string work, const Rounds& rounds, double limit);

// Now, on a clock that only runs forward, in seconds.
double Now() noexcept;

// How long `call` takes, in seconds.
template <class Call>
double Seconds(Call call) {
    const double start = Now();
    call();
    return Now() - start;
}

// The private bytes of this process.
uint64_t PrivateBytes() noexcept;

// A number with `digits` digits behind the point, and with its thousands set apart.
std::string Fixed(double value, int digits);
std::string Thousands(uint64_t value);
// A duration with its unit.
std::string Duration(double seconds);
