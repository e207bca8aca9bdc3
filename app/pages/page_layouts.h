// Where the controls of the pages stand. Each page has a layout for its template's size, one for
// narrow high screens and one for narrow low screens, in this order; a layout that takes the whole
// screen stands before them. Places in dialog units; what a page has more room than the layout
// was made for goes where the edges of its rows say.
#pragma once

#include "platform/layout.h"

namespace tolvenar {

LayoutSet BackupLayouts();
// Without an open storage its place is a line that says what to do.
LayoutSet StorageLayouts(bool is_open);
LayoutSet OptionsLayouts();
LayoutSet AboutLayouts();
// The forms of the restore page. When full those with a tree show the contents of the selected
// item.
LayoutSet RestoreLayouts();
LayoutSet AdvancedLayouts(bool is_full);
LayoutSet FailedLayouts(bool is_full);
LayoutSet PreviewLayouts(bool is_full);

}  // namespace tolvenar
