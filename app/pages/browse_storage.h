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

// Asks for a file, with `page` as the dialog's owner. An existing storage is opened as it stands,
// never overwritten; a name that the settings could not give back is refused before anything is
// made or closed; a new one is made only where there is neither storage file nor journal. True
// when the user chose one that could be opened: it is the open storage then, or none is when its
// states could not be loaded. Otherwise the previous storage stays. For the main thread, while no
// operation is asked for or runs.
bool BrowseForStorage(Application& app, HWND page, OpenedStorageDisplay& display);

}  // namespace tolvenar
