#include "simulator/windows/narrow.h"

#include <algorithm>
#include <windows.h>

#include "simulator/windows/desktop.h"

namespace sim::windows {
namespace {

constexpr int kBoxText = 0xFFFF;  // the host's id
constexpr UINT kKeepRest = SWP_NOZORDER | SWP_NOACTIVATE;

int WidthOf(const RECT& rect) { return rect.right - rect.left; }
int HeightOf(const RECT& rect) { return rect.bottom - rect.top; }

// By how much a window is wider than the screen.
int Excess(HWND window) {
    if (!Device::HasCurrent()) {
        return 0;
    }
    RECT place{};
    ::GetWindowRect(window, &place);
    return std::max(0, WidthOf(place) - ScreenSizeOf(Device::Current()).width);
}

// Where a control stands in its dialog.
RECT PlaceOf(HWND control) {
    RECT place{};
    ::GetWindowRect(control, &place);
    ::MapWindowPoints(nullptr, ::GetParent(control), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void Put(HWND control, const RECT& place) {
    ::SetWindowPos(control, nullptr, place.left, place.top, WidthOf(place), HeightOf(place),
                   kKeepRest);
}

void Grow(HWND window, int width, int height) {
    RECT place{};
    ::GetWindowRect(window, &place);
    ::SetWindowPos(window, nullptr, 0, 0, WidthOf(place) + width, HeightOf(place) + height,
                   SWP_NOMOVE | kKeepRest);
}

// The height of the static control's text within `width`.
int TextHeight(HWND text, int width) {
    wchar_t buffer[1024] = L"";
    ::GetWindowTextW(text, buffer, 1024);
    RECT lines{0, 0, width, 0};
    HDC dc = ::GetDC(text);
    HGDIOBJ before =
        ::SelectObject(dc, reinterpret_cast<HGDIOBJ>(::SendMessageW(text, WM_GETFONT, 0, 0)));
    ::DrawTextW(dc, buffer, -1, &lines, DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX);
    ::SelectObject(dc, before);
    ::ReleaseDC(text, dc);
    return HeightOf(lines);
}

// Takes `excess` from the text's width; by how much it is higher then.
int NarrowText(HWND text, int excess) {
    RECT place = PlaceOf(text);
    const int height = HeightOf(place);
    place.right -= excess;
    place.bottom = place.top + std::max(height, TextHeight(text, WidthOf(place)));
    Put(text, place);
    return HeightOf(place) - height;
}

// The row loses half of what the box loses at its left.
void MoveButtons(HWND box, int excess, int down) {
    for (int id = IDOK; id <= IDCONTINUE; ++id) {
        if (HWND button = ::GetDlgItem(box, id)) {
            RECT place = PlaceOf(button);
            ::OffsetRect(&place, -excess / 2, down);
            Put(button, place);
        }
    }
}

}  // namespace

void NarrowDialog(void* dialog, const NarrowLayout& layout) {
    const auto window = static_cast<HWND>(dialog);
    const int excess = Excess(window);
    for (int id : layout.moving) {
        if (HWND control = ::GetDlgItem(window, id)) {
            RECT place = PlaceOf(control);
            ::OffsetRect(&place, -excess, 0);
            Put(control, place);
        }
    }
    for (int id : layout.shrinking) {
        if (HWND control = ::GetDlgItem(window, id)) {
            RECT place = PlaceOf(control);
            place.right -= excess;
            Put(control, place);
        }
    }
    Grow(window, -excess, 0);
}

void NarrowBox(void* box) {
    const auto window = static_cast<HWND>(box);
    const int excess = Excess(window);
    HWND text = ::GetDlgItem(window, kBoxText);
    if (excess == 0 || text == nullptr) {
        return;
    }
    const int higher = NarrowText(text, excess);
    MoveButtons(window, excess, higher);
    Grow(window, -excess, higher);
}

}  // namespace sim::windows
