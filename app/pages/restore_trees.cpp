// The trees of the restore page: the one of a comparison or of what a restore left over, the one of
// a preview, and what of them is shown.
#include "app/operations/messages.h"
#include "app/pages/restore_page.h"
#include "app/pages/tree_filter_dialog.h"
#include "platform/resource_text.h"

namespace tolvenar {

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
    ShowOwnMessage(app_.main_dialog, IDS_PREVIEW_FAILED, MB_ICONWARNING);
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

}  // namespace tolvenar
