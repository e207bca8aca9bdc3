#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_FAILED_LABEL, {6, 3, 220, 9}},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_TREE_PLACE, {6, 15, 287, 47}, kGrows, Showing::kByPage},
    {IDC_APPLY_CHANGES, {6, 65, 36, 15}, kOnBottom},
    {IDC_FAILED_ADVICE, {48, 63, 190, 9}, kWidensOnBottom},
    {IDC_FAILED_REASON, {48, 73, 190, 9}, kWidensOnBottom},
    {IDC_FAILED_OK, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kHigh[] = {
    {IDC_FAILED_LABEL, {4, 0, 123, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 123, 70}, kGrows, Showing::kByPage},
    {IDC_FAILED_ADVICE, {4, 80, 123, 16}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 24, 16}, kOnBottom},
    {IDC_FAILED_OK, {47, 114, 30, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kLow[] = {
    {IDC_FAILED_LABEL, {4, 1, 169, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 10, 169, 55}, kGrows, Showing::kByPage},
    {IDC_FAILED_ADVICE, {4, 66, 169, 8}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 75, 169, 8}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 85, 24, 16}, kOnBottom},
    {IDC_FAILED_OK, {84, 85, 40, 16}, kInCorner},
    {IDC_FULL, {126, 85, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

constexpr ControlPlace kFullWide[] = {
    {IDC_FAILED_LABEL, {6, 3, 146, 9}, {0, 0, 40, 0}},
    {IDC_TREE_PLACE, {6, 15, 146, 47}, {0, 0, 40, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {156, 3, 66, 9}, {40, 0, 70, 0}},
    {IDC_NEW_CONTENTS_LABEL, {226, 3, 26, 9}, {70, 0, 70, 0}},
    {IDC_OLD_CONTENTS, {156, 15, 66, 47}, {40, 0, 70, 100}},
    {IDC_NEW_CONTENTS, {226, 15, 67, 47}, {70, 0, 100, 100}},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_APPLY_CHANGES, {6, 65, 36, 15}, kOnBottom},
    {IDC_FAILED_ADVICE, {48, 63, 190, 9}, kWidensOnBottom},
    {IDC_FAILED_REASON, {48, 73, 190, 9}, kWidensOnBottom},
    {IDC_FAILED_OK, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kFullHigh[] = {
    {IDC_FAILED_LABEL, {4, 0, 123, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 9, 123, 40}, {0, 0, 100, 60}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {4, 50, 60, 8}, {0, 60, 50, 60}},
    {IDC_NEW_CONTENTS_LABEL, {67, 50, 60, 8}, {50, 60, 100, 60}},
    {IDC_OLD_CONTENTS, {4, 58, 60, 21}, {0, 60, 50, 100}},
    {IDC_NEW_CONTENTS, {67, 58, 60, 21}, {50, 60, 100, 100}},
    {IDC_FAILED_ADVICE, {4, 80, 123, 16}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 24, 16}, kOnBottom},
    {IDC_FAILED_OK, {47, 114, 30, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kFullLow[] = {
    {IDC_FAILED_LABEL, {4, 1, 169, 8}, kWidens},
    {IDC_TREE_PLACE, {4, 10, 90, 55}, {0, 0, 50, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {97, 10, 76, 8}, {50, 0, 100, 0}},
    {IDC_OLD_CONTENTS, {97, 18, 76, 19}, {50, 0, 100, 50}},
    {IDC_NEW_CONTENTS_LABEL, {97, 38, 76, 8}, {50, 50, 100, 50}},
    {IDC_NEW_CONTENTS, {97, 46, 76, 19}, {50, 50, 100, 100}},
    {IDC_FAILED_ADVICE, {4, 66, 169, 8}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 75, 169, 8}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 85, 24, 16}, kOnBottom},
    {IDC_FAILED_OK, {84, 85, 40, 16}, kInCorner},
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

LayoutSet FailedLayouts(bool is_full) {
    return is_full ? LayoutSet(kFullLayouts) : LayoutSet(kLayouts);
}

}  // namespace tolvenar
