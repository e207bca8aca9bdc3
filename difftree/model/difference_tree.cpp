#include "difftree/model/difference_tree.h"

#include "difftree/model/node_tree.h"
#include "difftree/model/object_classifier.h"

namespace tolvenar {
namespace {

// The change state of an object, 0 for one that is not shown.
std::uint32_t StateOf(std::uint16_t flags) {
    if ((flags & JF_ADD) != 0) {
        return kNodeAdded;
    }
    if ((flags & JF_DELETE) != 0) {
        return kNodeDeleted;
    }
    return (flags & kFlagAddition20) != 0 ? kNodeBoth : 0;
}

// False when the enumerator aborts or there is no memory.
bool ClassifyAll(DifferenceEnumerator& enumerator, ObjectClassifier& classifier,
                 std::uint16_t filter_mask, TreeCounts& counts) {
    EnumeratedObject object{};
    for (;;) {
        switch (enumerator.Next(object)) {
            case DifferenceEnumerator::kEnd:
            case DifferenceEnumerator::kEndOfList: return true;
            case DifferenceEnumerator::kNoObject: continue;
            case DifferenceEnumerator::kAbort: return false;
            default: break;
        }
        const std::uint32_t state = StateOf(object.flags & filter_mask);
        const std::uint32_t flags = state | kNodeObject | NodeFlagsOf(object.reason);
        counts.failed += object.reason != FailureReason::kNone ? 1 : 0;
        if (state != 0 && !classifier.ClassifyObject(object, flags)) {
            return false;
        }
    }
}

bool MakeNodes(TreeControl& control, NodeTree& tree, const TreeTexts& texts,
               DifferenceEnumerator& enumerator, const TreeBuild& build, TreeCounts& counts) {
    ObjectClassifier classifier(control, tree, texts, build, enumerator);
    return classifier.MakeCategories() &&
           ClassifyAll(enumerator, classifier, build.filter_mask, counts) &&
           classifier.AddApplications();
}

std::uint32_t ChangesBelow(const NodeRecord& node) { return node.added + node.deleted + node.both; }

// Counts what is there, then what is shown of it.
void Count(NodeTree& tree, std::uint32_t shown_kind, TreeCounts& counts) {
    tree.CountAndMark();
    counts.shown = counts.all = ChangesBelow(*tree.root());
    if (shown_kind != kShowAll) {
        tree.KeepOnly(shown_kind);
        tree.CountAndMark();
        counts.shown = ChangesBelow(*tree.root());
    }
}

void OpenBranches(TreeControl& control, const NodeRecord& node) {
    for (const NodeRecord* child = node.first_child; child != nullptr;
         child = child->next_sibling) {
        if (child->first_child != nullptr) {
            OpenBranches(control, *child);
            control.Expand(child->item);
        }
    }
}

}  // namespace

const NodeStyle& StyleOf(const NodeStyles& styles, std::uint32_t node_flags) {
    switch (node_flags & kNodeStateMask) {
        case kNodeAdded: return styles.added;
        case kNodeDeleted: return styles.deleted;
        case kNodeBoth: return styles.both;
        default: return styles.unchanged;
    }
}

int BuildDifferenceTree(TreeControl& control, const TreeTexts& texts,
                        DifferenceEnumerator& enumerator, const TreeBuild& build) {
    control.DeleteAllItems();
    NodeTree tree(control);
    TreeCounts counts;
    if (!MakeNodes(control, tree, texts, enumerator, build, counts)) {
        tree.FillControl(build, false);
        return 0;
    }
    Count(tree, build.shown_kind, counts);
    if (build.counts != nullptr) {
        *build.counts = counts;
    }
    if (NodeRecord* const files =
            build.advanced_view ? tree.GetCategoryNode(kCategoryFiles) : nullptr) {
        NodeTree::SortLeavesLast(*files);
    }
    if (!tree.FillControl(build, true)) {
        return 0;
    }
    const NodeRecord& root = *tree.root();
    if (root.added == 0 && root.deleted == 0 && root.both == 0) {
        control.SetButton(root.item, false);
    }
    if (build.opens_branches) {
        OpenBranches(control, root);
    }
    control.ShowRoot(root.item);
    return 1;
}

}  // namespace tolvenar
