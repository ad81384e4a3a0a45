// dsw_bench: measures the engine against floors, plain programs of the same platform calls. Only in the sandbox.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "bench/report.h"
#include "bench/rows.h"

namespace {

struct Row {
    const char* name;
    std::vector<Figure> (*run)(Bench& bench);
};

// Growth comes first: its memory is seen only as long as nothing else has left room in the heap.
constexpr Row kRows[] = {
    {"growth", BenchGrowth},     {"gather", BenchGather},       {"pattern", BenchPattern},
    {"rules", BenchManyRules},   {"clean", BenchClean},         {"load", BenchLoad},
    {"localise", BenchLocalise}, {"cancel", BenchCancel},       {"loop", BenchLoop},
    {"download", BenchDownload}, {"owngather", BenchOwnGather}, {"ownpattern", BenchOwnPattern},
    {"ownclean", BenchOwnClean}, {"ownload", BenchOwnLoad},     {"ownlocalise", BenchOwnLocalise},
};

struct Options {
    std::vector<std::string> rows;
    std::string json;
    bool quick = false;
    int rounds = 0;
};

bool IsWanted(const Options& options, const char* row) {
    return options.rows.empty() || std::count(options.rows.begin(), options.rows.end(), row) > 0;
}

void Run(const Options& options) {
    const int rounds = options.rounds > 0 ? options.rounds : options.quick ? 3 : 9;
    Bench bench(options.quick, rounds);
    std::vector<Figure> figures;
    for (const Row& row : kRows) {
        if (!IsWanted(options, row.name)) continue;
        const double start = Now();
        for (Figure& figure : row.run(bench))
            figures.push_back(std::move(figure));
        std::fprintf(stderr, "%s: %s\n", row.name, Duration(Now() - start).c_str());
    }
    std::fputs(MarkdownTable(figures).c_str(), stdout);
    if (!options.json.empty()) std::ofstream(options.json) << Json(figures) << '\n';
}

void AddOptions(CLI::App& app, Options& options) {
    std::vector<std::string> names;
    for (const Row& row : kRows)
        names.emplace_back(row.name);
    app.add_option("ROW", options.rows, "What to measure; everything without one")->check(CLI::IsMember(names));
    app.add_option("--json", options.json, "Also write every round to this file")->type_name("FILE");
    app.add_option("--rounds", options.rounds, "Rounds of each row (default 9)")->check(CLI::PositiveNumber);
    app.add_flag("--quick", options.quick, "A fiftieth of the work: to see that the benchmark runs, not to measure");
}

}  // namespace

int main(int count, char** arguments) try {
    CLI::App app("Measures the engine");
    Options options;
    AddOptions(app, options);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    }
    // It fills drive C: with files and deletes some of them.
    if (!std::getenv("DSW_SANDBOX")) {
        std::fputs("dsw_bench: runs in the sandbox only; use scripts/bench.sh\n", stderr);
        return 1;
    }
    Run(options);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "dsw_bench: %s\n", error.what());
    return 1;
}
