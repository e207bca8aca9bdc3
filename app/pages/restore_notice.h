// The line beside the Restore button.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

class RestoreNotice {
public:
    explicit RestoreNotice(const Application& app) : app_(app) {}

    void Attach(HWND line) { line_ = line; }
    // A text about the last operation, or 0.
    void Keep(UINT text) { text_ = text; }
    // What the last operation came to: what no box told, or what a backup saved; else what the
    // button does with the selected state.
    void Show(std::int32_t selected) const;

private:
    const Application& app_;
    HWND line_ = nullptr;
    UINT text_ = 0;
};

}  // namespace tolvenar
