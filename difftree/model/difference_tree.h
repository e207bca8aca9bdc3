// The difference tree: sorts what differs between two states into categories that a user
// understands, counts and labels it, and fills a tree view with it. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "difftree/model/difference_enumerator.h"
#include "difftree/model/tree_control.h"

namespace tolvenar {

// Bits of TreeBuild::options.
constexpr std::uint32_t kTreeColours = 1;  // captions in the colours of their states
constexpr std::uint32_t kTreeCounts = 2;   // counts after the captions of categories and groups
constexpr std::uint32_t kTreeMarks = 4;    // "(+)", "(-)" or "(±)" after the captions of objects
constexpr std::uint32_t kTreeBold = 8;     // bold items as the styles have it

// TreeBuild::expand_mask: the codes of the categories that have a button while they are empty, and
constexpr std::uint32_t kExpandOther = 0x80000000;
constexpr std::uint32_t kExpandOtherDatabases = 0x40000000;

// How the nodes of one state look. A COLORREF.
struct NodeStyle {
    std::uint32_t colour;
    bool is_bold;
};
struct NodeStyles {
    NodeStyle unchanged;
    NodeStyle added;
    NodeStyle both;
    NodeStyle deleted;
};
constexpr NodeStyles kDefaultStyles = {
    {0x000000, false}, {0xFF0000, true}, {0x808080, true}, {0x0000FF, true}};
const NodeStyle& StyleOf(const NodeStyles& styles, std::uint32_t node_flags);

// Changed objects of a tree.
struct TreeCounts {
    std::uint32_t shown = 0;
    std::uint32_t all = 0;
    std::uint32_t failed = 0;  // objects that could not be restored, shown or not
};

// What a build is made with. The values are the restore page's.
struct TreeBuild {
    std::uint32_t options = kTreeColours | kTreeCounts | kTreeMarks | kTreeBold;
    std::uint32_t expand_mask =
        kExpandOtherDatabases | kCategoryFiles | kCategoryDatabases | kCategoryRegistry;
    std::uint16_t filter_mask = JF_ADD | JF_DELETE;
    bool advanced_view = false;
    bool opens_branches = false;             // those that hold something
    std::uint32_t shown_kind = kShowAll;     // or the items of one change state, or kShowFailed
    TreeCounts* counts = nullptr;            // filled by the build, if given
    const char16_t* root_caption = nullptr;  // null or empty: "Differences"
    NodeStyles styles = kDefaultStyles;
};

// The texts that the tree shows or looks for.
constexpr std::size_t kTreeTextUnits = 100;
using TreeText = char16_t[kTreeTextUnits];
struct TreeTexts {
    TreeText root;
    TreeText applications;
    TreeText documents;
    TreeText databases;
    TreeText registry;
    TreeText files;
    TreeText other;
    TreeText outlook_data;
    TreeText other_databases;
    TreeText unknown_title;
    TreeText database_names[4];   // of the known databases
    TreeText database_titles[4];  // what they are shown as
    TreeText documents_prefix;
    TreeText no_subject;
};

// Builds the tree out of the enumerator's objects. 1, or 0 when the enumerator aborts or there is
// no memory: what was built so far stays, without labels.
int BuildDifferenceTree(TreeControl& control, const TreeTexts& texts,
                        DifferenceEnumerator& enumerator, const TreeBuild& build);

}  // namespace tolvenar
