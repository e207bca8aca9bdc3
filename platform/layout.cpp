#include "platform/layout.h"

namespace tolvenar {
namespace {

// Dialog units are no whole pixels: by so much the parts of a dialog may differ from the whole.
constexpr int kRoundingPixels = 1;

SIZE PixelsOf(HWND dialog, int width, int height) {
    RECT rect = {0, 0, width, height};
    ::MapDialogRect(dialog, &rect);
    return {rect.right, rect.bottom};
}

int Surplus(int room, int needed) {
    const int surplus = room - needed;
    return surplus >= -kRoundingPixels && surplus <= kRoundingPixels ? 0 : surplus;
}

// What the dialog has more than the layout was made for; negative where it has less.
SIZE SurplusOf(HWND dialog, const Layout& layout) {
    RECT room{};
    ::GetClientRect(dialog, &room);
    const SIZE needed = PixelsOf(dialog, layout.width, layout.height);
    return {Surplus(room.right, needed.cx), Surplus(room.bottom, needed.cy)};
}

RECT PlaceOf(HWND dialog, const ControlPlace& row, SIZE surplus) {
    RECT rect = {row.place.x, row.place.y, row.place.x + row.place.width,
                 row.place.y + row.place.height};
    ::MapDialogRect(dialog, &rect);
    rect.left += surplus.cx * row.edges.left / 100;
    rect.top += surplus.cy * row.edges.top / 100;
    rect.right += surplus.cx * row.edges.right / 100;
    rect.bottom += surplus.cy * row.edges.bottom / 100;
    return rect;
}

// A text that ends in an ellipsis is never wrapped.
void SetLongText(HWND control, LongText long_text) {
    if (long_text == LongText::kAsMade) {
        return;
    }
    const LONG style = ::GetWindowLongW(control, GWL_STYLE) & ~SS_ENDELLIPSIS;
    ::SetWindowLongW(control, GWL_STYLE,
                     long_text == LongText::kEllipsis ? style | SS_ENDELLIPSIS : style);
}

void PutInPlace(HWND dialog, const ControlPlace& row, SIZE surplus) {
    const HWND control = ::GetDlgItem(dialog, row.id);
    const RECT place = PlaceOf(dialog, row, surplus);
    SetLongText(control, row.long_text);
    const UINT shown = row.showing == Showing::kAlways ? SWP_SHOWWINDOW : 0;
    ::SetWindowPos(control, nullptr, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE | shown);
}

bool Names(const Layout& layout, int id) {
    for (std::size_t i = 0; i < layout.count; ++i) {
        if (layout.places[i].id == id) {
            return true;
        }
    }
    return false;
}

// A child dialog has no id: who made it shows it.
void HideOthers(HWND dialog, const Layout& layout) {
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        const int id = ::GetDlgCtrlID(child);
        if (id != 0 && !Names(layout, id)) {
            ::ShowWindow(child, SW_HIDE);
        }
    }
}

void InvalidateAll(HWND window) {
    ::InvalidateRect(window, nullptr, TRUE);
    for (HWND child = ::GetWindow(window, GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        InvalidateAll(child);
    }
}

}  // namespace

const Layout& ChooseLayout(HWND dialog, const LayoutSet& set) {
    const Layout* wide_enough = nullptr;
    for (std::size_t i = 0; i < set.count; ++i) {
        const Layout& layout = set.layouts[i];
        const SIZE surplus = SurplusOf(dialog, layout);
        if (surplus.cx >= 0 && surplus.cy >= 0) {
            return layout;
        }
        if (surplus.cx >= 0 && wide_enough == nullptr) {
            wide_enough = &layout;
        }
    }
    return wide_enough != nullptr ? *wide_enough : set.layouts[set.count - 1];
}

void ApplyLayout(HWND dialog, const Layout& layout) {
    HideOthers(dialog, layout);
    const SIZE surplus = SurplusOf(dialog, layout);
    for (std::size_t i = 0; i < layout.count; ++i) {
        PutInPlace(dialog, layout.places[i], surplus);
    }
    // What a control leaves is painted over by the dialog, also where another came to stand.
    InvalidateAll(dialog);
}

RECT WorkArea() {
    RECT area{};
    if (!::SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0)) {
        area.right = ::GetSystemMetrics(SM_CXSCREEN);
        area.bottom = ::GetSystemMetrics(SM_CYSCREEN);
    }
    return area;
}

bool FitToWorkArea(HWND dialog) {
    const RECT area = WorkArea();
    RECT place{};
    ::GetWindowRect(dialog, &place);
    const LONG width = place.right - place.left;
    const LONG height = place.bottom - place.top;
    if (width <= area.right - area.left && height <= area.bottom - area.top) {
        return false;
    }
    ::SetWindowPos(dialog, nullptr, area.left, area.top, area.right - area.left,
                   area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
    return true;
}

void FitToWorkArea(HWND dialog, const LayoutSet& small_screens) {
    if (FitToWorkArea(dialog)) {
        ApplyLayout(dialog, ChooseLayout(dialog, small_screens));
    }
}

}  // namespace tolvenar
