// The record behind each item of the difference tree. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/records/failure_reasons.h"
#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_record.h"

namespace tolvenar {

using TreeItem = void*;  // the tree view's handle of an item

// Bits of NodeRecord::flags.
constexpr std::uint32_t kNodeAdded = 1;
constexpr std::uint32_t kNodeDeleted = 2;
constexpr std::uint32_t kNodeBoth = kNodeAdded | kNodeDeleted;
constexpr std::uint32_t kNodeStateMask = kNodeBoth;
constexpr std::uint32_t kNodeObject = 4;
constexpr std::uint32_t kNodeGroup = 8;         // category or group: counts are drawn after it
constexpr std::uint32_t kNodeInformation = 16;  // not counted

// Above them the reasons why the node's objects could not be restored.
constexpr int kNodeReasonShift = 8;
constexpr std::uint32_t NodeFlagsOf(FailureReason reason) {
    return static_cast<std::uint32_t>(reason) << kNodeReasonShift;
}
constexpr std::uint32_t kNodeReasonMask = 0xFFFFu << kNodeReasonShift;
constexpr bool HasReason(std::uint32_t node_flags, FailureReason reason) {
    return (node_flags & NodeFlagsOf(reason)) != 0;
}

// What a tree may be cut down to: the items of one change state, or those that could not be
// restored.
constexpr std::uint32_t kShowAll = 0;
constexpr std::uint32_t kShowFailed = kNodeReasonMask;

// Category codes; a node below a category carries the object type that it stands for.
constexpr std::uint32_t kCategoryOther = 0;
constexpr std::uint32_t kCategoryRegistry = 2;
constexpr std::uint32_t kCategoryDatabases = 4;  // "Outlook Data" in the simple view
constexpr std::uint32_t kCategoryFiles = 16;
constexpr std::uint32_t kCategoryApplications = 64;
constexpr std::uint32_t kCategoryDocuments = 128;
// The root is in no category, and nothing looks for it by one.
constexpr std::uint32_t kNoCategory = 0;

// A caption that a CaptionIndex finds. Links of the model, of use during a build only: items are
// deleted in an order of their own.
struct IndexedCaption {
    char16_t* caption;  // owned by what derives from this; without marks
    const void* scope;  // among whose captions it is looked for
    std::uint32_t caption_hash;
    IndexedCaption* bucket_next;

    std::uint32_t Hash() const { return HashIn(scope, caption_hash); }
    static std::uint32_t HashIn(const void* scope, std::uint32_t caption_hash) {
        return MixBits(caption_hash,
                       static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(scope)));
    }
};

struct NodeRecord : IndexedCaption {
    TreeItem item;  // null until the item is there
    std::uint32_t group_mark;
    std::uint32_t flags;
    std::uint32_t category;
    std::uint32_t depth;  // number of ancestors
    std::uint32_t added;  // changed objects below the node
    std::uint32_t deleted;
    std::uint32_t both;
    const ObjectRecord* before;  // the object's versions in the list that the tree was built from,
    const ObjectRecord* after;   // for as long as that list is there; null for none

    // Links of the model, as above.
    bool has_button;
    NodeRecord* first_child;
    NodeRecord* last_child;
    NodeRecord* next_sibling;
};

// Frees the record and its caption; null is allowed.
void FreeNodeRecord(NodeRecord* record);

}  // namespace tolvenar
