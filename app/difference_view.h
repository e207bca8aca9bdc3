// The difference tree's room on the restore page.
#pragma once

#include "app/application.h"

namespace tolvenar {

class DifferenceView {
public:
    // Takes the place of `place_holder`, a control of the page.
    void Create(HWND place_holder) { place_holder_ = place_holder; }
    // Shows what the application's difference list holds.
    void Build(Application&) {}
    // Nothing is shown.
    void Clear() {}
    // Follows the place holder, which was moved, shown or hidden.
    void OnLayout() {}

private:
    HWND place_holder_ = nullptr;
};

}  // namespace tolvenar
