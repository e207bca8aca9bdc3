#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_ABOUT_PICTURE, {8, 8, 64, 64}},          {IDC_ABOUT_NAME, {84, 10, 205, 9}, kWidens},
    {IDC_ABOUT_LINE1, {84, 24, 205, 9}, kWidens}, {IDC_ABOUT_LINE2, {84, 34, 205, 9}, kWidens},
    {IDC_ABOUT_HELP, {84, 52, 205, 9}, kWidens},  {IDC_PAGE_HELP, {278, 64, 15, 16}, kOnRight},
};

constexpr ControlPlace kHigh[] = {
    {IDC_ABOUT_PICTURE, {4, 4, 48, 48}},          {IDC_PAGE_HELP, {109, 4, 18, 16}, kOnRight},
    {IDC_ABOUT_NAME, {4, 58, 123, 9}, kWidens},   {IDC_ABOUT_LINE1, {4, 70, 123, 16}, kWidens},
    {IDC_ABOUT_LINE2, {4, 88, 123, 16}, kWidens}, {IDC_ABOUT_HELP, {4, 108, 123, 16}, kWidens},
};

constexpr ControlPlace kLow[] = {
    {IDC_ABOUT_PICTURE, {4, 8, 56, 56}},           {IDC_ABOUT_NAME, {66, 8, 107, 9}, kWidens},
    {IDC_ABOUT_LINE1, {66, 20, 107, 16}, kWidens}, {IDC_ABOUT_LINE2, {66, 38, 107, 16}, kWidens},
    {IDC_ABOUT_HELP, {66, 60, 107, 16}, kWidens},  {IDC_PAGE_HELP, {157, 80, 16, 16}, kOnRight},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 126, kHigh),
    LayoutOf(177, 96, kLow),
};

}  // namespace

LayoutSet AboutLayouts() { return kLayouts; }

}  // namespace tolvenar
