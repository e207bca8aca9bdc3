#include "app/pages/failed_panel.h"

#include "app/operations/requests.h"
#include "platform/resource_text.h"
#include "res/resource.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

// What an item of several reasons shows stands first.
struct ReasonText {
    FailureReason reason;
    UINT text;
};
constexpr ReasonText kReasonTexts[] = {
    {FailureReason::kDamaged, IDS_FAILED_DAMAGED},
    {FailureReason::kSpared, IDS_FAILED_SPARED},
    {FailureReason::kInUse, IDS_FAILED_IN_USE},
    {FailureReason::kProtected, IDS_FAILED_PROTECTED},
    {FailureReason::kNoRoom, IDS_FAILED_NO_ROOM},
    {FailureReason::kOnCard, IDS_FAILED_ON_CARD},
    {FailureReason::kNotEmpty, IDS_FAILED_NOT_EMPTY},
    {FailureReason::kNoContainer, IDS_FAILED_NO_CONTAINER},
    {FailureReason::kIsThere, IDS_FAILED_IS_THERE},
    {FailureReason::kNotStored, IDS_FAILED_NOT_STORED},
    {FailureReason::kNotTried, IDS_FAILED_NOT_TRIED},
    {FailureReason::kOther, IDS_FAILED_OTHER},
    {FailureReason::kNoOrders, IDS_FAILED_OTHER},
};

UINT TextOf(const NodeRecord* node) {
    for (const ReasonText& row : kReasonTexts) {
        if (node != nullptr && HasReason(node->flags, row.reason)) {
            return row.text;
        }
    }
    return IDS_FAILED_SELECT;
}

bool HoldsDatabaseObjects(const ObjectList& list) {
    for (const ObjectList::Node& node : list) {
        if (IsOfDatabase(*node.record)) {
            return true;
        }
    }
    return false;
}

}  // namespace

// What another try passes over counts as done and leaves the list.
bool FailedPanel::CanTryAgain() const {
    if (app_.installationMissing || !HasStorage(app_) || app_.storage.difference == nullptr) {
        return false;
    }
    return (ReadSetting(setting::kAdvancedDBRestoring) & kSettingMask) != 0 ||
           !HoldsDatabaseObjects(*app_.storage.difference);
}

int FailedPanel::ShowAdvice() {
    const bool can_try_again = CanTryAgain();
    const ResourceText advice(app_.instance,
                              can_try_again ? IDS_FAILED_TRY_AGAIN : IDS_FAILED_BEGIN_ANEW);
    ::SetDlgItemTextW(page_, IDC_FAILED_ADVICE, advice.text());
    ShowReason(nullptr);
    return can_try_again ? IDC_APPLY_CHANGES : IDC_FAILED_OK;
}

void FailedPanel::ShowReason(const NodeRecord* node) const {
    ::SetDlgItemTextW(page_, IDC_FAILED_REASON, ResourceText(app_.instance, TextOf(node)).text());
}

}  // namespace tolvenar
