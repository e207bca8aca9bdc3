#include "app/pages/restore_page.h"

#include "app/operations/confirmation.h"
#include "app/operations/messages.h"
#include "app/operations/window_messages.h"
#include "app/pages/restore_layout.h"
#include "app/pages/tree_filter_dialog.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/opened/state_details.h"

namespace tolvenar {
namespace {

constexpr int kTreeSteps = kStateSteps + 1;

bool HasDifferences(const Application& app) {
    return app.storage.difference != nullptr && app.storage.difference->CountRecords() != 0;
}

}  // namespace

void RestorePage::OnInit() {
    states_.Attach(Control(IDC_STATES));
    failed_.Attach(window());
    preview_.Attach(window());
    tree_.Create(app_.instance, Control(IDC_TREE_PLACE), failed_);
    ShowComparison();
    if (app_.gate.ListsAreFree()) {
        FillStates(false);
    }
}

INT_PTR RestorePage::OnDestroy() {
    states_.Clear();
    tree_.Destroy();
    return FALSE;
}

RestorePage::Form RestorePage::CurrentForm() const {
    if (is_failed_) {
        return Form::kFailed;
    }
    if (tab_ == kAdvancedPage) {
        return Form::kAdvanced;
    }
    return preview_.IsShown() ? Form::kPreview : Form::kRestore;
}

int RestorePage::DefaultButton() const {
    switch (CurrentForm()) {
        case Form::kRestore: return IDC_RESTORE;
        case Form::kFailed: return IDC_FAILED_OK;
        case Form::kPreview: return IDC_PREVIEW_CLOSE;
        default: return 0;
    }
}

bool RestorePage::OnEnter(HWND control) {
    if (CurrentForm() != Form::kAdvanced || control != Control(IDC_STATES)) {
        return false;
    }
    RequestDifferences();
    return true;
}

// The tree is searched by typing in it; F3 goes on from wherever the focus is.
bool RestorePage::TakesKey(const MSG& message) {
    if (CurrentForm() == Form::kRestore) {
        return false;
    }
    if (message.message == WM_KEYDOWN && message.wParam == VK_F3) {
        tree_.FindNext();
        return true;
    }
    return message.message == WM_CHAR && tree_.TakesCharacter(message);
}

void RestorePage::OnShow(int index) {
    tab_ = index;
    if (app_.gate.ListsAreFree()) {
        FollowForm();
    }
    // The options may have changed meanwhile.
    if (is_failed_ && app_.gate.ListsAreFree()) {
        failed_.ShowAdvice();
    }
}

void RestorePage::OnLayout() {
    LayOutRestorePage(window(), CurrentForm());
    tree_.OnLayout(CurrentForm() != Form::kRestore);
}

// Another storage: nothing that was found out about the old one holds.
void RestorePage::OnStorageChanged() {
    if (window() == nullptr) {
        return;
    }
    notice_ = 0;
    DropPreview();
    FillStates(false);
    ForgetMissingDifferences();
}

void RestorePage::FillStates(bool keep_selected) {
    const std::int32_t selected = SelectedState();
    const bool had_none = selected == kNoState && states_.Count() > 0;
    states_.Fill(app_.storage.journal.get());
    if (keep_selected && had_none) {
        ShowNotice();
        return;
    }
    const int kept = keep_selected ? states_.Find(selected) : -1;
    if (states_.Count() > 0) {
        states_.Select(kept >= 0 ? kept : 0);
    }
    OnSelectionChanged();
}

void RestorePage::OnSelectionChanged() {
    shown_item_ = states_.Selected();
    if (!preview_.IsOf(SelectedState())) {
        DropPreview();
    }
    ShowStateDetails(states_.SelectedRecord());
    ShowNotice();
    ShowComparison();
}

void RestorePage::ShowStateDetails(const ObjectRecord* state) {
    StateDetails details{};
    if (state != nullptr) {
        ReadStateDetails(app_.storage.names, *state, details);
    }
    ::SetWindowTextW(Control(IDC_STATE_TIME), Wide(details.time));
    ::SetWindowTextW(Control(IDC_STATE_DESCRIPTION), Wide(details.description));
}

std::int32_t RestorePage::SelectedState() const {
    const ObjectRecord* record = states_.SelectedRecord();
    return record != nullptr ? record->state_number : kNoState;
}

// Differences are not compared with memory and schedule first: they are few and run at once, on
// purpose.
void RestorePage::RequestRestore(int button) {
    if (Refuses(button == IDC_RESTORE ? Wish::kRestoreState : Wish::kRestoreDifferences)) {
        return;
    }
    OperationRequest request;
    request.kind = OperationKind::kRestore;
    request.button = button;
    request.state_number = SelectedState();
    ShownComparison::Text effect;
    comparison_.PutEffect(button, effect);
    ConfirmThenRun(app_, request,
                   is_failed_ ? ResourceText(app_.instance, IDS_EFFECT_TRY_AGAIN).text() : effect);
}

void RestorePage::RequestPreview() {
    if (!Refuses(Wish::kPreviewRestore)) {
        preview_.Request(SelectedState());
    }
}

// The popup stays until the tree is there. False when it cannot be built.
bool RestorePage::OnPreviewEnded(bool is_made) {
    if (!is_made || is_failed_) {
        DropPreview();
        return false;
    }
    app_.progress.ProgressStep(u"Preparing tree...");
    preview_.Show();
    if (CurrentForm() == Form::kPreview && !BuildTree()) {
        DropPreview();
        return false;
    }
    app_.popup.CloseAndWait();
    OnLayout();
    if (::IsWindowVisible(window()) && CurrentForm() == Form::kPreview) {
        tree_.Focus();
    }
    return true;
}

void RestorePage::DropPreview() {
    if (!preview_.IsShown()) {
        return;
    }
    preview_.Drop();
    if (tree_is_preview_) {
        tree_.Clear();
    }
    OnLayout();
}

void RestorePage::ClosePreview() {
    if (app_.gate.IsOccupied()) {
        return;
    }
    DropPreview();
    ::SetFocus(Control(IDC_PREVIEW));
}

void RestorePage::RequestDifferences() {
    if (CurrentForm() != Form::kAdvanced || Refuses(Wish::kShowDifferences)) {
        return;
    }
    if (states_.SelectedRecord() != nullptr) {
        ShowDifferences();
    }
}

void RestorePage::ShowDifferences() {
    app_.popup.Show(app_.main_dialog, L"Creating tree...", kTreeSteps);
    const int item = states_.Selected();
    const bool is_done = Compare(*states_.At(item), states_.At(item + 1));
    app_.progress.ProgressStep(u"Preparing tree...");
    const bool is_shown = is_done && BuildTree();
    app_.popup.CloseAndWait();
    if (!is_shown) {
        GiveUpComparison();
    }
    ShowComparison();
    OnLayout();
}

// The buttons must not act on what nobody can see.
void RestorePage::GiveUpComparison() {
    DropDifferences();
    ForgetMissingDifferences();
    ShowMessage(app_.main_dialog, ResourceText(app_.instance, IDS_COMPARE_FAILED).text(),
                MB_ICONWARNING);
}

// There is one tree for two lists. It is built anew when the form needs the other one, or another
// view of its own.
void RestorePage::FollowForm() {
    const bool is_preview = CurrentForm() == Form::kPreview;
    const bool shows_other_list = tree_is_preview_ != is_preview;
    const bool has_other_view = app_.settings.AdvancedTreeViewChange != 0;
    if ((!is_preview && tab_ != kAdvancedPage) || (!shows_other_list && !has_other_view)) {
        return;
    }
    app_.settings.AdvancedTreeViewChange = 0;
    if (is_preview || is_failed_ || comparison_.IsMade()) {
        RebuildTree();
    } else {
        tree_is_preview_ = false;
        tree_.Clear();
    }
}

void RestorePage::RebuildTree() {
    if (!BuildTree() && !is_failed_) {
        GiveUpTree();
    }
    ShowComparison();
}

void RestorePage::GiveUpTree() {
    if (!tree_is_preview_) {
        GiveUpComparison();
        return;
    }
    DropPreview();
    ShowMessage(app_.main_dialog, ResourceText(app_.instance, IDS_PREVIEW_FAILED).text(),
                MB_ICONWARNING);
}

// What a restore left over need not be the difference that the caption names.
bool RestorePage::BuildTree() {
    tree_is_preview_ = CurrentForm() == Form::kPreview;
    if (tree_is_preview_) {
        return preview_.BuildTree(tree_);
    }
    ShownComparison::Text caption = L"";
    if (!is_failed_) {
        comparison_.PutCaption(caption);
    }
    return tree_.Build(app_.engine, app_.settings.AdvancedTreeView != 0, caption, is_failed_,
                       shown_kind_);
}

void RestorePage::ShowComparison() {
    ShownComparison::Text text;
    comparison_.PutCaption(text);
    ::SetWindowTextW(Control(IDC_DIFFERENCES_CAPTION), text);
    comparison_.PutLine(SelectedState(), text);
    if (comparison_.IsMade()) {
        PutShown(IDS_SHOWS_SOME, text);
    }
    ::SetWindowTextW(Control(IDC_DIFFERENCES_HINT), text);
    ::wcscpy(text, ResourceText(app_.instance, IDS_FAILED_ITEMS).text());
    PutShown(IDS_SHOWS_SOME_FAILED, text);
    ::SetWindowTextW(Control(IDC_FAILED_LABEL), text);
}

// Says in the place of `text` how much of the list can be seen, if it is not all.
void RestorePage::PutShown(UINT format, ShownComparison::Text& text) const {
    if (shown_kind_ != kShowAll) {
        const TreeCounts& counts = tree_.counts();
        ::wsprintfW(text, ResourceText(app_.instance, format).text(), counts.shown, counts.all);
    }
}

bool RestorePage::CanChooseShown() const {
    return (is_failed_ || comparison_.IsMade()) && !app_.gate.IsOccupied();
}

// The list stays as it is: the buttons act on all of it.
void RestorePage::ChooseShown() {
    if (!CanChooseShown()) {
        return;
    }
    TreeFilterDialog dialog;
    const std::optional<std::uint32_t> chosen =
        dialog.Ask(app_.instance, app_.main_dialog, tree_.counts().failed != 0);
    // Another program may have asked for an operation meanwhile.
    if (!chosen || !CanChooseShown()) {
        return;
    }
    shown_kind_ = *chosen;
    RebuildTree();
}

// False when the states could not be compared.
bool RestorePage::Compare(const ObjectRecord& state, const ObjectRecord* older) {
    DropDifferences();
    comparison_.Keep(state.state_number, older != nullptr ? older->state_number : kNoState);
    return older == nullptr ||
           FindDifferenceEx(app_.engine, older->state_number, state.state_number);
}

// With the registry objects of a restore that left some of them over.
void RestorePage::DropDifferences() {
    shown_kind_ = kShowAll;
    if (app_.storage.difference != nullptr) {
        app_.storage.difference->ClearList();
    }
    app_.storage.failures.Clear();
    app_.storage.registry_objects.RegObjectClear();
}

// What the last operation came to: what no box told, or what a backup saved; else what the button
// acts on.
void RestorePage::ShowNotice() {
    wchar_t text[kResourceTextUnits] = L"";
    const SavedCounts& saved = app_.storage.saved;
    const std::int32_t selected = SelectedState();
    if (notice_ != 0) {
        ::wcsncpy(text, ResourceText(app_.instance, notice_).text(), kResourceTextUnits - 1);
    } else if (selected != kNoState && static_cast<std::uint32_t>(selected) != saved.state_number) {
        ::wsprintfW(text, ResourceText(app_.instance, IDS_RESTORE_EFFECT).text(), selected);
    } else if (saved.state_number != 0) {
        ::wsprintfW(text, ResourceText(app_.instance, IDS_SAVED).text(), saved.state_number,
                    saved.added, saved.changed, saved.deleted);
    }
    ::SetWindowTextW(Control(IDC_RESTORE_NOTICE), text);
}

void RestorePage::OnRestoreEnded(bool items_left, UINT notice) {
    notice_ = notice;
    ShowNotice();
    is_failed_ = items_left;
    shown_kind_ = kShowAll;
    if (items_left) {
        BuildTree();
        ShowComparison();
    }
    ForgetMissingDifferences();
    OnLayout();
    if (is_failed_) {
        ShowFailed();
    }
}

// What is left has its sense turned round: "--" would write the old contents over newer work, so it
// is not there, and the focus leaves it.
void RestorePage::ShowFailed() {
    const int way_on = failed_.ShowAdvice();
    if (::IsWindowVisible(window())) {
        ::SetFocus(Control(way_on));
    }
}

// What the tree shows and what the buttons "+" and "--" work with is one and the same.
void RestorePage::ForgetMissingDifferences() {
    if (HasDifferences(app_)) {
        return;
    }
    is_failed_ = false;
    tree_.Clear();
    comparison_.Forget();
    ShowComparison();
    OnLayout();
}

void RestorePage::LeaveFailed() {
    if (app_.gate.IsOccupied()) {
        return;
    }
    DropDifferences();
    ForgetMissingDifferences();
}

bool RestorePage::OnListNotification(int notification) {
    if (notification == LBN_DBLCLK) {
        RequestDifferences();
        return true;
    }
    if (notification != LBN_SELCHANGE) {
        return false;
    }
    if (app_.gate.IsOccupied()) {
        states_.Select(shown_item_);
    } else {
        OnSelectionChanged();
    }
    return true;
}

bool RestorePage::OnCommand(int id, int notification) {
    if (id == IDC_STATES) {
        return OnListNotification(notification);
    }
    if (notification != BN_CLICKED) {
        return false;
    }
    switch (id) {
        case IDC_RESTORE:
        case IDC_APPLY_CHANGES:
        case IDC_TAKE_BACK_CHANGES: RequestRestore(id); return true;
        case IDC_PREVIEW: RequestPreview(); return true;
        case IDC_PREVIEW_CLOSE: ClosePreview(); return true;
        case IDC_SHOW: ChooseShown(); return true;
        case IDC_FAILED_OK: LeaveFailed(); return true;
        default: return false;
    }
}

INT_PTR RestorePage::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_SELECTED_STATE: return Answer(SelectedState());
        case WM_STATES_CHANGED: FillStates(wparam != 0); return TRUE;
        case WM_RESTORE_ENDED: OnRestoreEnded(wparam != 0, static_cast<UINT>(lparam)); return TRUE;
        case WM_PREVIEW_ENDED: return Answer(OnPreviewEnded(wparam != 0));
        case WM_DESTROY: return OnDestroy();
        default: return FALSE;
    }
}

}  // namespace tolvenar
