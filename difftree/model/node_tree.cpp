#include "difftree/model/node_tree.h"

#include <new>

#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// Room for a caption and its mark.
using ItemText = TextBuffer<kCaptionUnits + 4>;

char16_t MarkOf(std::uint32_t state) {
    switch (state) {
        case kNodeAdded: return u'+';
        case kNodeDeleted: return u'-';
        default: return u'\u00B1';
    }
}

void Append(NodeRecord& parent, NodeRecord& child) {
    child.next_sibling = nullptr;
    (parent.last_child != nullptr ? parent.last_child->next_sibling : parent.first_child) = &child;
    parent.last_child = &child;
}

void FreeNodesWithoutItem(NodeRecord* node) {
    while (node != nullptr) {
        NodeRecord* const next = node->next_sibling;
        FreeNodesWithoutItem(node->first_child);
        if (node->item == nullptr) {
            FreeNodeRecord(node);
        }
        node = next;
    }
}

void CountChild(NodeRecord& parent, const NodeRecord& child) {
    parent.added += child.added;
    parent.deleted += child.deleted;
    parent.both += child.both;
    if ((child.flags & kNodeInformation) != 0) {
        return;
    }
    switch (child.flags & kNodeStateMask) {
        case kNodeAdded: ++parent.added; break;
        case kNodeDeleted: ++parent.deleted; break;
        case kNodeBoth: ++parent.both; break;
        default: break;
    }
}

void CountAndMarkNode(NodeRecord& node) {
    node.added = node.deleted = node.both = 0;
    for (NodeRecord* child = node.first_child; child != nullptr; child = child->next_sibling) {
        CountAndMarkNode(*child);
        CountChild(node, *child);
    }
    if ((node.flags & kNodeGroup) != 0) {
        node.group_mark = 1;
    }
}

bool HasChangeMark(const NodeRecord& node, const TreeBuild& build) {
    return (build.options & kTreeMarks) != 0 && (node.flags & kNodeGroup) == 0 &&
           (node.flags & kNodeObject) != 0 && (node.flags & kNodeStateMask) != 0;
}

bool HasParentBelow(const NodeRecord& node) {
    const NodeRecord* child = node.first_child;
    while (child != nullptr && child->first_child == nullptr) {
        child = child->next_sibling;
    }
    return child != nullptr;
}

// Inserts nodes, the children of one node together.
class ControlFiller {
public:
    ControlFiller(TreeControl& control, const TreeBuild& build, bool with_marks)
        : control_(control), build_(build), with_marks_(with_marks) {}

    // A control may look for a parent among all its items, from the first on: the many items that
    // are no parents come last.
    bool InsertAll(NodeRecord& root) {
        return Insert(nullptr, root) && InsertBelow(root, true) && InsertBelow(root, false);
    }

private:
    bool Insert(TreeItem parent, NodeRecord& node) {
        ItemText text;
        text.Append(node.caption);
        if (with_marks_ && HasChangeMark(node, build_)) {
            text.Append(u" (").AppendUnit(MarkOf(node.flags & kNodeStateMask)).AppendUnit(u')');
        }
        const bool is_bold =
            (build_.options & kTreeBold) != 0 && StyleOf(build_.styles, node.flags).is_bold;
        node.item = control_.InsertItem(parent, {text.text(), &node, node.has_button, is_bold});
        return node.item != nullptr;
    }
    bool InsertChildren(const NodeRecord& node) {
        NodeRecord* child = node.first_child;
        while (child != nullptr && Insert(node.item, *child)) {
            child = child->next_sibling;
        }
        return child == nullptr;
    }
    // The children of the nodes, `node` among them, that have a parent among them, or have none.
    bool InsertBelow(const NodeRecord& node, bool with_parent) {
        if (HasParentBelow(node) == with_parent && !InsertChildren(node)) {
            return false;
        }
        for (NodeRecord* child = node.first_child; child != nullptr; child = child->next_sibling) {
            if (child->first_child != nullptr && !InsertBelow(*child, with_parent)) {
                return false;
            }
        }
        return true;
    }

    TreeControl& control_;
    const TreeBuild& build_;
    const bool with_marks_;
};

bool IsOfKind(const NodeRecord& node, std::uint32_t kind) {
    return kind == kShowFailed ? (node.flags & kNodeReasonMask) != 0
                               : (node.flags & kNodeStateMask) == kind;
}

void KeepChildren(NodeRecord& node, std::uint32_t kind);

bool IsKept(NodeRecord& node, std::uint32_t kind) {
    KeepChildren(node, kind);
    return node.first_child != nullptr || IsOfKind(node, kind);
}

void KeepChildren(NodeRecord& node, std::uint32_t kind) {
    NodeRecord* child = node.first_child;
    node.first_child = node.last_child = nullptr;
    while (child != nullptr) {
        NodeRecord* const next = child->next_sibling;
        if (IsKept(*child, kind)) {
            Append(node, *child);
        } else {
            FreeNodeRecord(child);
        }
        child = next;
    }
}

}  // namespace

void FreeNodeRecord(NodeRecord* record) {
    if (record != nullptr) {
        delete[] record->caption;
        delete record;
    }
}

NodeTree::~NodeTree() { FreeNodesWithoutItem(root_); }

NodeRecord* NodeTree::InsertNode(NodeRecord* parent, std::u16string_view caption,
                                 std::uint32_t category, std::uint32_t flags, bool has_button) {
    const FoldedCaption folded(control_, caption);
    if (IndexedCaption* const found = index_.Find(parent, folded)) {
        auto* const node = static_cast<NodeRecord*>(found);
        node->flags |= flags;
        return node;
    }
    std::unique_ptr<char16_t[]> copy = CopyCaption(caption);
    std::unique_ptr<NodeRecord> node(new (std::nothrow) NodeRecord{});
    if (copy == nullptr || node == nullptr) {
        return nullptr;
    }
    node->caption = copy.get();
    node->scope = parent;
    node->category = category;
    node->flags = flags;
    node->has_button = has_button;
    if (!index_.Add(*node, folded)) {
        return nullptr;
    }
    copy.release();
    if (parent == nullptr) {
        return root_ = node.release();
    }
    node->depth = parent->depth + 1;
    Append(*parent, *node);
    return node.release();
}

NodeRecord* NodeTree::InsertPath(NodeRecord* parent, std::u16string_view path,
                                 std::uint32_t category, std::uint32_t flags) {
    while (!path.empty() && path.back() == u'\\') {
        path.remove_suffix(1);
    }
    while (parent != nullptr && !path.empty()) {
        const std::size_t end = path.find(u'\\');
        const std::u16string_view component = path.substr(0, end);
        const bool is_last = end == std::u16string_view::npos;
        if (!component.empty()) {
            parent = InsertNode(parent, component, category, is_last ? flags : 0, false);
        }
        path.remove_prefix(is_last ? path.size() : end + 1);
    }
    return parent;
}

NodeRecord* NodeTree::GetCategoryNode(std::uint32_t code) const {
    NodeRecord* node = root_ != nullptr ? root_->first_child : nullptr;
    while (node != nullptr && node->category != code) {
        node = node->next_sibling;
    }
    return node;
}

void NodeTree::CountAndMark() {
    if (root_ != nullptr) {
        CountAndMarkNode(*root_);
    }
}

void NodeTree::KeepOnly(std::uint32_t kind) {
    NodeRecord* category = root_->first_child;
    for (; category != nullptr; category = category->next_sibling) {
        KeepChildren(*category, kind);
    }
}

void NodeTree::SortLeavesLast(NodeRecord& node) {
    NodeRecord* child = node.first_child;
    NodeRecord* leaves = nullptr;
    NodeRecord** leaves_end = &leaves;
    node.first_child = node.last_child = nullptr;
    while (child != nullptr) {
        NodeRecord* const next = child->next_sibling;
        if (child->first_child != nullptr) {
            SortLeavesLast(*child);
            Append(node, *child);
        } else {
            *leaves_end = child;
            leaves_end = &child->next_sibling;
            child->next_sibling = nullptr;
        }
        child = next;
    }
    while (leaves != nullptr) {
        NodeRecord* const next = leaves->next_sibling;
        Append(node, *leaves);
        leaves = next;
    }
}

bool NodeTree::FillControl(const TreeBuild& build, bool with_marks) {
    return root_ != nullptr && ControlFiller(control_, build, with_marks).InsertAll(*root_);
}

}  // namespace tolvenar
