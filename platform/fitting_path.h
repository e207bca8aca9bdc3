// A path in a control that may have no room for it: its middle gives way, since the begin tells the
// card and the end the file.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

class FittingPath {
public:
    // What is longer is cut.
    static constexpr int kUnits = 260;

    void Set(HWND control, const wchar_t* path);
    // Chooses again: the control has another size.
    void Fit() const;

private:
    HWND control_ = nullptr;
    wchar_t path_[kUnits] = L"";
};

}  // namespace tolvenar
