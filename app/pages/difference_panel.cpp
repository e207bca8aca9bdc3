#include "app/pages/difference_panel.h"

#include "difftree/window/opened_differences.h"
#include "difftree/window/tree_view.h"
#include "platform/text.h"

namespace tolvenar {

RECT DifferencePanel::Place() const {
    RECT place{};
    ::GetWindowRect(place_holder_, &place);
    ::MapWindowPoints(nullptr, ::GetParent(place_holder_), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void DifferencePanel::Create(HINSTANCE instance, HWND place_holder, TreeListener& listener) {
    place_holder_ = place_holder;
    tree_.SetListener(&listener);
    if (!tree_.RegisterTreeWindowClass(instance)) {
        return;
    }
    const RECT place = Place();
    tree_.CreateTreeDialog(::GetParent(place_holder), &place);
}

bool DifferencePanel::Build(Engine& engine, bool advanced_view, const wchar_t* caption,
                            bool opens_branches, std::uint32_t shown_kind) {
    OpenedDifferences differences(engine);
    TreeBuild build;
    build.advanced_view = advanced_view;
    build.opens_branches = opens_branches;
    build.shown_kind = shown_kind;
    build.counts = &counts_;
    build.root_caption = Utf16(caption);
    return tree_.tree_view() == nullptr ||
           tree_.BuildDifferenceTree(differences.enumerator(), build);
}

bool DifferencePanel::TakesCharacter(const MSG& message) {
    return message.hwnd == tree_.tree_view() &&
           search_.OnCharacter(message.hwnd, static_cast<wchar_t>(message.wParam), message.time);
}

const NodeRecord* DifferencePanel::SelectedNode() const {
    return tree_.tree_view() != nullptr ? NodeOf(tree_.tree_view(), SelectedItem(tree_.tree_view()))
                                        : nullptr;
}

void DifferencePanel::Focus() {
    if (::IsWindowVisible(tree_.tree_view())) {
        ::SetFocus(tree_.tree_view());
    }
}

void DifferencePanel::OnLayout(bool is_shown) {
    const HWND host = tree_.host();
    if (host == nullptr) {
        return;
    }
    const RECT place = Place();
    ::SetWindowPos(host, place_holder_, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOACTIVATE);
    ::ShowWindow(host, is_shown ? SW_SHOW : SW_HIDE);
    // Its room is drawn by the tree alone.
    ::ShowWindow(place_holder_, SW_HIDE);
}

}  // namespace tolvenar
