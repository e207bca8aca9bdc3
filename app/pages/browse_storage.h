// Choosing another storage file, or making a new one, in the system's open dialog.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// What shows the name and the description of the open storage.
class OpenedStorageDisplay {
public:
    // Shows what is open now, which may be nothing.
    virtual void ShowOpenedStorage() = 0;

protected:
    ~OpenedStorageDisplay() = default;
};

enum class BrowseResult {
    kUnchanged,  // the previous storage stays
    kChanged,    // another one is open, or none, when the chosen one's states cannot be loaded
    kCreated,    // a new, empty one is open
};

// Asks for a file, with `page` as the dialog's owner. An existing storage is opened as it stands,
// never overwritten; a name that the settings could not give back is refused before anything is
// made or closed; a new one is made only where there is neither storage file nor journal. For the
// main thread, while no operation is asked for or runs.
BrowseResult BrowseForStorage(Application& app, HWND page, OpenedStorageDisplay& display);

}  // namespace tolvenar
