// The whole road of a restore's lists over a damaged journal and a damaged storage file: states are
// rebuilt and compared, differences pruned and turned round, new ids entered.
#include <string_view>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/prune.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/compare/value_names.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

constexpr std::uint16_t kPending = JF_ADD | JF_DELETE;

std::unique_ptr<ObjectList> StateList(const ObjectList& journal, std::uint32_t state,
                                      InfoSource& info) {
    auto list = ObjectList::CreateList();
    Require(BuildStateList(*list, journal, state, info));
    for (const ObjectRecord& record : RecordsOf(*list)) {
        Require(record.flags == 0 && record.state_number <= state);
        Require(record.type != ObjectType::kState || record.state_number == state);
    }
    return list;
}

// As an undamaged storage has them: registry objects, which alone have a generated id, can be
// described.
bool IsSound(const ObjectList& list, InfoSource& info) {
    for (const ObjectRecord& record : RecordsOf(list)) {
        InfoBlock block;
        const bool is_registry = IsRegistryObject(record);
        if (is_registry != ((record.TolvOID & kTolvOidMask) != 0) ||
            (is_registry ? !FetchInfo(record, info, block) : record.TolvOID != 0)) {
            return false;
        }
    }
    return true;
}

using Comparison = bool (*)(ObjectList*, ObjectList*, ObjectList&, InfoSource&);
bool CompareLists(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info) {
    return CmpLists(older, newer, diff, info);
}

// A sound state does not differ from itself.
void CheckOneState(const ObjectList& journal, std::uint32_t state, InfoSource& info) {
    for (const Comparison compare : {CompareLists, FindChanges}) {
        const auto older = StateList(journal, state, info);
        const auto newer = StateList(journal, state, info);
        Require(Walk(*older) == Walk(*newer));
        const bool is_sound = IsSound(*older, info);
        const auto diff = ObjectList::CreateList();
        Require(compare(older.get(), newer.get(), *diff, info));
        Require(!is_sound || diff->CountRecords() == 0);
    }
}

std::unique_ptr<ObjectList> Differences(ObjectList* older, ObjectList* newer, InfoSource& info) {
    const std::size_t most = (older != nullptr ? older->CountRecords() : 0) + newer->CountRecords();
    auto diff = ObjectList::CreateList();
    Require(FindChanges(older, newer, *diff, info));
    Require(diff->CountRecords() <= most);
    for (const ObjectRecord& record : RecordsOf(*diff)) {
        Require(record.type != ObjectType::kState);
        Require(record.flags == JF_ADD || (record.flags == JF_DELETE && older != nullptr));
    }
    return diff;
}

// A card that answers only after a while makes differences of what is none, and nothing worse.
void CheckUnsteadyCard(const ObjectList& journal, std::uint32_t state, FuzzSource& info,
                       int failing_reads) {
    const auto older = StateList(journal, state, info);
    const auto newer = StateList(journal, state, info);
    info.failing_reads = failing_reads;
    const auto diff = Differences(older.get(), newer.get(), info);
    const bool has_failed = info.failing_reads != failing_reads;
    info.failing_reads = 0;
    Require(has_failed || !IsSound(*StateList(journal, state, info), info) ||
            diff->CountRecords() == 0);
}

void CheckPruning(ObjectList& diff, InfoSource& info) {
    for (const PruningRule* table : {kBackupPruning, kRestorePruning}) {
        const std::size_t before = diff.CountRecords();
        PruneDifferences(diff, table, info);
        Require(Walk(diff).size() == diff.CountRecords() && diff.CountRecords() <= before);
    }
}

// No key or value is deleted whose stored version may be the same object.
void CheckKept(ObjectList& diff, InfoSource& info) {
    Require(KeepStoredObjects(diff, info));
    for (const ObjectRecord& deleted : RecordsOf(diff)) {
        for (const ObjectRecord& stored : RecordsOf(diff)) {
            if (!IsRegistryObject(deleted) || deleted.type != stored.type ||
                !(deleted.flags & JF_ADD) || !(stored.flags & JF_DELETE) ||
                !SameTolvOID(deleted, stored)) {
                continue;
            }
            Require(CompareObjects(deleted, stored, info) == Sameness::kOther);
        }
    }
}

void CheckInversion(ObjectList& diff) {
    std::vector<KeyedRecord> expected;
    for (KeyedRecord entry : Walk(diff)) {
        if ((entry.record.flags & kPending) != 0) {
            entry.record.flags ^= kPending;
        }
        if (entry.record.flags != 0) {
            expected.push_back(entry);
        }
    }
    InvertPendingFlags(diff);
    Require(Walk(diff) == expected);
}

void CheckValueNames(const ObjectList& journal, FuzzSource& info) {
    ValueNames names(&journal, info.storage(), info);
    for (const ObjectRecord& record : RecordsOf(journal)) {
        InfoBlock block;
        if (!FetchInfo(record, info, block)) {
            continue;
        }
        const std::u16string_view name(block.name());
        std::size_t place = 0;
        if (names.FindSeparator(record, block, place)) {
            Require(place < name.size() && name[place] == kNameSeparator);
        } else {
            Require(name.find(kNameSeparator) == name.npos);
        }
    }
}

// New ids change ids alone, and of those objects alone that have one.
void CheckNewIds(ObjectList& journal, const ObjectList& diff, std::uint32_t first_id) {
    const std::vector<KeyedRecord> before = Walk(journal);
    JournalUpdater updater(&journal);
    for (const ObjectRecord& record : RecordsOf(diff)) {
        if (HasObjectStoreId(record.type)) {
            updater.UpdateJournalOid(record, first_id++);
        }
    }
    Require(updater.SeparateVersions());
    std::vector<KeyedRecord> after = Walk(journal);
    Require(after.size() == before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (HasObjectStoreId(after[i].record.type)) {
            after[i].record.dwOID = before[i].record.dwOID;
        }
    }
    Require(after == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint32_t older_state = input.Byte();
    const std::uint32_t newer_state = input.Byte();
    const std::uint32_t first_id = input.Byte();
    const int failing_reads = input.Byte() % 8;
    const Bytes records = input.TakeBytes(sizeof(ObjectRecord) * (input.Half() % 32));
    FuzzSource info(input.Rest());
    const auto journal = LoadRecords(records.data(), records.size());

    CheckOneState(*journal, older_state, info);
    CheckUnsteadyCard(*journal, older_state, info, failing_reads);
    const auto older = StateList(*journal, older_state, info);
    const auto newer = StateList(*journal, newer_state, info);
    const auto diff = Differences(older.get(), newer.get(), info);
    CheckPruning(*diff, info);
    CheckKept(*diff, info);
    CheckInversion(*diff);
    const auto everything = Differences(nullptr, newer.get(), info);
    CheckValueNames(*journal, info);
    CheckNewIds(*journal, *diff, first_id);
    ClearLog();
    return 0;
}
