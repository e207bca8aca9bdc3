#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_STATES_LABEL, {6, 3, 60, 9}},
    {IDC_STATES, {6, 13, 88, 67}, kTallens},
    {IDC_STATE_TIME_LABEL, {102, 3, 25, 9}},
    {IDC_STATE_TIME, {128, 3, 166, 9}, kWidens},
    {IDC_STATE_DESCRIPTION_LABEL, {102, 13, 50, 9}},
    {IDC_STATE_DESCRIPTION, {102, 22, 191, 21}, kGrows},
    {IDC_RESTORE_NOTICE, {102, 44, 191, 18}, kWidensOnBottom},
    {IDC_PREVIEW, {138, 64, 85, 16}, kInCorner},
    {IDC_RESTORE, {226, 64, 50, 16}, kInCorner},
    {IDC_PAGE_HELP, {278, 64, 15, 16}, kInCorner},
};

constexpr ControlPlace kHigh[] = {
    {IDC_STATES_LABEL, {4, 0, 60, 8}},
    {IDC_STATES, {4, 9, 123, 20}, kGrows},
    {IDC_STATE_TIME_LABEL, {4, 30, 25, 8}, kOnBottom},
    {IDC_STATE_TIME, {31, 30, 96, 16}, kWidensOnBottom},
    {IDC_STATE_DESCRIPTION_LABEL, {4, 47, 60, 8}, kOnBottom},
    {IDC_STATE_DESCRIPTION, {4, 55, 123, 16}, kWidensOnBottom},
    {IDC_RESTORE_NOTICE, {4, 72, 123, 24}, kWidensOnBottom},
    {IDC_PREVIEW, {4, 97, 123, 16}, kOnBottom},
    {IDC_RESTORE, {4, 114, 60, 16}, kOnBottom},
    {IDC_PAGE_HELP, {109, 114, 18, 16}, kInCorner},
};

constexpr ControlPlace kLow[] = {
    {IDC_STATES_LABEL, {4, 1, 56, 8}},
    {IDC_STATES, {4, 10, 56, 72}, kTallens},
    {IDC_STATE_TIME_LABEL, {64, 1, 25, 8}},
    {IDC_STATE_TIME, {90, 1, 83, 16}, kWidens},
    {IDC_STATE_DESCRIPTION_LABEL, {64, 18, 60, 8}},
    {IDC_STATE_DESCRIPTION, {64, 27, 109, 28}, kGrows},
    {IDC_RESTORE_NOTICE, {64, 57, 109, 24}, kWidensOnBottom},
    {IDC_PREVIEW, {4, 84, 88, 16}, kOnBottom},
    {IDC_RESTORE, {95, 84, 60, 16}, kOnBottom},
    {IDC_PAGE_HELP, {157, 84, 16, 16}, kInCorner},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

}  // namespace

LayoutSet RestoreLayouts() { return kLayouts; }

}  // namespace tolvenar
