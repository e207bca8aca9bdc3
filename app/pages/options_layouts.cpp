#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// The two groups share what is left in the breadth.
constexpr Edges kLeftHalf = {0, 0, 50, 0};
constexpr Edges kRightHalf = {50, 0, 100, 0};

constexpr ControlPlace kOrdinary[] = {
    {IDC_AUTOMATIC_GROUP, {4, 1, 140, 63}, kLeftHalf},
    {IDC_ON_TIME, {12, 10, 60, 15}},
    {IDC_TIME, {74, 10, 64, 14}},
    {IDC_ON_BATTERY, {12, 26, 120, 15}},
    {IDC_AUTOMATIC_OFF_HINT, {12, 43, 130, 9}, kLeftHalf, Showing::kByPage},
    {IDC_NEXT_BACKUP, {12, 43, 130, 9}, kLeftHalf, Showing::kByPage},
    {IDC_NEW_TIME_HINT, {12, 53, 130, 9}, kLeftHalf, Showing::kByPage},
    {IDC_AGENT_LABEL, {12, 53, 40, 9}, kStays, Showing::kByPage},
    {IDC_AGENT_BAR, {54, 53, 82, 9}, kLeftHalf, Showing::kByPage},
    {IDC_SHOW_REMINDERS, {4, 67, 62, 15}},
    {IDC_REMINDERS_HINT, {69, 70, 58, 9}},
    {IDC_PAGE_HELP, {129, 67, 15, 15}, {50, 0, 50, 0}},
    {IDC_RESTORE_GROUP, {148, 1, 147, 81}, kRightHalf},
    {IDC_ADVANCED_TREE, {156, 9, 134, 15}, kRightHalf},
    {IDC_ADVANCED_TREE_HINT, {168, 24, 124, 9}, kRightHalf},
    {IDC_RESTORE_DATABASES, {156, 33, 134, 15}, kRightHalf},
    {IDC_RESTORE_DATABASES_HINT, {168, 48, 124, 9}, kRightHalf},
    {IDC_DELETE_OLD_STORAGE, {156, 58, 134, 15}, kRightHalf},
};

constexpr ControlPlace kHigh[] = {
    {IDC_ON_TIME, {4, 0, 60, 14}},
    {IDC_TIME, {66, 0, 61, 14}},
    {IDC_ON_BATTERY, {4, 15, 100, 14}},
    {IDC_PAGE_HELP, {109, 15, 18, 15}, kOnRight},
    {IDC_AUTOMATIC_OFF_HINT, {4, 30, 123, 16}, kWidens, Showing::kByPage},
    {IDC_NEXT_BACKUP, {4, 30, 123, 16}, kWidens, Showing::kByPage},
    {IDC_NEW_TIME_HINT, {4, 46, 123, 8}, kWidens, Showing::kByPage},
    {IDC_AGENT_LABEL, {4, 46, 40, 8}, kStays, Showing::kByPage},
    {IDC_AGENT_BAR, {46, 46, 81, 8}, kWidens, Showing::kByPage},
    {IDC_SHOW_REMINDERS, {4, 55, 62, 15}},
    {IDC_REMINDERS_HINT, {69, 58, 58, 8}, kWidens},
    {IDC_ADVANCED_TREE, {4, 71, 123, 14}, kWidens},
    {IDC_ADVANCED_TREE_HINT, {6, 85, 124, 8}, kWidens},
    {IDC_RESTORE_DATABASES, {4, 94, 123, 14}, kWidens},
    {IDC_RESTORE_DATABASES_HINT, {6, 108, 124, 8}, kWidens},
    {IDC_DELETE_OLD_STORAGE, {4, 117, 123, 14}, kWidens},
};

constexpr ControlPlace kLow[] = {
    {IDC_ON_TIME, {4, 0, 60, 14}},
    {IDC_TIME, {66, 0, 64, 14}},
    {IDC_PAGE_HELP, {157, 0, 16, 14}, kOnRight},
    {IDC_ON_BATTERY, {4, 14, 84, 14}},
    {IDC_SHOW_REMINDERS, {109, 15, 64, 14}, kOnRight},
    {IDC_AUTOMATIC_OFF_HINT, {4, 29, 169, 8}, kWidens, Showing::kByPage},
    {IDC_NEXT_BACKUP, {4, 29, 169, 8}, kWidens, Showing::kByPage},
    {IDC_NEW_TIME_HINT, {4, 37, 112, 8}, kStays, Showing::kByPage},
    {IDC_AGENT_LABEL, {4, 37, 40, 8}, kStays, Showing::kByPage},
    {IDC_AGENT_BAR, {46, 37, 64, 8}, kStays, Showing::kByPage},
    {IDC_REMINDERS_HINT, {118, 37, 58, 8}, kOnRight},
    {IDC_ADVANCED_TREE, {4, 45, 169, 14}, kWidens},
    {IDC_ADVANCED_TREE_HINT, {16, 59, 157, 8}, kWidens},
    {IDC_RESTORE_DATABASES, {4, 67, 169, 14}, kWidens},
    {IDC_RESTORE_DATABASES_HINT, {16, 81, 157, 8}, kWidens},
    {IDC_DELETE_OLD_STORAGE, {4, 89, 169, 14}, kWidens},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 131, kHigh),
    LayoutOf(177, 103, kLow),
};

}  // namespace

LayoutSet OptionsLayouts() { return kLayouts; }

}  // namespace tolvenar
