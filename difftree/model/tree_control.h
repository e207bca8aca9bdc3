// The tree view as the model of the difference tree needs it. Platform-free.
#pragma once

#include <cstddef>

#include "difftree/model/node_record.h"

namespace tolvenar {

// What an item shows; the record is owned by the item from its insertion on.
struct ItemContent {
    const char16_t* text;
    NodeRecord* record;
    bool has_button;
    bool is_bold;
};

class TreeControl {
public:
    // Deletes every item; each frees its record with FreeNodeRecord.
    virtual void DeleteAllItems() = 0;
    // Appends an item under `parent`, null for the root. Null when there is no memory: the record
    // is then still the caller's.
    virtual TreeItem InsertItem(TreeItem parent, const ItemContent& content) = 0;
    virtual void SetButton(TreeItem item, bool has_button) = 0;
    virtual void Expand(TreeItem item) = 0;
    // Expands the root and scrolls it to the top.
    virtual void ShowRoot(TreeItem root) = 0;
    // Turns letters into those that stand for either case; lengths stay.
    virtual void FoldCase(char16_t* text, std::size_t units) = 0;

protected:
    ~TreeControl() = default;
};

}  // namespace tolvenar
