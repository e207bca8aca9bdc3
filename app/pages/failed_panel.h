// What the restore page says while it shows the items that a restore left over: whether another try
// helps, and why the selected item failed.
#pragma once

#include "app/operations/application.h"
#include "difftree/window/tree_window.h"

namespace tolvenar {

class FailedPanel {
public:
    explicit FailedPanel(const Application& app) : app_(app) {}

    void Attach(HWND page) { page_ = page; }
    // While the application's lists are free, for what they hold now. Answers the button that leads
    // on.
    int ShowAdvice();
    // For the selected item; null for none.
    void ShowReason(const NodeRecord* node) const;

private:
    bool CanTryAgain() const;

    const Application& app_;
    HWND page_ = nullptr;
};

}  // namespace tolvenar
