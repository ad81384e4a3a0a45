#include "bench/pieces.h"

#include <algorithm>
#include <numeric>

#include "bench/measure.h"

namespace {

constexpr size_t kStepsOfPiece = 1000;

// Room is made before a run, since a step may be an allocation.
constexpr size_t kMostPieces = 100'000;

size_t g_steps;
std::vector<double> g_ends;

}  // namespace

void CountSteps(size_t steps) {
    g_steps += steps;
    if (g_steps < kStepsOfPiece || g_ends.size() == g_ends.capacity()) return;
    g_steps = 0;
    g_ends.push_back(Now());
}

std::vector<double> PiecesOf(const std::function<void()>& run) {
    g_ends.reserve(kMostPieces);
    g_ends.clear();
    g_steps = 0;
    const double start = Now();
    run();
    g_ends.push_back(Now());
    std::vector<double> pieces(g_ends.size());
    std::adjacent_difference(g_ends.begin(), g_ends.end(), pieces.begin());
    pieces.front() -= start;
    return pieces;
}

void FastestPieces::Add(const std::vector<double>& pieces) {
    if (m_pieces.empty()) m_pieces = pieces;
    m_pieces.resize(std::min(m_pieces.size(), pieces.size()));
    for (size_t i = 0; i < m_pieces.size(); ++i)
        m_pieces[i] = std::min(m_pieces[i], pieces[i]);
}

double FastestPieces::Seconds() const {
    return std::accumulate(m_pieces.begin(), m_pieces.end(), 0.0);
}
