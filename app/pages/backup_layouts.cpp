#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr ControlPlace kOrdinary[] = {
    {IDC_NEW_DESCRIPTION_LABEL, {6, 2, 180, 9}},   {IDC_NEW_DESCRIPTION, {6, 12, 212, 14}, kWidens},
    {IDC_BACKUP, {226, 11, 50, 16}, kOnRight},     {IDC_PAGE_HELP, {278, 11, 15, 16}, kOnRight},
    {IDC_BACKUP_EFFECT, {6, 28, 287, 9}, kWidens}, {IDC_STORAGE_GROUP, {6, 37, 287, 46}, kWidens},
    {IDC_BACKUP_STORAGE_LABEL, {14, 46, 84, 8}},   {IDC_BACKUP_STORAGE, {100, 46, 186, 8}, kWidens},
    {IDC_LAST_STATE_LABEL, {14, 55, 84, 8}},       {IDC_LAST_STATE, {100, 55, 186, 8}, kWidens},
    {IDC_LAST_AUTOMATIC_LABEL, {14, 64, 84, 8}},   {IDC_LAST_AUTOMATIC, {100, 64, 186, 8}, kWidens},
    {IDC_CARD_FREE_LABEL, {14, 73, 84, 8}},        {IDC_CARD_FREE, {100, 73, 186, 8}, kWidens},
};

constexpr ControlPlace kHigh[] = {
    {IDC_NEW_DESCRIPTION_LABEL, {4, 0, 123, 8}},
    {IDC_NEW_DESCRIPTION, {4, 9, 65, 14}, kWidens},
    {IDC_BACKUP, {71, 8, 36, 16}, kOnRight},
    {IDC_PAGE_HELP, {109, 8, 18, 16}, kOnRight},
    {IDC_BACKUP_EFFECT, {4, 25, 123, 24}, kWidens},
    {IDC_BACKUP_STORAGE_LABEL, {4, 50, 123, 8}},
    {IDC_BACKUP_STORAGE, {4, 58, 123, 8}, kWidens},
    {IDC_LAST_STATE_LABEL, {4, 67, 123, 8}},
    {IDC_LAST_STATE, {4, 75, 123, 16}, kWidens},
    {IDC_LAST_AUTOMATIC_LABEL, {4, 92, 123, 8}},
    {IDC_LAST_AUTOMATIC, {4, 100, 123, 16}, kWidens},
    {IDC_CARD_FREE_LABEL, {4, 118, 84, 8}},
    {IDC_CARD_FREE, {88, 118, 39, 8}, kWidens},
};

constexpr ControlPlace kLow[] = {
    {IDC_NEW_DESCRIPTION_LABEL, {4, 1, 120, 8}},
    {IDC_NEW_DESCRIPTION, {4, 10, 104, 14}, kWidens},
    {IDC_BACKUP, {110, 9, 46, 16}, kOnRight},
    {IDC_PAGE_HELP, {157, 9, 16, 16}, kOnRight},
    {IDC_BACKUP_EFFECT, {4, 26, 169, 16}, kWidens},
    {IDC_BACKUP_STORAGE_LABEL, {4, 43, 44, 8}},
    {IDC_BACKUP_STORAGE, {48, 43, 125, 8}, kWidens},
    {IDC_LAST_STATE_LABEL, {4, 52, 42, 8}},
    {IDC_LAST_STATE, {48, 52, 125, 16}, kWidens},
    {IDC_LAST_AUTOMATIC_LABEL, {4, 69, 120, 8}},
    {IDC_LAST_AUTOMATIC, {4, 77, 169, 16}, kWidens},
    {IDC_CARD_FREE_LABEL, {4, 93, 84, 8}},
    {IDC_CARD_FREE, {90, 93, 83, 8}, kWidens},
};

constexpr Layout kLayouts[] = {
    LayoutOf(299, 84, kOrdinary),
    LayoutOf(131, 130, kHigh),
    LayoutOf(177, 101, kLow),
};

}  // namespace

LayoutSet BackupLayouts() { return kLayouts; }

}  // namespace tolvenar
