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
    {IDC_SHOW, {210, 65, 30, 15}, kInCorner},
    {IDC_FAILED_ADVICE, {48, 63, 160, 9}, kWidensOnBottom},
    {IDC_FAILED_REASON, {48, 73, 160, 9}, kWidensOnBottom},
    {IDC_FAILED_OK, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kHigh[] = {
    {IDC_FAILED_LABEL, {4, 0, 123, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 17, 123, 62}, kGrows, Showing::kByPage},
    {IDC_FAILED_ADVICE, {4, 80, 123, 16}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 22, 16}, kOnBottom},
    {IDC_SHOW, {27, 114, 26, 16}, kOnBottom},
    {IDC_FAILED_OK, {54, 114, 24, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kLow[] = {
    {IDC_FAILED_LABEL, {4, 0, 169, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 17, 169, 48}, kGrows, Showing::kByPage},
    {IDC_FAILED_ADVICE, {4, 66, 169, 8}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 75, 169, 8}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 85, 24, 16}, kOnBottom},
    {IDC_SHOW, {30, 85, 30, 16}, kOnBottom},
    {IDC_FAILED_OK, {84, 85, 40, 16}, kInCorner},
    {IDC_FULL, {126, 85, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {157, 85, 16, 16}, kInCorner},
};

constexpr ControlPlace kFullWide[] = {
    {IDC_FAILED_LABEL, {6, 0, 146, 16}, {0, 0, 40, 0}},
    {IDC_TREE_PLACE, {6, 17, 146, 45}, {0, 0, 40, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {156, 3, 66, 9}, {40, 0, 70, 0}},
    {IDC_NEW_CONTENTS_LABEL, {226, 3, 26, 9}, {70, 0, 70, 0}},
    {IDC_OLD_CONTENTS, {156, 15, 66, 47}, {40, 0, 70, 100}},
    {IDC_NEW_CONTENTS, {226, 15, 67, 47}, {70, 0, 100, 100}},
    {IDC_FULL, {253, 0, 24, 14}, kOnRight},
    {IDC_PAGE_HELP, {278, 0, 15, 14}, kOnRight},
    {IDC_APPLY_CHANGES, {6, 65, 36, 15}, kOnBottom},
    {IDC_SHOW, {210, 65, 30, 15}, kInCorner},
    {IDC_FAILED_ADVICE, {48, 63, 160, 9}, kWidensOnBottom},
    {IDC_FAILED_REASON, {48, 73, 160, 9}, kWidensOnBottom},
    {IDC_FAILED_OK, {243, 65, 50, 15}, kInCorner},
};

constexpr ControlPlace kFullHigh[] = {
    {IDC_FAILED_LABEL, {4, 0, 123, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 17, 123, 38}, {0, 0, 100, 60}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {4, 56, 60, 8}, {0, 60, 50, 60}},
    {IDC_NEW_CONTENTS_LABEL, {67, 56, 60, 8}, {50, 60, 100, 60}},
    {IDC_OLD_CONTENTS, {4, 64, 60, 15}, {0, 60, 50, 100}},
    {IDC_NEW_CONTENTS, {67, 64, 60, 15}, {50, 60, 100, 100}},
    {IDC_FAILED_ADVICE, {4, 80, 123, 16}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 97, 123, 16}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 114, 22, 16}, kOnBottom},
    {IDC_SHOW, {27, 114, 26, 16}, kOnBottom},
    {IDC_FAILED_OK, {54, 114, 24, 16}, kOnBottom},
    {IDC_FULL, {79, 114, 28, 16}, kInCorner},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kFullLow[] = {
    {IDC_FAILED_LABEL, {4, 0, 169, 16}, kWidens},
    {IDC_TREE_PLACE, {4, 17, 90, 48}, {0, 0, 50, 100}, Showing::kByPage},
    {IDC_OLD_CONTENTS_LABEL, {97, 17, 76, 8}, {50, 0, 100, 0}},
    {IDC_OLD_CONTENTS, {97, 25, 76, 15}, {50, 0, 100, 50}},
    {IDC_NEW_CONTENTS_LABEL, {97, 41, 76, 8}, {50, 50, 100, 50}},
    {IDC_NEW_CONTENTS, {97, 49, 76, 16}, {50, 50, 100, 100}},
    {IDC_FAILED_ADVICE, {4, 66, 169, 8}, kWidensOnBottom},
    {IDC_FAILED_REASON, {4, 75, 169, 8}, kWidensOnBottom},
    {IDC_APPLY_CHANGES, {4, 85, 24, 16}, kOnBottom},
    {IDC_SHOW, {30, 85, 30, 16}, kOnBottom},
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
