#include "tests/damage/pairs.h"

namespace tolvenar {

std::vector<ObjectRecord> RecordsIn(const Bytes& journal) {
    std::vector<ObjectRecord> records(journal.size() / sizeof(ObjectRecord));
    if (!records.empty()) {
        std::memcpy(records.data(), journal.data(), records.size() * sizeof(ObjectRecord));
    }
    return records;
}

Bytes Reversed(const Bytes& journal) {
    Bytes reversed;
    for (std::size_t end = journal.size(); end >= sizeof(ObjectRecord);) {
        end -= sizeof(ObjectRecord);
        reversed += journal.substr(end, sizeof(ObjectRecord));
    }
    return reversed;
}

std::string Describe(const ObjectRecord& record) {
    return "state " + std::to_string(record.state_number) +
           ((record.flags & JF_DELETE) != 0 ? ", deletion" : ", addition") + " of type " +
           std::to_string(static_cast<int>(record.type)) + ", block at " +
           std::to_string(record.propOffset);
}

}  // namespace tolvenar
