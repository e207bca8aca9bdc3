#include "app/pages/restore_layout.h"

namespace tolvenar {
namespace {

struct Place {
    int x, y, width, height;  // dialog units; width 0: the form does not have the control
};
constexpr Place kHidden = {0, 0, 0, 0};

struct Row {
    int id;
    Place restore;
    Place advanced;
    Place failed;
    Place preview;
};
constexpr Row kRows[] = {
    {IDC_STATES_LABEL, {6, 3, 60, 9}, {6, 3, 60, 9}, kHidden, kHidden},
    {IDC_STATES, {6, 13, 88, 67}, {6, 13, 88, 36}, kHidden, kHidden},
    {IDC_STATE_TIME_LABEL, {102, 3, 25, 9}, kHidden, kHidden, kHidden},
    {IDC_STATE_TIME, {128, 3, 166, 9}, {6, 51, 92, 9}, kHidden, kHidden},
    {IDC_STATE_DESCRIPTION_LABEL, {102, 13, 50, 9}, kHidden, kHidden, kHidden},
    {IDC_STATE_DESCRIPTION, {102, 22, 191, 21}, {6, 61, 88, 19}, kHidden, kHidden},
    {IDC_RESTORE_NOTICE, {102, 44, 191, 18}, kHidden, kHidden, kHidden},
    {IDC_PREVIEW, {138, 64, 85, 16}, kHidden, kHidden, kHidden},
    {IDC_RESTORE, {226, 64, 50, 16}, kHidden, kHidden, kHidden},
    {IDC_DIFFERENCES_CAPTION, kHidden, {102, 3, 174, 9}, kHidden, kHidden},
    {IDC_TREE_PLACE, kHidden, {102, 15, 191, 47}, {6, 15, 287, 47}, {6, 15, 287, 47}},
    {IDC_APPLY_CHANGES, kHidden, {102, 65, 24, 15}, {6, 65, 36, 15}, kHidden},
    {IDC_TAKE_BACK_CHANGES, kHidden, {129, 65, 24, 15}, kHidden, kHidden},
    {IDC_SHOW, kHidden, {156, 65, 30, 15}, {210, 65, 30, 15}, kHidden},
    {IDC_DIFFERENCES_HINT, kHidden, {189, 63, 108, 18}, kHidden, kHidden},
    {IDC_FAILED_LABEL, kHidden, kHidden, {6, 3, 220, 9}, kHidden},
    {IDC_FAILED_ADVICE, kHidden, kHidden, {48, 63, 160, 9}, kHidden},
    {IDC_FAILED_REASON, kHidden, kHidden, {48, 73, 160, 9}, kHidden},
    {IDC_FAILED_OK, kHidden, kHidden, {243, 65, 50, 15}, kHidden},
    {IDC_PREVIEW_CAPTION, kHidden, kHidden, kHidden, {6, 3, 220, 9}},
    {IDC_PREVIEW_COUNTS, kHidden, kHidden, kHidden, {6, 63, 234, 9}},
    {IDC_PREVIEW_NEEDS, kHidden, kHidden, kHidden, {6, 73, 234, 9}},
    {IDC_PREVIEW_CLOSE, kHidden, kHidden, kHidden, {243, 65, 50, 15}},
    {IDC_PAGE_HELP, {278, 64, 15, 16}, {278, 0, 15, 14}, {278, 0, 15, 14}, {278, 0, 15, 14}},
};

const Place& PlaceIn(const Row& row, RestorePage::Form form) {
    switch (form) {
        case RestorePage::Form::kRestore: return row.restore;
        case RestorePage::Form::kAdvanced: return row.advanced;
        case RestorePage::Form::kPreview: return row.preview;
        default: return row.failed;
    }
}

}  // namespace

void LayOutRestorePage(HWND page, RestorePage::Form form) {
    for (const Row& row : kRows) {
        const HWND control = ::GetDlgItem(page, row.id);
        const Place& place = PlaceIn(row, form);
        if (place.width == 0) {
            ::ShowWindow(control, SW_HIDE);
            continue;
        }
        RECT rect = {place.x, place.y, place.x + place.width, place.y + place.height};
        ::MapDialogRect(page, &rect);
        ::SetWindowPos(control, nullptr, rect.left, rect.top, rect.right - rect.left,
                       rect.bottom - rect.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    }
    // What a control leaves is painted over by the page, also where another came to stand.
    ::RedrawWindow(page, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace tolvenar
