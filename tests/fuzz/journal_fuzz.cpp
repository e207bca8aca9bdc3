// A journal file comes from a card that anything may have damaged and that may stop answering.
#include <vector>

#include "snapshot/compare/states.h"
#include "storage/format/journal_records.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

constexpr std::size_t kRecordBytes = sizeof(ObjectRecord);

// Reads are short where the input says so, and fail from a place on.
class UnsteadyFile final : public ByteReader {
public:
    UnsteadyFile(const Bytes& content, std::uint32_t short_every, std::uint32_t short_bytes,
                 std::uint32_t bad_begin)
        : content_(Exactly(content)),
          short_every_(short_every),
          short_bytes_(short_bytes),
          bad_begin_(bad_begin) {}

    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override {
        read = 0;
        if (offset >= bad_begin_) {
            return false;
        }
        ++reads_;
        if (short_every_ != 0 && reads_ % short_every_ == 0) {
            bytes = std::min(bytes, short_bytes_);
        }
        if (offset < content_.size()) {
            read = std::min(bytes, static_cast<std::uint32_t>(content_.size()) - offset);
            std::memcpy(buffer, content_.data() + offset, read);
            lengths.push_back(read);
        }
        return true;
    }
    bool Size(std::uint32_t& bytes) override {
        bytes = static_cast<std::uint32_t>(content_.size());
        return true;
    }

    std::vector<std::uint32_t> lengths;  // of the reads that gave something

private:
    const std::vector<char> content_;
    const std::uint32_t short_every_;
    const std::uint32_t short_bytes_;
    const std::uint32_t bad_begin_;
    std::uint32_t reads_ = 0;
};

class CountedSteps final : public Progress {
public:
    void ProgressBegin(std::size_t) override {}
    void ProgressStep(const char16_t*) override { ++steps; }

    std::size_t steps = 0;
};

// What reads of these lengths make of the file: each overwrites the record of the one before.
std::vector<ObjectRecord> RecordsIn(const Bytes& content,
                                    const std::vector<std::uint32_t>& lengths) {
    std::vector<ObjectRecord> records;
    ObjectRecord record{};
    std::size_t offset = 0;
    for (const std::uint32_t length : lengths) {
        if (length == 0) {
            break;
        }
        std::memcpy(&record, content.data() + offset, length);
        offset += length;
        records.push_back(record);
    }
    return records;
}

std::unique_ptr<ObjectList> Load(ByteReader& file, std::size_t& taken_out) {
    auto list = ObjectList::CreateList();
    CountedSteps progress;
    std::uint32_t taken = 0;
    Require(ReadJournalRecords(file, *list, &progress, taken));
    Require(progress.steps == taken && list->CountRecords() <= taken);
    taken_out = taken;
    return list;
}

// What was loaded is saved whole and comes back, in the reverse order.
void CheckSaving(const ObjectList& list, std::uint32_t room) {
    MemoryBytes saved;
    Require(WriteJournalRecords(saved, list, nullptr) == list.CountRecords());
    Require(saved.content().size() == list.CountRecords() * kRecordBytes);
    const Bytes whole = saved.content();
    std::size_t taken = 0;
    const auto again = Load(saved, taken);
    Require(taken == list.CountRecords() && again->CountRecords() == taken);
    std::vector<KeyedRecord> walk = Walk(*again);
    std::reverse(walk.begin(), walk.end());
    Require(walk == Walk(list));

    MemoryBytes full;
    full.room = room;
    const std::size_t written = WriteJournalRecords(full, list, nullptr);
    Require(written == std::min<std::size_t>(room / kRecordBytes, list.CountRecords()));
    Require(whole.compare(0, full.content().size(), full.content()) == 0);
}

// The list that every record was entered in holds of each key the last one.
void CheckList(ObjectList& list, const std::vector<ObjectRecord>& records) {
    std::uint32_t greatest = 0;
    const ObjectRecord* last_state = FindLastState(&list);
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        const ObjectList::Node* const node = list.FindByKey(KeyOf(*record));
        Require(node != nullptr && list.MinStateNumber() <= record->state_number);
        greatest = std::max<std::uint32_t>(greatest, record->state_number);
    }
    Require(list.MaxStateNumber() == greatest);
    Require(LastStoredState(&list) == (last_state != nullptr ? last_state->state_number : 0));
    Require(LastStoredState(&list) <= greatest);
}

// Taking every second record out leaves the others.
void CheckRemoval(ObjectList& list) {
    std::vector<KeyedRecord> left;
    std::size_t index = 0;
    for (const KeyedRecord& entry : Walk(list)) {
        if (++index % 2 == 0) {
            Require(list.RemoveByKey(entry.key) == 1 && list.RemoveByKey(entry.key) == 0);
        } else {
            left.push_back(entry);
        }
    }
    Require(Walk(list) == left && list.CountRecords() == left.size());
    ObjectList::Cursor cursor = list.First();
    ObjectKey key{};
    ObjectRecord* record = nullptr;
    for (const KeyedRecord& entry : left) {
        Require(ObjectList::Next(cursor, &key, &record) == 1 && key == entry.key);
    }
    Require(ObjectList::Next(cursor, nullptr, nullptr) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint32_t short_every = input.Byte();
    const std::uint32_t short_bytes = input.Byte();
    const std::uint32_t bad_begin = input.Half();
    const Bytes content = input.Rest();
    UnsteadyFile file(content, short_every, short_bytes, bad_begin);
    std::size_t taken = 0;
    std::unique_ptr<ObjectList> list = Load(file, taken);
    const std::vector<ObjectRecord> records = RecordsIn(content, file.lengths);
    Require(records.size() == taken);
    Require(short_every != 0 || bad_begin < content.size() ||
            taken == JournalRecordCount(static_cast<std::uint32_t>(content.size())));
    CheckList(*list, records);
    CheckSaving(*list, bad_begin);
    CheckRemoval(*list);
    Require(ResetList(list) && list->CountRecords() == 0 && list->MinStateNumber() == 0xFFFFFFFF);
    Require(FindLastState(nullptr) == nullptr && LastStoredState(list.get()) == 0);
    ClearLog();
    return 0;
}
