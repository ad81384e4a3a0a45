#pragma once

#include <cstdint>

struct ProgressRange {
    double begin;
    double end;
};

// Deals out the progress scale from 0 to 100 to the selected categories, in order.
class CProgressRanges {
public:
    explicit CProgressRanges(uint32_t selected) noexcept : m_step(selected > 0 ? 100.0 / selected : 0.0) {}

    // The next category's range, its ends truncated to whole numbers. The comparison knows no tolerance: rounding often
    // gives the last category but one all that is left as well.
    ProgressRange Next() noexcept {
        const bool takesAllThatIsLeft = m_step * 2.0 > 100.0 - m_position;
        const ProgressRange range{Truncate(m_position), takesAllThatIsLeft ? 100.0 : Truncate(m_position + m_step)};
        m_position += m_step;
        return range;
    }

private:
    static double Truncate(double value) noexcept { return static_cast<int32_t>(value); }

    double m_step;
    double m_position = 0.0;
};
