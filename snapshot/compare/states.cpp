#include "snapshot/compare/states.h"

namespace tolvenar {

const ObjectRecord* FindLastState(const ObjectList* journal) {
    const ObjectRecord* last = nullptr;
    if (journal == nullptr) {
        return nullptr;
    }
    ObjectRecord* record = nullptr;
    for (auto cursor = journal->First(); ObjectList::Next(cursor, nullptr, &record);) {
        if (record->type == ObjectType::kState &&
            (last == nullptr || record->state_number > last->state_number)) {
            last = record;
        }
    }
    return last;
}

std::uint32_t LastStoredState(const ObjectList* journal) {
    const ObjectRecord* last = FindLastState(journal);
    return last != nullptr ? last->state_number : 0;
}

}  // namespace tolvenar
