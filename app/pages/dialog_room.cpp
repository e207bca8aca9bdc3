#include "app/pages/dialog_room.h"

#include <commctrl.h>

#include "platform/layout.h"

namespace tolvenar {
namespace {

// Tabs are padded so that a finger can hit them; on a small screen, so that they take two rows.
constexpr int kTabHeight = 29;
constexpr LPARAM kTabSize = MAKELPARAM(0, kTabHeight);
constexpr LPARAM kTabPadding = MAKELPARAM(9, 3);
constexpr LPARAM kSmallTabPadding = MAKELPARAM(6, 3);

// Dialog units.
constexpr int kTabsHeight = 19;  // of one row
constexpr int kGap = 1;          // around the page; none where every pixel counts
constexpr int kTabsGap = 2;      // right of the tabs

void Move(HWND window, const RECT& place) {
    ::SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

// Rows of tabs where the screen is high; a low one has arrows beside the only row.
bool TakesRows(HWND dialog) {
    RECT room{};
    ::GetClientRect(dialog, &room);
    return room.bottom > room.right;
}

}  // namespace

void DialogRoom::Attach(HWND dialog, HWND tabs) {
    dialog_ = dialog;
    tabs_ = tabs;
    is_fitted_ = FitToWorkArea(dialog);
    if (is_fitted_ && TakesRows(dialog)) {
        ::SetWindowLongW(tabs, GWL_STYLE, ::GetWindowLongW(tabs, GWL_STYLE) | TCS_MULTILINE);
    }
    ::SendMessageW(tabs, TCM_SETPADDING, 0, is_fitted_ ? kSmallTabPadding : kTabPadding);
    ::SendMessageW(tabs, TCM_SETITEMSIZE, 0, kTabSize);
}

void DialogRoom::ToggleFull() {
    is_full_ = !is_full_;
    if (is_full_) {
        ::GetWindowRect(dialog_, &own_place_);
    }
    Move(dialog_, is_full_ ? WorkArea() : own_place_);
}

RECT DialogRoom::TabsPlace() const {
    RECT gap = {0, 0, kTabsGap, kTabsHeight};
    ::MapDialogRect(dialog_, &gap);
    RECT place{};
    ::GetClientRect(dialog_, &place);
    const auto rows = static_cast<int>(::SendMessageW(tabs_, TCM_GETROWCOUNT, 0, 0));
    place.right -= is_fitted_ ? 0 : gap.right;
    place.bottom = gap.bottom + (rows > 1 ? (rows - 1) * kTabHeight : 0);
    return place;
}

void DialogRoom::PlaceTabs() const { Move(tabs_, TabsPlace()); }

RECT DialogRoom::PagePlace() const {
    RECT gap = {0, 0, kGap, kGap};
    ::MapDialogRect(dialog_, &gap);
    RECT place{};
    ::GetClientRect(dialog_, &place);
    place.top = TabsPlace().bottom + gap.bottom;
    if (!is_fitted_) {
        place.left += gap.right;
        place.right -= gap.right;
        place.bottom -= gap.bottom;
    }
    return place;
}

}  // namespace tolvenar
