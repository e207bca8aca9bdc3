#include "app/pages/restore_page.h"

#include "app/operations/confirmation.h"
#include "app/operations/messages.h"
#include "app/operations/window_messages.h"
#include "app/pages/page_layouts.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/opened/state_details.h"

namespace tolvenar {
namespace {

constexpr int kTreeSteps = kStateSteps + 1;

// Keys that press a button together with Alt: those of plus and minus on the keyboard and on the
// number pad, since a sign cannot be underlined, one for OK, which never is, and that of View also
// while the tabs have the focus.
constexpr WPARAM kPlusKey = 0xBB;
constexpr WPARAM kMinusKey = 0xBD;
struct ButtonKey {
    WPARAM key;
    int button;
};
constexpr ButtonKey kButtonKeys[] = {
    {kPlusKey, IDC_APPLY_CHANGES},
    {VK_ADD, IDC_APPLY_CHANGES},
    {kMinusKey, IDC_TAKE_BACK_CHANGES},
    {VK_SUBTRACT, IDC_TAKE_BACK_CHANGES},
    {'K', IDC_FAILED_OK},
    {'V', IDC_SHOW},
};
constexpr WPARAM kTreeKey = 'D';  // of "Differences"; the tree has no caption that could show it

bool HasDifferences(const Application& app) {
    return app.storage.difference != nullptr && app.storage.difference->CountRecords() != 0;
}

}  // namespace

void RestorePage::OnInit() {
    states_.Attach(Control(IDC_STATES));
    failed_.Attach(window());
    preview_.Attach(window());
    notice_.Attach(Control(IDC_RESTORE_NOTICE));
    contents_.Attach(window());
    tree_.Create(app_.instance, Control(IDC_TREE_PLACE), *this);
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

// False when no button that can be seen has the key.
bool RestorePage::PressesButton(WPARAM key) {
    for (const ButtonKey& row : kButtonKeys) {
        if (row.key == key && ::IsWindowVisible(Control(row.button))) {
            return OnCommand(row.button, BN_CLICKED);
        }
    }
    return false;
}

// The tree is searched by typing in it; F3 goes on and the buttons have their keys wherever the
// focus is.
bool RestorePage::TakesKey(const MSG& message) {
    if (CurrentForm() == Form::kRestore) {
        return false;
    }
    if (message.message == WM_KEYDOWN && message.wParam == VK_F3) {
        tree_.FindNext();
        return true;
    }
    if (message.message == WM_SYSKEYDOWN && message.wParam == kTreeKey) {
        tree_.Focus();
        return true;
    }
    if (message.message == WM_SYSKEYDOWN && PressesButton(message.wParam)) {
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

LayoutSet RestorePage::Layouts() const {
    switch (CurrentForm()) {
        case Form::kRestore: return RestoreLayouts();
        case Form::kAdvanced: return AdvancedLayouts(frame_.IsFull());
        case Form::kPreview: return PreviewLayouts(frame_.IsFull());
        default: return FailedLayouts(frame_.IsFull());
    }
}

void RestorePage::OnLayout() {
    ::SetDlgItemTextW(
        window(), IDC_FULL,
        ResourceText(app_.instance, frame_.IsFull() ? IDS_FULL_BACK : IDS_FULL).text());
    state_time_.Fit();
    tree_.OnLayout(CurrentForm() != Form::kRestore);
    ShowContents(tree_.SelectedNode());
}

void RestorePage::OnNodeSelected(const NodeRecord* node) {
    failed_.ShowReason(node);
    ShowContents(node);
}

void RestorePage::ShowContents(const NodeRecord* node) {
    if (app_.gate.ListsAreFree()) {
        contents_.Show(tree_is_preview_ ? app_.preview.engine() : app_.engine, node);
    }
}

// Another storage: nothing that was found out about the old one holds.
void RestorePage::OnStorageChanged() {
    if (window() == nullptr) {
        return;
    }
    notice_.Keep(0);
    DropPreview();
    FillStates(false);
    ForgetMissingDifferences();
}

void RestorePage::FillStates(bool keep_selected) {
    const std::int32_t selected = SelectedState();
    const bool had_none = selected == kNoState && states_.Count() > 0;
    states_.Fill(app_.storage.journal.get());
    if (keep_selected && had_none) {
        notice_.Show(SelectedState());
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
    notice_.Show(SelectedState());
    ShowComparison();
}

void RestorePage::ShowStateDetails(const ObjectRecord* state) {
    StateDetails details{};
    if (state != nullptr) {
        ReadStateDetails(app_.storage.names, *state, details);
    }
    state_time_.Set(Control(IDC_STATE_TIME), Wide(details.time), Wide(details.plain_time));
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
    LayOut();
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
    LayOut();
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
    LayOut();
}

// The buttons must not act on what nobody can see.
void RestorePage::GiveUpComparison() {
    DropDifferences();
    ForgetMissingDifferences();
    ShowOwnMessage(app_.main_dialog, IDS_COMPARE_FAILED, MB_ICONWARNING);
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

void RestorePage::OnRestoreEnded(bool items_left, UINT notice) {
    notice_.Keep(notice);
    notice_.Show(SelectedState());
    is_failed_ = items_left;
    shown_kind_ = kShowAll;
    if (items_left) {
        BuildTree();
        ShowComparison();
    }
    ForgetMissingDifferences();
    LayOut();
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
    LayOut();
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
        case IDC_FULL: frame_.ToggleFull(); return true;
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
