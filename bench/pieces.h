#pragma once

#include <cstddef>
#include <functional>
#include <vector>

// The time of a run in pieces of a thousand steps, so that what others on the machine spoil of it, a piece here and
// there or some seconds, can be left out.

// Called by the stubs that a run calls at its steps.
void CountSteps(size_t steps);

// The seconds of each piece of a run, in order; the last is what is left.
std::vector<double> PiecesOf(const std::function<void()>& run);

// Several runs that do the same, each piece as in the run that was the fastest there. Of runs that differ by a step or
// two what is left at the end may be missing.
class FastestPieces {
public:
    void Add(const std::vector<double>& pieces);
    // The time of such a run.
    double Seconds() const;

private:
    std::vector<double> m_pieces;
};
