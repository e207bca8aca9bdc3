#include "tests/damage/exceptions.h"

#include <algorithm>

#include "tests/damage/sav_map.h"

namespace tolvenar {
namespace {

constexpr char kDeletion[] = "deletion";

std::vector<Bytes> SortedRecords(const Bytes& journal) {
    std::vector<Bytes> records;
    for (std::size_t at = 0; at < journal.size(); at += sizeof(ObjectRecord)) {
        records.push_back(journal.substr(at, sizeof(ObjectRecord)));
    }
    std::sort(records.begin(), records.end());
    return records;
}

// The records of the sound journal that are not in the damaged one as they were.
std::vector<ObjectRecord> MissingRecords(const Bytes& sound, const Bytes& damaged) {
    const std::vector<Bytes> before = SortedRecords(sound);
    const std::vector<Bytes> now = SortedRecords(damaged);
    std::vector<Bytes> missing;
    std::set_difference(before.begin(), before.end(), now.begin(), now.end(),
                        std::back_inserter(missing));
    std::vector<ObjectRecord> records;
    for (const Bytes& bytes : missing) {
        records.push_back(RecordsIn(bytes).front());
    }
    return records;
}

bool IsDeletion(const ObjectRecord& record) { return (record.flags & JF_DELETE) != 0; }

// Whether both halves are there and of the storage as it is now.
bool IsOfOneSize(const Damaged& damaged) {
    const SoundStorage& sound = *damaged.storage;
    return damaged.pair.journal && damaged.pair.sav &&
           damaged.pair.sav->size() == sound.sav().size();
}

std::size_t FirstChange(const Bytes& sound, const Bytes& damaged, std::size_t begin) {
    while (begin < sound.size() && sound[begin] == damaged[begin]) {
        ++begin;
    }
    return begin;
}

const char* ExceptionInSav(const Pair& sound, const Bytes& damaged) {
    const SavMap map(sound);
    const char* exception = nullptr;
    for (std::size_t at = FirstChange(*sound.sav, damaged, 0); at < damaged.size();
         at = FirstChange(*sound.sav, damaged, at + 1)) {
        const char* why = map.Unchecked(at);
        if (why == nullptr || (exception != nullptr && why != exception)) {
            return nullptr;
        }
        exception = why;
    }
    return exception;
}

}  // namespace

const char* ExceptionOf(const Damaged& damaged) {
    if (!IsOfOneSize(damaged)) {
        return nullptr;
    }
    const Pair& sound = damaged.storage->pairs.back();
    const auto missing = MissingRecords(*sound.journal, *damaged.pair.journal);
    if (*sound.sav != *damaged.pair.sav) {
        return missing.empty() ? ExceptionInSav(sound, *damaged.pair.sav) : nullptr;
    }
    const bool is_deletions =
        !missing.empty() && std::all_of(missing.begin(), missing.end(), IsDeletion);
    return is_deletions ? kDeletion : nullptr;
}

std::string DescribePlace(const Damaged& damaged) {
    if (!IsOfOneSize(damaged)) {
        return "";
    }
    const Pair& sound = damaged.storage->pairs.back();
    const std::size_t place = FirstChange(*sound.sav, *damaged.pair.sav, 0);
    if (place < sound.sav->size()) {
        return SavMap(sound).Describe(place);
    }
    const auto missing = MissingRecords(*sound.journal, *damaged.pair.journal);
    return missing.empty()
               ? ""
               : std::to_string(missing.size()) + " records, " + Describe(missing.front()) + ", " +
                     SavMap(sound).Describe(missing.front().propOffset);
}

}  // namespace tolvenar
