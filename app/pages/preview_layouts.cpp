#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_PREVIEW_CAPTION, {6, 3, 220, 9}, kWidens},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_TREE_PLACE, {6, 15, 287, 47}, kGrows, Showing::kByPage},
    {IDC_PREVIEW_COUNTS, {6, 63, 234, 9}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {6, 73, 234, 9}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kHigh[] = {
    {IDC_PREVIEW_CAPTION, {4, 0, 123, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 123, 54}, kGrows, Showing::kByPage},
    {IDC_PREVIEW_COUNTS, {4, 64, 123, 24}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {4, 89, 123, 24}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {4, 114, 50, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kLow[] = {
    {IDC_PREVIEW_CAPTION, {4, 0, 169, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 169, 40}, kGrows, Showing::kByPage},
    {IDC_PREVIEW_COUNTS, {4, 50, 169, 16}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {4, 67, 169, 16}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {4, 85, 50, 16}, kOnBottom},
    {IDC_FULL, {126, 85, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

constexpr ControlPlace kFullWide[] = {
    {IDC_PREVIEW_CAPTION, {6, 3, 146, 9}, {0, 0, 40, 0}},
    {IDC_TREE_PLACE, {6, 15, 146, 47}, {0, 0, 40, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {156, 3, 66, 9}, {40, 0, 70, 0}},
    {IDC_NEW_CONTENTS_LABEL, {226, 3, 26, 9}, {70, 0, 70, 0}},
    {IDC_OLD_CONTENTS, {156, 15, 66, 47}, {40, 0, 70, 100}},
    {IDC_NEW_CONTENTS, {226, 15, 67, 47}, {70, 0, 100, 100}},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_PREVIEW_COUNTS, {6, 63, 234, 9}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {6, 73, 234, 9}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kFullHigh[] = {
    {IDC_PREVIEW_CAPTION, {4, 0, 123, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 123, 30}, {0, 0, 100, 60}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {4, 40, 60, 8}, {0, 60, 50, 60}},
    {IDC_NEW_CONTENTS_LABEL, {67, 40, 60, 8}, {50, 60, 100, 60}},
    {IDC_OLD_CONTENTS, {4, 48, 60, 15}, {0, 60, 50, 100}},
    {IDC_NEW_CONTENTS, {67, 48, 60, 15}, {50, 60, 100, 100}},
    {IDC_PREVIEW_COUNTS, {4, 64, 123, 24}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {4, 89, 123, 24}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {4, 114, 50, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kFullLow[] = {
    {IDC_PREVIEW_CAPTION, {4, 0, 169, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 90, 40}, {0, 0, 50, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {97, 9, 76, 8}, {50, 0, 100, 0}},
    {IDC_OLD_CONTENTS, {97, 17, 76, 12}, {50, 0, 100, 50}},
    {IDC_NEW_CONTENTS_LABEL, {97, 29, 76, 8}, {50, 50, 100, 50}},
    {IDC_NEW_CONTENTS, {97, 37, 76, 12}, {50, 50, 100, 100}},
    {IDC_PREVIEW_COUNTS, {4, 50, 169, 16}, kWidensOnBottom},
    {IDC_PREVIEW_NEEDS, {4, 67, 169, 16}, kWidensOnBottom},
    {IDC_PREVIEW_CLOSE, {4, 85, 50, 16}, kOnBottom},
    {IDC_FULL, {126, 85, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

constexpr Layout kFullLayouts[] = {
    LayoutOf(299, 84, kFullWide),
    LayoutOf(131, 130, kFullHigh),
    LayoutOf(177, 101, kFullLow),
};

}  // namespace

LayoutSet PreviewLayouts(bool is_full) {
    return is_full ? LayoutSet(kFullLayouts) : LayoutSet(kLayouts);
}

}  // namespace tolvenar
