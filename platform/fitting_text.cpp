#include "platform/fitting_text.h"

#include "platform/window_dc.h"

namespace tolvenar {
namespace {

void Copy(const wchar_t* from, wchar_t (&to)[FittingText::kUnits]) {
    ::wcsncpy(to, from, FittingText::kUnits - 1);
    to[FittingText::kUnits - 1] = 0;
}

}  // namespace

bool HasRoomFor(HWND control, const wchar_t* text) {
    RECT room{};
    ::GetClientRect(control, &room);
    RECT needed = {0, 0, room.right, 0};
    const WindowDc dc(control);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = ::SelectObject(dc.get(), font);
    ::DrawTextW(dc.get(), text, -1, &needed, DT_CALCRECT | DT_WORDBREAK);
    ::SelectObject(dc.get(), before);
    return needed.right <= room.right && needed.bottom <= room.bottom;
}

void FittingText::Set(HWND control, const wchar_t* text, const wchar_t* shorter) {
    control_ = control;
    Copy(text, text_);
    Copy(shorter, shorter_);
    Fit();
}

void FittingText::Fit() const {
    if (control_ != nullptr) {
        ::SetWindowTextW(control_, HasRoomFor(control_, text_) ? text_ : shorter_);
    }
}

}  // namespace tolvenar
