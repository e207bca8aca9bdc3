#include "difftree/window/tree_search.h"

#include "difftree/model/caption_index.h"
#include "difftree/window/tree_view.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

// A longer pause begins a new search.
constexpr DWORD kPauseMs = 2000;

// The next item from top to bottom, whether its branch is open or not; behind the last the first.
HTREEITEM NextItem(HWND tree_view, HTREEITEM item) {
    if (const HTREEITEM child = RelatedItem(tree_view, TVGN_CHILD, item)) {
        return child;
    }
    while (item != nullptr) {
        if (const HTREEITEM sibling = RelatedItem(tree_view, TVGN_NEXT, item)) {
            return sibling;
        }
        item = RelatedItem(tree_view, TVGN_PARENT, item);
    }
    return RelatedItem(tree_view, TVGN_ROOT, nullptr);
}

}  // namespace

void TreeSearch::Find(HWND tree_view, bool with_selected) const {
    const HTREEITEM selected = SelectedItem(tree_view);
    const HTREEITEM start =
        selected != nullptr ? selected : RelatedItem(tree_view, TVGN_ROOT, nullptr);
    if (start == nullptr || length_ == 0) {
        return;
    }
    TreeView control(tree_view);
    const FoldedCaption sought(control, Utf16(text_));
    const HTREEITEM first = with_selected ? start : NextItem(tree_view, start);
    HTREEITEM item = first;
    do {
        const NodeRecord* const node = NodeOf(tree_view, item);
        const bool has_caption = node != nullptr && node->caption != nullptr;
        if (has_caption && FoldedCaption(control, node->caption).text().find(sought.text()) !=
                               std::u16string_view::npos) {
            ::SendMessageW(tree_view, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
            return;
        }
        item = NextItem(tree_view, item);
    } while (item != first && item != nullptr);
}

bool TreeSearch::OnCharacter(HWND tree_view, wchar_t character, DWORD time) {
    if (time - last_time_ > kPauseMs) {
        length_ = 0;
    }
    const bool begins_nothing = character < L' ' || (character == L' ' && length_ == 0);
    if (begins_nothing || length_ + 1 >= kSearchUnits) {
        return false;
    }
    last_time_ = time;
    text_[length_++] = character;
    text_[length_] = 0;
    Find(tree_view, true);
    return true;
}

void TreeSearch::FindNext(HWND tree_view) const { Find(tree_view, false); }

}  // namespace tolvenar
