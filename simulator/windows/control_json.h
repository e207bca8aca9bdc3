// Windows and tree items as JSON: what processes send each other and what `cedev` prints.
#pragma once

#include <nlohmann/json.hpp>

#include "simulator/windows/control.h"

namespace sim::windows {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(TreeItem, text, expanded, selected, bold, state, image,
                                   text_color, back_color, children)

void to_json(nlohmann::json& out, const Window& window);
void from_json(const nlohmann::json& in, Window& window);

}  // namespace sim::windows
