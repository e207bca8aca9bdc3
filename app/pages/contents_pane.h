// The selected item of the difference tree as it was and as it is, side by side, where the page has
// the room.
#pragma once

#include "difftree/window/object_details.h"
#include "difftree/window/tree_window.h"
#include "storage/opened/engine.h"

namespace tolvenar {

class ContentsPane {
public:
    explicit ContentsPane(const HINSTANCE& instance) : instance_(instance) {}

    void Attach(HWND page) { page_ = page; }
    // Fills both fields, if they can be seen, with the versions of `node` (null: none is selected)
    // in the difference list of `engine`, which nobody changes meanwhile.
    void Show(Engine& engine, const NodeRecord* node) const;

private:
    void ShowText(int control, UINT text) const;
    void ShowVersion(int control, ObjectDetails& details, const ObjectRecord& version) const;

    const HINSTANCE& instance_;
    HWND page_ = nullptr;
};

}  // namespace tolvenar
