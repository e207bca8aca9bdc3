// The rows of ./bench, as tools/bench_table.py prints and reads them.
#pragma once

#include <cstdio>
#include <string>

namespace bench {

// A figure and what it is held against. `bound` is the most that the ratio of the two may be; 0
// where none is set.
struct Row {
    std::string what;
    double figure;
    const char* unit;
    const char* against;
    double limit;
    double bound = 0;
};

inline std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, value >= 1000 || value <= -1000 ? "%.0f" : "%.3g", value);
    return text;
}

inline std::string Bound(const Row& row) {
    if (row.bound == 0) {
        return "\u2013";
    }
    return "at most " + Number(row.bound) + (row.figure / row.limit <= row.bound ? "" : " PASSED");
}

inline void Print(const Row& row) {
    std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", row.what.c_str(),
                Number(row.figure).c_str(), row.unit, row.against, Number(row.limit).c_str(),
                Number(row.figure / row.limit).c_str(), Bound(row).c_str());
    std::fflush(stdout);
}

}  // namespace bench
