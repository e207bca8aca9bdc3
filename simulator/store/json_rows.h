// Rows of a dump in an order that does not follow how they came about.
#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace sim {

// Each row with the text that it is sorted by.
using KeyedRows = std::vector<std::pair<std::string, nlohmann::json>>;

inline nlohmann::json SortedRows(KeyedRows rows) {
    std::sort(rows.begin(), rows.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    nlohmann::json sorted = nlohmann::json::array();
    for (auto& row : rows) {
        sorted.push_back(std::move(row.second));
    }
    return sorted;
}

}  // namespace sim
