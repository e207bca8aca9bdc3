// The parts of the JSON that every command gives; docs/pc/json.md. Header only.
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "pc/text/utf.h"

namespace tolvenar::pc {

// Members stay in the order in which they were entered.
using Json = nlohmann::ordered_json;

// Enters a text of the storage; one that is no text has its units beside it, exact.
inline void AddText(Json& json, const std::string& key, std::u16string_view units) {
    json[key] = ToUtf8(units);
    if (!IsWellFormed(units)) {
        json[key + "_utf16"] = ExactUnits(units);
    }
}

}  // namespace tolvenar::pc
