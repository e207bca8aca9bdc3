// Which values of the registry are the program's own. Header only.
#pragma once

#include "app/settings/own_values.h"
#include "snapshot/compare/own_values.h"

namespace tolvenar {

constexpr OwnValues kOwnValues = {kSettingsKey, kOwnValuePrefix};

}  // namespace tolvenar
