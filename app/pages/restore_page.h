// The page of the tabs Restore and Advanced Restore: the states, what the selected one is, and what
// it changed.
#pragma once

#include "app/pages/contents_pane.h"
#include "app/pages/difference_panel.h"
#include "app/pages/failed_panel.h"
#include "app/pages/page.h"
#include "app/pages/preview_panel.h"
#include "app/pages/restore_notice.h"
#include "app/pages/shown_comparison.h"
#include "app/pages/state_list.h"
#include "platform/fitting_text.h"
#include "res/resource.h"

namespace tolvenar {

class RestorePage final : public Page, private TreeListener {
public:
    // What the page shows; kFailed after a restore that left items over, on either tab, until the
    // user has seen it; kPreview in the place of kRestore, until it is closed or does not hold any
    // more.
    enum class Form { kRestore, kAdvanced, kFailed, kPreview };

    RestorePage(Application& app, Frame& frame)
        : Page(app, frame, IDD_RESTORE_PAGE),
          failed_(app),
          preview_(app),
          notice_(app),
          contents_(app.instance),
          comparison_(app.instance) {}

    int DefaultButton() const override;
    bool OnEnter(HWND control) override;
    bool TakesKey(const MSG& message) override;
    void OnShow(int index) override;
    void OnLayout() override;
    void OnStorageChanged() override;

private:
    LayoutSet Layouts() const override;
    void OnInit() override;
    bool OnCommand(int id, int notification) override;
    INT_PTR OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    void OnNodeSelected(const NodeRecord* node) override;
    bool OnListNotification(int notification);
    INT_PTR OnDestroy();

    Form CurrentForm() const;
    void FillStates(bool keep_selected);
    void OnSelectionChanged();
    void ShowStateDetails(const ObjectRecord* state);
    std::int32_t SelectedState() const;
    bool PressesButton(WPARAM key);
    void RequestRestore(int button);
    void RequestDifferences();
    void ShowDifferences();
    bool Compare(const ObjectRecord& state, const ObjectRecord* older);
    bool BuildTree();
    void FollowForm();
    void GiveUpTree();
    void ShowContents(const NodeRecord* node);
    void RequestPreview();
    bool OnPreviewEnded(bool is_made);
    void DropPreview();
    void ClosePreview();
    void ShowComparison();
    void GiveUpComparison();
    void RebuildTree();
    void PutShown(UINT format, ShownComparison::Text& text) const;
    bool CanChooseShown() const;
    void ChooseShown();
    void DropDifferences();
    void OnRestoreEnded(bool items_left, UINT notice);
    void ShowFailed();
    void LeaveFailed();
    void ForgetMissingDifferences();

    StateList states_;
    DifferencePanel tree_;
    FailedPanel failed_;
    PreviewPanel preview_;
    RestoreNotice notice_;
    ContentsPane contents_;
    ShownComparison comparison_;
    FittingText state_time_;
    int tab_ = kRestorePage;
    int shown_item_ = -1;                  // the item whose details are shown
    std::uint32_t shown_kind_ = kShowAll;  // of the items that the tree shows
    bool is_failed_ = false;
    bool tree_is_preview_ = false;  // it shows the preview; else what the buttons act on
};

}  // namespace tolvenar
