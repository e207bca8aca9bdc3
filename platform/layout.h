// Where the controls of a dialog stand, as data: tables of places, each for a room of a certain
// size.
#pragma once

#include "platform/win32.h"

#include <cstddef>

namespace tolvenar {

struct Place {
    int x, y, width, height;  // dialog units
};

// How many percent of what the room has more than the table was made for each edge moves by.
struct Edges {
    int left, top, right, bottom;
};
inline constexpr Edges kStays = {0, 0, 0, 0};
inline constexpr Edges kWidens = {0, 0, 100, 0};
inline constexpr Edges kTallens = {0, 0, 0, 100};
inline constexpr Edges kGrows = {0, 0, 100, 100};
inline constexpr Edges kOnRight = {100, 0, 100, 0};
inline constexpr Edges kOnBottom = {0, 100, 0, 100};
inline constexpr Edges kInCorner = {100, 100, 100, 100};
inline constexpr Edges kWidensOnBottom = {0, 100, 100, 100};

enum class Showing {
    kAlways,
    kByPage,  // the dialog shows and hides the control itself
};

// What becomes of a static text that is longer than its place.
enum class LongText { kAsMade, kEllipsis, kWraps };

struct ControlPlace {
    int id;
    Place place;
    Edges edges = kStays;
    Showing showing = Showing::kAlways;
    LongText long_text = LongText::kAsMade;
};

struct Layout {
    int width, height;  // of the room, in dialog units
    const ControlPlace* places;
    std::size_t count;
};

template <std::size_t n>
constexpr Layout LayoutOf(int width, int height, const ControlPlace (&places)[n]) {
    return {width, height, places, n};
}

// The layouts of one form of a dialog, the most comfortable one first.
struct LayoutSet {
    template <std::size_t n>
    constexpr LayoutSet(const Layout (&set)[n]) : layouts(set), count(n) {}

    const Layout* layouts;
    std::size_t count;
};

// The first layout that the dialog has room for; where it has for none, the first that it is wide
// enough for; else the last.
const Layout& ChooseLayout(HWND dialog, const LayoutSet& set);

// Places the dialog's controls. Those with an id that the layout does not name are hidden.
void ApplyLayout(HWND dialog, const Layout& layout);

// The screen without the bars that stay in front of every window.
RECT WorkArea();

// Lets a dialog that is larger than the work area fill it. False when it had room.
bool FitToWorkArea(HWND dialog);
// The same for a dialog that has its own layouts for such a screen.
void FitToWorkArea(HWND dialog, const LayoutSet& small_screens);

}  // namespace tolvenar
