// The list of a storage's states in a list box, the newest first.
#pragma once

#include "platform/win32.h"

#include "snapshot/records/object_list.h"

namespace tolvenar {

// Each item's data is a copy of the state's record that belongs to the item: the journal is freed
// and loaded again by every operation.
class StateList {
public:
    // `list_box`: sorts nothing itself.
    void Attach(HWND list_box) { list_box_ = list_box; }

    // One item for each state record of `journal`, which may be null. Equal numbers keep the order
    // of the journal.
    void Fill(const ObjectList* journal);
    // Also before the list box goes: it does not free what its items point to.
    void Clear();

    int Selected() const;  // LB_ERR for none
    // The record of an item; null for an index that is none.
    const ObjectRecord* At(int index) const;
    const ObjectRecord* SelectedRecord() const { return At(Selected()); }
    int Count() const;
    void Select(int index);
    // The first item of that number, or -1.
    int Find(int state_number) const;

private:
    void Insert(const ObjectRecord& record);
    int PlaceOf(const ObjectRecord& record) const;

    HWND list_box_ = nullptr;
};

}  // namespace tolvenar
