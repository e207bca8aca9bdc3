#include "simulator/windows/tap.h"

#include <algorithm>
#include <commctrl.h>
#include <cstring>
#include <vector>

#include "simulator/windows/inspect.h"
#include "simulator/windows/inspect_tree.h"

namespace sim::windows {
namespace {

using Place = std::optional<RECT>;  // in the control

Place PlaceInList(HWND list, int index) {
    RECT place{};
    const bool told = Ask(list, LB_GETITEMRECT, static_cast<WPARAM>(index),
                          reinterpret_cast<LPARAM>(&place)) != LB_ERR;
    return told ? Place(place) : std::nullopt;
}

Place PlaceInTabs(HWND tabs, int index) {
    RECT place{};
    const bool told = Ask(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(index),
                          reinterpret_cast<LPARAM>(&place)) != 0;
    return told ? Place(place) : std::nullopt;
}

Place PlaceInTree(HWND tree, const std::string& path) {
    RECT place{};
    void* item = FindTreeItem(tree, path);
    std::memcpy(&place, &item, sizeof item);  // as the message wants it
    const bool is_in_view =
        item != nullptr && Ask(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&place)) != 0;
    return is_in_view ? Place(place) : std::nullopt;
}

Place PlaceOfItem(HWND control, const std::string& item) {
    const std::string class_name = ClassOf(control);
    if (class_name == "SysTreeView32") {
        return PlaceInTree(control, item);
    }
    const std::vector<Window> described = Describe(control);
    const auto& items = described.front().items;
    const auto found = std::find(items.begin(), items.end(), item);
    if (found == items.end()) {
        return std::nullopt;
    }
    const int index = static_cast<int>(found - items.begin());
    return class_name == "SysTabControl32" ? PlaceInTabs(control, index)
                                           : PlaceInList(control, index);
}

void RaiseActive() {
    if (HWND active = ::GetForegroundWindow()) {
        ::SetWindowPos(active, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

}  // namespace

std::optional<POINT> SpotOf(HWND control, const std::string& item) {
    RECT client{};
    ::GetClientRect(control, &client);
    const Place place = item.empty() ? Place(client) : PlaceOfItem(control, item);
    if (!place) {
        return std::nullopt;
    }
    POINT middle = {(place->left + place->right) / 2, (place->top + place->bottom) / 2};
    if (!::PtInRect(&client, middle)) {
        return std::nullopt;
    }
    ::ClientToScreen(control, &middle);
    return middle;
}

// No place goes with the input itself: it would be told in parts of the screen, and the host, which
// has one size for the screens of all devices, takes it for another place when another device comes
// up meanwhile. A tap is one input: a move between pressing and releasing takes a button's press
// back.
void TapScreen(POINT spot, int times) {
    INPUT tap{};
    tap.type = INPUT_MOUSE;
    tap.mi.dwFlags = MOUSEEVENTF_LEFTDOWN | MOUSEEVENTF_LEFTUP;
    RaiseActive();
    ::SetCursorPos(spot.x, spot.y);
    for (int i = 0; i < times; ++i) {
        ::SendInput(1, &tap, sizeof tap);
    }
}

}  // namespace sim::windows
