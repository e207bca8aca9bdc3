// The nodes of the difference tree while it is built, before the tree view has them. Platform-free.
#pragma once

#include <cstdint>
#include <string_view>

#include "difftree/model/caption_index.h"
#include "difftree/model/difference_tree.h"
#include "difftree/model/node_record.h"

namespace tolvenar {

class NodeTree {
public:
    explicit NodeTree(TreeControl& control) : control_(control), index_(control) {}
    // Frees the nodes that have no item.
    ~NodeTree();
    NodeTree(const NodeTree&) = delete;
    NodeTree& operator=(const NodeTree&) = delete;

    // The child of `parent` with this caption, its flags raised by `flags`, or a new last one; with
    // null the root. Null when there is no memory.
    NodeRecord* InsertNode(NodeRecord* parent, std::u16string_view caption, std::uint32_t category,
                           std::uint32_t flags, bool has_button);
    // Makes a path of nodes below `parent`, one for each component between the "\" that is not
    // empty; the last one gets the flags. `parent` itself when there is none. Null when there is no
    // memory.
    NodeRecord* InsertPath(NodeRecord* parent, std::u16string_view path, std::uint32_t category,
                           std::uint32_t flags);
    // The root's child for a category code, or null.
    NodeRecord* GetCategoryNode(std::uint32_t code) const;
    NodeRecord* root() const { return root_; }

    // Counts what changed below each node and marks the groups.
    void CountAndMark();
    // Frees what lies below the categories and is neither of this kind (kShow..., a change state)
    // nor above something that is. Nothing is inserted after that.
    void KeepOnly(std::uint32_t kind);
    // Puts nodes with children before those without, below `node` at every depth.
    static void SortLeavesLast(NodeRecord& node);
    // Hands all nodes over to the tree view, captions with change marks if told. False when there
    // is no memory: the rest is missing.
    bool FillControl(const TreeBuild& build, bool with_marks);

private:
    TreeControl& control_;
    CaptionIndex index_;
    NodeRecord* root_ = nullptr;
};

}  // namespace tolvenar
