#include "bench/measure.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <utility>

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::vector<double> Rounds::Ratios() const {
    std::vector<double> ratios;
    for (size_t i = 0; i < floor.size(); ++i)
        ratios.push_back(engine[i] / floor[i]);
    return ratios;
}

Rounds Alternate(int count, const std::function<double()>& floor, const std::function<double()>& engine) {
    Rounds rounds;
    floor();
    engine();
    for (int round = 0; round < count; ++round) {
        if (round % 2 == 0) rounds.floor.push_back(floor());
        rounds.engine.push_back(engine());
        if (round % 2 != 0) rounds.floor.push_back(floor());
    }
    return rounds;
}

Figure RatioFigure(std::string work, const Rounds& rounds, double limit) {
    return {.work = std::move(work),
            .floor = Duration(Median(rounds.floor)),
            .engine = Duration(Median(rounds.engine)),
            .values = rounds.Ratios(),
            .unit = {},
            .limit = limit,
            .fastest = *std::min_element(rounds.engine.begin(), rounds.engine.end())
                       / *std::min_element(rounds.floor.begin(), rounds.floor.end())};
}

double Now() noexcept {
    LARGE_INTEGER frequency;
    LARGE_INTEGER count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

uint64_t PrivateBytes() noexcept {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PagefileUsage;
}

std::string Fixed(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string Thousands(uint64_t value) {
    std::string text = std::to_string(value);
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

std::string Duration(double seconds) {
    return seconds < 1 ? Fixed(seconds * 1000, seconds < 0.01 ? 2 : 1) + " ms" : Fixed(seconds, 2) + " s";
}
