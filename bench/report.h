#pragma once

#include <string>
#include <vector>

#include "bench/measure.h"

// All figures as one Markdown table, its columns aligned.
std::string MarkdownTable(const std::vector<Figure>& figures);

// All figures with the values of every round, as JSON.
std::string Json(const std::vector<Figure>& figures);
