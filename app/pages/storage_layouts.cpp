#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_STORAGE_NAME_LABEL, {6, 5, 62, 9}},
    {IDC_STORAGE_NAME, {70, 3, 152, 13}, kWidens},
    {IDC_BROWSE, {226, 2, 50, 15}, kOnRight},
    {IDC_PAGE_HELP, {278, 2, 15, 15}, kOnRight},
    {IDC_STORAGE_FOLDER_LABEL, {6, 20, 62, 9}, kStays, Showing::kByPage},
    {IDC_STORAGE_FOLDER, {72, 20, 221, 9}, kWidens, Showing::kAlways, LongText::kEllipsis},
    {IDC_STORAGE_DESCRIPTION_LABEL, {6, 33, 62, 9}},
    {IDC_STORAGE_DESCRIPTION, {70, 32, 223, 29}, kGrows},
    {IDC_STORAGE_NOTE, {6, 64, 287, 9}, kWidensOnBottom, Showing::kAlways, LongText::kEllipsis},
    {IDC_STORAGE_SECOND_NOTE,
     {6, 74, 287, 9},
     kWidensOnBottom,
     Showing::kAlways,
     LongText::kEllipsis},
};

// The line that stands in the place of the folder says what to do.
constexpr ControlPlace kWithoutStorage[] = {
    {IDC_STORAGE_NAME_LABEL, {6, 5, 62, 9}},
    {IDC_STORAGE_NAME, {70, 3, 152, 13}, kWidens},
    {IDC_BROWSE, {226, 2, 50, 15}, kOnRight},
    {IDC_PAGE_HELP, {278, 2, 15, 15}, kOnRight},
    {IDC_STORAGE_FOLDER_LABEL, {6, 20, 62, 9}, kStays, Showing::kByPage},
    {IDC_STORAGE_FOLDER, {6, 20, 287, 18}, kWidens, Showing::kAlways, LongText::kWraps},
    {IDC_STORAGE_DESCRIPTION_LABEL, {6, 42, 62, 9}},
    {IDC_STORAGE_DESCRIPTION, {70, 41, 223, 20}, kGrows},
    {IDC_STORAGE_NOTE, {6, 64, 287, 9}, kWidensOnBottom, Showing::kAlways, LongText::kEllipsis},
    {IDC_STORAGE_SECOND_NOTE,
     {6, 74, 287, 9},
     kWidensOnBottom,
     Showing::kAlways,
     LongText::kEllipsis},
};

constexpr ControlPlace kHigh[] = {
    {IDC_STORAGE_NAME_LABEL, {4, 0, 123, 8}},
    {IDC_STORAGE_NAME, {4, 9, 60, 14}, kWidens},
    {IDC_BROWSE, {66, 8, 42, 16}, kOnRight},
    {IDC_PAGE_HELP, {109, 8, 18, 16}, kOnRight},
    {IDC_STORAGE_FOLDER_LABEL, {4, 25, 123, 8}, kStays, Showing::kByPage},
    {IDC_STORAGE_FOLDER, {4, 33, 123, 24}, kWidens, Showing::kAlways, LongText::kWraps},
    {IDC_STORAGE_DESCRIPTION_LABEL, {4, 58, 123, 8}},
    {IDC_STORAGE_DESCRIPTION, {4, 66, 123, 22}, kGrows},
    {IDC_STORAGE_NOTE, {4, 89, 123, 24}, kWidensOnBottom, Showing::kAlways, LongText::kWraps},
    {IDC_STORAGE_SECOND_NOTE,
     {4, 113, 123, 16},
     kWidensOnBottom,
     Showing::kAlways,
     LongText::kWraps},
};

constexpr ControlPlace kLow[] = {
    {IDC_STORAGE_NAME_LABEL, {4, 4, 50, 8}},
    {IDC_STORAGE_NAME, {55, 1, 56, 14}, kWidens},
    {IDC_BROWSE, {113, 0, 42, 16}, kOnRight},
    {IDC_PAGE_HELP, {157, 0, 16, 16}, kOnRight},
    {IDC_STORAGE_FOLDER_LABEL, {4, 18, 30, 8}, kStays, Showing::kByPage},
    {IDC_STORAGE_FOLDER, {36, 18, 137, 24}, kWidens, Showing::kAlways, LongText::kWraps},
    {IDC_STORAGE_DESCRIPTION_LABEL, {4, 45, 50, 8}},
    {IDC_STORAGE_DESCRIPTION, {55, 43, 118, 22}, kGrows},
    {IDC_STORAGE_NOTE, {4, 67, 169, 16}, kWidensOnBottom, Showing::kAlways, LongText::kWraps},
    {IDC_STORAGE_SECOND_NOTE,
     {4, 84, 169, 16},
     kWidensOnBottom,
     Showing::kAlways,
     LongText::kWraps},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

constexpr Layout kLayoutsWithoutStorage[] = {
    LayoutOf(299, 84, kWithoutStorage),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

}  // namespace

LayoutSet StorageLayouts(bool is_open) {
    return is_open ? LayoutSet(kLayouts) : LayoutSet(kLayoutsWithoutStorage);
}

}  // namespace tolvenar
