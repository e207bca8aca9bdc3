// The tree of differences of the device's program, as text and as JSON.
#pragma once

#include <string>
#include <vector>

#include "pc/command/json.h"
#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

// An item of the tree, named as the device names it.
struct TreeLine {
    std::u16string caption;
    std::uint32_t added;  // changed objects below it
    std::uint32_t deleted;
    std::uint32_t both;
    bool has_counts;       // a category or a group
    std::uint32_t change;  // of an object itself: kNodeAdded, kNodeDeleted, kNodeBoth; or 0
    std::size_t depth;
};

// In the order of the tree. `is_advanced` is the view by files, registry and databases, without it
// that by documents and applications.
std::vector<TreeLine> BuildTree(StoredPair& pair, const ObjectList& differences, bool is_advanced);

// "Files (+2, -1)".
std::string LineOf(const TreeLine& line);

// Nested by "items".
Json JsonOf(const std::vector<TreeLine>& tree);

}  // namespace tolvenar::pc
