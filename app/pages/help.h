// The manual in the device's help viewer.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

constexpr int kGeneralHelp = -1;

// Opens the manual at the section of page `index` (app/page.h), or its contents for kGeneralHelp.
// Without an installation a message says that there is no manual. A missing viewer shows nothing.
void ShowHelp(const Application& app, int index);

}  // namespace tolvenar
