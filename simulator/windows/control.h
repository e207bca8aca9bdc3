// A running program's screen from outside. Messages with pointers do not cross processes under
// Wine, so every process that has windows on a device answers requests about its own, on a named
// pipe and a thread of its own.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim::windows {

// Makes this process answer; done once, before its first window.
void AnswerOutside(const Device& device);

// A window as it stands on the screen. Texts are UTF-8.
struct Window {
    std::uint32_t handle = 0;
    std::uint32_t parent = 0;  // 0 for a top-level window
    std::uint32_t pid = 0;
    int id = 0;  // control id of a child
    std::string class_name;
    std::string text;
    int left = 0, top = 0, width = 0, height = 0;  // pixels of the device's screen
    bool enabled = false;
    bool visible = false;
    bool focused = false;
    bool active = false;             // the window that the user works in
    int check = -1;                  // a button's state 0, 1, 2; -1 for anything else
    int selected = -1;               // selected item of a list or tab control
    std::vector<std::string> items;  // of a list box, combo box, list view or tab control
    // Of a tab control's items: left, top, width and height on the screen, hidden ones too.
    std::vector<std::array<int, 4>> places;
    std::optional<int> position;  // of a progress bar or scroll control
};

struct TreeItem {
    std::string text;
    bool expanded = false;
    bool selected = false;
    bool bold = false;
    std::uint32_t state = 0;  // TVIS_* bits
    int image = -1;
    // What custom draw makes of it (0x00BBGGRR); without custom draw the view's own colors.
    std::uint32_t text_color = 0;
    std::uint32_t back_color = 0;
    std::vector<TreeItem> children;
};

// Every window of the device's programs, top-level windows front to back, each followed by its
// descendants.
std::vector<Window> List(const Device& device);
// The same of the top-level windows alone, of what is visible, or of the controls `id` with the
// windows that they stand in: describing a window takes its time.
std::vector<Window> ListTops(const Device& device);
std::vector<Window> ListVisible(const Device& device);
std::vector<Window> ListControls(const Device& device, int id);

// The control `id` of the active window, or of any visible window when that has none.
std::optional<Window> Find(const Device& device, int id);

// Its text; nothing when there is no such control.
std::optional<std::string> Text(const Device& device, int id);
bool SetText(const Device& device, int id, const std::string& text);

// A click on button `id`; also a message box's. Gives true when it was there and enabled; what the
// click does comes after.
bool Press(const Device& device, int id);

// Taps of the stylus on control `id`, or on an item in it (as Select names it), `times` of them at
// once: two are a double tap. What the screen shows there is hit, whatever it is. False when there
// is no such control on the screen, or the item is scrolled away.
bool Tap(const Device& device, int id, const std::string& item, int times = 1);
// The same on a pixel of the screen.
void TapAt(const Device& device, int x, int y, int times = 1);

// Selects an item by its text in a list box, combo box, list view, tab control or tree view (there
// a path of texts joined by '|'), as a user's click does. False when there is no such item.
bool Select(const Device& device, int id, const std::string& item);

// The items of the first visible tree view.
std::vector<TreeItem> Tree(const Device& device);

// Key presses, as on the keyboard: words such as "ctrl+tab", "alt+x", "enter", "down", "f1", "a".
// False for a word that names no key; then nothing was pressed.
bool PressKeys(const Device& device, const std::string& keys);

// Closes the active window as its close button does.
bool Close(const Device& device);
// Taps the "?" in the active window's caption; false when it has none.
bool AskForHelp(const Device& device);

}  // namespace sim::windows
