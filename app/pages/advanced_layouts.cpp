#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_STATES_LABEL, {6, 3, 60, 9}},
    {IDC_STATES, {6, 13, 88, 28}, kTallens},
    {IDC_STATE_TIME, {6, 42, 92, 18}, kOnBottom},
    {IDC_STATE_DESCRIPTION, {6, 61, 88, 19}, kOnBottom},
    {IDC_DIFFERENCES_CAPTION, {102, 3, 150, 9}, kWidens},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_TREE_PLACE, {102, 15, 191, 47}, kGrows, Showing::kByPage},
    {IDC_APPLY_CHANGES, {102, 65, 24, 15}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {129, 65, 24, 15}, kOnBottom},
    {IDC_SHOW, {156, 65, 30, 15}, kOnBottom},
    {IDC_DIFFERENCES_HINT, {189, 63, 108, 18}, kWidensOnBottom},
};

constexpr ControlPlace kHigh[] = {
    {IDC_STATES_LABEL, {4, 0, 60, 8}},
    {IDC_STATES, {4, 9, 58, 27}},
    {IDC_STATE_TIME, {66, 9, 61, 27}, kWidens},
    {IDC_DIFFERENCES_CAPTION, {4, 37, 123, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 54, 123, 42}, kGrows, Showing::kByPage},
    {IDC_DIFFERENCES_HINT, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 20, 16}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {25, 114, 20, 16}, kOnBottom},
    {IDC_SHOW, {47, 114, 30, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kLow[] = {
    {IDC_STATES_LABEL, {4, 1, 56, 8}},
    {IDC_STATES, {4, 10, 56, 65}, kTallens},
    {IDC_STATE_TIME, {4, 76, 58, 25}, kOnBottom},
    {IDC_DIFFERENCES_CAPTION, {64, 1, 109, 16}, kWidens},
    {IDC_TREE_PLACE, {64, 18, 109, 49}, kGrows, Showing::kByPage},
    {IDC_DIFFERENCES_HINT, {64, 68, 109, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {64, 85, 18, 16}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {83, 85, 18, 16}, kOnBottom},
    {IDC_SHOW, {102, 85, 27, 16}, kOnBottom},
    {IDC_FULL, {130, 85, 26, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

// The states stand above the contents, the tree has the other side from top to bottom.
constexpr ControlPlace kFullWide[] = {
    {IDC_STATES_LABEL, {6, 3, 60, 9}},
    {IDC_STATES, {6, 13, 62, 52}, {0, 0, 0, 25}},
    {IDC_STATE_TIME, {72, 13, 87, 26}, {0, 0, 40, 0}},
    {IDC_STATE_DESCRIPTION, {72, 40, 87, 25}, {0, 0, 40, 25}},
    {IDC_OLD_CONTENTS_LABEL, {6, 69, 60, 9}, {0, 25, 20, 25}},
    {IDC_NEW_CONTENTS_LABEL, {84, 69, 60, 9}, {20, 25, 40, 25}},
    {IDC_OLD_CONTENTS, {6, 79, 75, 77}, {0, 25, 20, 100}},
    {IDC_NEW_CONTENTS, {84, 79, 75, 77}, {20, 25, 40, 100}},
    {IDC_DIFFERENCES_CAPTION, {165, 3, 147, 9}, {40, 0, 100, 0}},
    {IDC_FULL, {313, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {339, 0, 15, 14}, kOnRight},
    {IDC_TREE_PLACE, {165, 15, 189, 122}, {40, 0, 100, 100}, Showing::kByPage},
    {IDC_APPLY_CHANGES, {165, 141, 24, 15}, {40, 100, 40, 100}},
    {IDC_TAKE_BACK_CHANGES, {191, 141, 24, 15}, {40, 100, 40, 100}},
    {IDC_SHOW, {217, 141, 30, 15}, {40, 100, 40, 100}},
    {IDC_DIFFERENCES_HINT, {250, 139, 108, 18}, {40, 100, 100, 100}},
};

// States, tree and contents in a row.
constexpr ControlPlace kFullFlat[] = {
    {IDC_STATES_LABEL, {6, 3, 60, 9}},
    {IDC_STATES, {6, 13, 60, 67}, kTallens},
    {IDC_DIFFERENCES_CAPTION, {72, 3, 146, 9}, {0, 0, 40, 0}},
    {IDC_TREE_PLACE, {72, 15, 148, 47}, {0, 0, 40, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {224, 3, 62, 9}, {40, 0, 70, 0}},
    {IDC_NEW_CONTENTS_LABEL, {290, 3, 24, 9}, {70, 0, 70, 0}},
    {IDC_OLD_CONTENTS, {224, 15, 63, 47}, {40, 0, 70, 100}},
    {IDC_NEW_CONTENTS, {290, 15, 64, 47}, {70, 0, 100, 100}},
    {IDC_FULL, {315, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {340, 0, 14, 14}, kOnRight},
    {IDC_APPLY_CHANGES, {72, 65, 24, 15}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {99, 65, 24, 15}, kOnBottom},
    {IDC_SHOW, {126, 65, 30, 15}, kOnBottom},
    {IDC_DIFFERENCES_HINT, {160, 64, 196, 17}, kWidensOnBottom},
};

constexpr ControlPlace kFullHigh[] = {
    {IDC_DIFFERENCES_CAPTION, {4, 0, 123, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 17, 123, 44}, {0, 0, 100, 60}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {4, 62, 60, 8}, {0, 60, 50, 60}},
    {IDC_NEW_CONTENTS_LABEL, {67, 62, 60, 8}, {50, 60, 100, 60}},
    {IDC_OLD_CONTENTS, {4, 70, 60, 26}, {0, 60, 50, 100}},
    {IDC_NEW_CONTENTS, {67, 70, 60, 26}, {50, 60, 100, 100}},
    {IDC_DIFFERENCES_HINT, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 20, 16}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {25, 114, 20, 16}, kOnBottom},
    {IDC_SHOW, {47, 114, 30, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kFullLow[] = {
    {IDC_DIFFERENCES_CAPTION, {4, 0, 169, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 90, 58}, {0, 0, 50, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {97, 9, 76, 8}, {50, 0, 100, 0}},
    {IDC_OLD_CONTENTS, {97, 17, 76, 21}, {50, 0, 100, 50}},
    {IDC_NEW_CONTENTS_LABEL, {97, 38, 76, 8}, {50, 50, 100, 50}},
    {IDC_NEW_CONTENTS, {97, 46, 76, 21}, {50, 50, 100, 100}},
    {IDC_DIFFERENCES_HINT, {4, 68, 169, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 85, 24, 16}, kOnBottom},
    {IDC_TAKE_BACK_CHANGES, {30, 85, 24, 16}, kOnBottom},
    {IDC_SHOW, {56, 85, 30, 16}, kOnBottom},
    {IDC_FULL, {126, 85, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

constexpr Layout kFullLayouts[] = {
    LayoutOf(358, 160, kFullWide),
    LayoutOf(358, 84, kFullFlat),
    LayoutOf(131, 130, kFullHigh),
    LayoutOf(177, 101, kFullLow),
};

}  // namespace

LayoutSet AdvancedLayouts(bool is_full) {
    return is_full ? LayoutSet(kFullLayouts) : LayoutSet(kLayouts);
}

}  // namespace tolvenar
