// A text of a control that has a shorter wording for where the control has no room for it.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// Whether a static control shows the whole text, in as many lines as it has.
bool HasRoomFor(HWND control, const wchar_t* text);

class FittingText {
public:
    static constexpr int kUnits = 240;  // what is longer is cut

    // Shows `text` where it fits, else `shorter`.
    void Set(HWND control, const wchar_t* text, const wchar_t* shorter);
    // Chooses again: the control has another size.
    void Fit() const;

private:
    HWND control_ = nullptr;
    wchar_t text_[kUnits] = L"";
    wchar_t shorter_[kUnits] = L"";
};

}  // namespace tolvenar
