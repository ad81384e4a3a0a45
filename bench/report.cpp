#include "bench/report.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace {

constexpr size_t kColumns = 8;
using Line = std::array<std::string, kColumns>;

std::string WithUnit(double value, const Figure& figure) {
    return figure.unit.empty() ? Fixed(value, 3) : Fixed(value, 2) + " " + figure.unit;
}

std::string Verdict(const Figure& figure) {
    if (figure.limit == 0) return "";
    const double most = *std::max_element(figure.values.begin(), figure.values.end());
    return (figure.limitsAll ? most : Median(figure.values)) <= figure.limit ? "yes" : "no";
}

Line LineOf(const Figure& figure) {
    const auto [least, most] = std::minmax_element(figure.values.begin(), figure.values.end());
    return {figure.work,
            figure.floor,
            figure.engine,
            WithUnit(Median(figure.values), figure),
            WithUnit(*least, figure) + " to " + WithUnit(*most, figure),
            figure.fastest == 0 ? "" : Fixed(figure.fastest, 3),
            figure.limit == 0 ? "" : WithUnit(figure.limit, figure) + (figure.limitsAll ? ", all" : ""),
            Verdict(figure)};
}

std::string Join(const Line& line, const std::array<size_t, kColumns>& widths, char fill) {
    std::string text = "|";
    for (size_t column = 0; column < kColumns; ++column) {
        text += ' ' + line[column] + std::string(widths[column] - line[column].size(), fill) + " |";
    }
    return text + '\n';
}

}  // namespace

std::string MarkdownTable(const std::vector<Figure>& figures) {
    std::vector<Line> lines = {{"work", "floor", "engine", "median", "spread", "fastest", "at most", "held"}};
    for (const Figure& figure : figures)
        lines.push_back(LineOf(figure));
    std::array<size_t, kColumns> widths{};
    for (const Line& line : lines) {
        for (size_t column = 0; column < kColumns; ++column)
            widths[column] = std::max({widths[column], line[column].size(), size_t{3}});
    }
    std::string text = Join(lines.front(), widths, ' ') + Join({}, widths, '-');
    for (size_t i = 1; i < lines.size(); ++i)
        text += Join(lines[i], widths, ' ');
    return text;
}

std::string Json(const std::vector<Figure>& figures) {
    nlohmann::json all = nlohmann::json::array();
    for (const Figure& figure : figures) {
        all.push_back({{"work", figure.work},
                       {"floor", figure.floor},
                       {"engine", figure.engine},
                       {"median", Median(figure.values)},
                       {"values", figure.values},
                       {"unit", figure.unit},
                       {"fastest", figure.fastest},
                       {"limit", figure.limit},
                       {"held", Verdict(figure)}});
    }
    return all.dump(2);
}
