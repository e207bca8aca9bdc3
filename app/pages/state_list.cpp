#include "app/pages/state_list.h"

namespace tolvenar {

void StateList::Fill(const ObjectList* journal) {
    Clear();
    if (journal == nullptr) {
        return;
    }
    ::SendMessageW(list_box_, WM_SETREDRAW, FALSE, 0);
    for (const ObjectList::Node& node : *journal) {
        if (node.record->type == ObjectType::kState) {
            Insert(*node.record);
        }
    }
    ::SendMessageW(list_box_, WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(list_box_, nullptr, TRUE);
}

void StateList::Clear() {
    for (int i = 0, count = Count(); i < count; ++i) {
        delete At(i);
    }
    ::SendMessageW(list_box_, LB_RESETCONTENT, 0, 0);
}

int StateList::Selected() const {
    return static_cast<int>(::SendMessageW(list_box_, LB_GETCURSEL, 0, 0));
}

const ObjectRecord* StateList::At(int index) const {
    if (index < 0 || index >= Count()) {
        return nullptr;
    }
    return reinterpret_cast<const ObjectRecord*>(
        ::SendMessageW(list_box_, LB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

int StateList::Count() const {
    return static_cast<int>(::SendMessageW(list_box_, LB_GETCOUNT, 0, 0));
}

void StateList::Select(int index) {
    ::SendMessageW(list_box_, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

int StateList::Find(int state_number) const {
    for (int i = 0, count = Count(); i < count; ++i) {
        if (At(i)->state_number == state_number) {
            return i;
        }
    }
    return -1;
}

// Binary search for the first older state; the list is in descending order. The journal may begin
// with the newest state or with the oldest.
int StateList::PlaceOf(const ObjectRecord& record) const {
    int place = 0;
    for (int count = Count(); count > 0;) {
        const int half = count / 2;
        if (At(place + half)->state_number < record.state_number) {
            count = half;
        } else {
            place += half + 1;
            count -= half + 1;
        }
    }
    return place;
}

// Without memory the state is missing from the list; an item without a record would be worse.
void StateList::Insert(const ObjectRecord& record) {
    ObjectRecord* copy = NewObjectRecord(record);
    if (copy == nullptr) {
        return;
    }
    wchar_t text[32];
    ::wsprintfW(text, L"State %i", record.state_number);
    const LRESULT item =
        ::SendMessageW(list_box_, LB_INSERTSTRING, static_cast<WPARAM>(PlaceOf(record)),
                       reinterpret_cast<LPARAM>(text));
    if (item < 0) {
        delete copy;
        return;
    }
    ::SendMessageW(list_box_, LB_SETITEMDATA, static_cast<WPARAM>(item),
                   reinterpret_cast<LPARAM>(copy));
}

}  // namespace tolvenar
