// How much of the screen the main dialog has, and where tabs and pages stand in it.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

class DialogRoom {
public:
    // On a screen that is too small for the dialog it fills the work area. Before the tabs are
    // inserted.
    void Attach(HWND dialog, HWND tabs);
    // Full: the dialog fills the work area. The other way it goes back to the size and place that
    // it had.
    void ToggleFull();
    bool IsFull() const { return is_full_; }

    void PlaceTabs() const;
    RECT PagePlace() const;

private:
    RECT TabsPlace() const;

    HWND dialog_ = nullptr;
    HWND tabs_ = nullptr;
    RECT own_place_{};  // on the screen, while full
    bool is_fitted_ = false;
    bool is_full_ = false;
};

}  // namespace tolvenar
