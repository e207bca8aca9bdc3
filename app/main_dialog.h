// The main dialog: the frame with its tabs.
#pragma once

#include "app/application.h"

namespace tolvenar {

// Creates the dialog, modeless and without an owner, and keeps it in `app`. False when it cannot be
// created.
bool CreateMainDialog(Application& app);

}  // namespace tolvenar
