#include "bench/ownfigure.h"

#include <algorithm>

#include "bench/pieces.h"

namespace {

struct Size {
    size_t size;
    OwnSides sides;
    FastestPieces floor;
    FastestPieces engine;
};

// A machine shared with others is slow for seconds: all sizes go in every round.
void Measure(int rounds, std::vector<Size>& sizes) {
    for (int round = 0; round < rounds; ++round) {
        for (Size& size : sizes) {
            size.floor.Add(size.sides.floor());
            size.engine.Add(size.sides.engine());
        }
    }
}

Figure OwnFigure(const OwnWork& work, const Size& size) {
    const double scale = (work.unit == "ns" ? 1e9 : 1e6) / static_cast<double>(size.sides.items);
    const double floor = size.floor.Seconds() * scale;
    const double engine = size.engine.Seconds() * scale;
    return {.work = "own time of a " + work.item + " of " + Thousands(size.size) + work.kind,
            .floor = Fixed(floor, 2) + " " + work.unit,
            .engine = Fixed(engine, 2) + " " + work.unit,
            .values = {engine - floor},
            .unit = work.unit,
            .limit = work.limit};
}

Figure GrowthFigure(const OwnWork& work, const Figure& smallest, const Figure& largest) {
    return {.work = "the same, " + Thousands(work.most) + " to " + Thousands(kFewestItems),
            .floor = {},
            .engine = {},
            .values = {largest.values.front() / smallest.values.front()},
            .unit = {},
            .limit = work.growth};
}

}  // namespace

std::vector<Figure> OwnFigures(const Bench& bench, const OwnWork& work,
                               const std::function<OwnSides(size_t size)>& prepare) {
    std::vector<Size> sizes;
    for (size_t size = kFewestItems; size <= std::max(bench.Scaled(work.most), kFewestItems); size *= 10)
        sizes.push_back({size, prepare(size), {}, {}});
    Measure(work.rounds, sizes);
    std::vector<Figure> figures;
    for (const Size& size : sizes)
        figures.push_back(OwnFigure(work, size));
    if (figures.size() > 1) figures.push_back(GrowthFigure(work, figures.front(), figures.back()));
    return figures;
}
