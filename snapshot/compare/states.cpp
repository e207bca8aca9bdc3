#include "snapshot/compare/states.h"

namespace tolvenar {

const ObjectRecord* FindLastState(const ObjectList* journal) {
    const ObjectRecord* last = nullptr;
    if (journal == nullptr) {
        return nullptr;
    }
    for (const ObjectList::Node& node : *journal) {
        if (node.record->type == ObjectType::kState &&
            (last == nullptr || node.record->state_number > last->state_number)) {
            last = node.record;
        }
    }
    return last;
}

bool HasState(const ObjectList& journal, std::uint32_t state) {
    for (const ObjectList::Node& node : journal) {
        if (node.record->state_number == state) {
            return true;
        }
    }
    return false;
}

std::uint32_t LastStoredState(const ObjectList* journal) {
    const ObjectRecord* last = FindLastState(journal);
    return last != nullptr ? last->state_number : 0;
}

}  // namespace tolvenar
