#include "storage/states.h"

namespace tolvenar {

std::uint32_t LastStoredState(const ObjectList* journal) {
    if (journal == nullptr) {
        return 0;
    }
    std::uint32_t last = 0;
    ObjectRecord* record = nullptr;
    for (auto cursor = journal->First(); ObjectList::Next(cursor, nullptr, &record);) {
        if (record->type == ObjectType::kState && record->state_number > last) {
            last = record->state_number;
        }
    }
    return last;
}

}  // namespace tolvenar
