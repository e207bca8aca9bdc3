// Where the controls of the restore page stand in each of its forms.
#pragma once

#include "app/pages/restore_page.h"

namespace tolvenar {

// Places, shows and hides the page's controls.
void LayOutRestorePage(HWND page, RestorePage::Form form);

}  // namespace tolvenar
