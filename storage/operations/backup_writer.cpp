#include "storage/operations/backup_writer.h"

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/compare/lost_containers.h"
#include "snapshot/engine/descriptions.h"
#include "snapshot/engine/difference_engine.h"
#include "snapshot/engine/program_values.h"
#include "snapshot/records/checksum.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/files/handle_bytes.h"
#include "storage/objects/object_data_writers.h"
#include "storage/opened/journal.h"
#include "storage/operations/backup_room.h"
#include "storage/operations/saved_counts.h"
#include "storage/operations/scan_result.h"
#include "storage/operations/withdrawals.h"

namespace tolvenar {
namespace {

constexpr int kCompleteSteps = 4;
constexpr std::uint32_t kMaxStateNumber = 0xFFFF;
constexpr std::uint64_t kMaxStorageBytes = 0xFFFFFFFF;  // offsets have 32 bits
constexpr std::size_t kFailureTextUnits = 400;

bool Fail(ResultCode code, BackupResult& result) {
    result.code = code;
    return false;
}

// Enters the record that makes the state visible. It goes to the front of the list, so that the
// state's block is the first of every backup.
bool AddStateRecord(ObjectList& difference, std::uint32_t state_number) {
    ObjectRecord record{};
    record.state_number = static_cast<std::uint16_t>(state_number);
    record.flags = JF_ADD;
    record.type = ObjectType::kState;
    return difference.AddObject(record);
}

// Gives every record the new state's number; the list's keys stay as they are.
void Number(ObjectList& list, std::uint32_t state_number) {
    for (ObjectList::Node& node : list) {
        node.record->state_number = static_cast<std::uint16_t>(state_number);
    }
}

// Neither room on the card nor the deletion of old states helps.
bool FailFull(const char16_t* reason, BackupResult& result) {
    LogMessage(reason, u"DoBackup", kLogError);
    result.storage_is_full = true;
    return Fail(ResultCode::kNoSpace, result);
}

// Appends the blocks of the difference list to the storage file.
bool WriteState(Engine& engine, std::uint32_t state_number, const char16_t* description,
                BackupResult& result) {
    const UniqueHandle sav_file = OpenSavFileForWriting(engine.storage.names);
    HandleBytes sav_bytes(sav_file.get());
    ObjectList& difference = *engine.storage.difference;
    engine.info.SetStateDescription(description);
    std::uint32_t end = 0;
    if (!sav_file || !sav_bytes.Size(end) || !sav_bytes.MoveTo(end) ||
        !AddStateRecord(difference, state_number)) {
        return Fail(ResultCode::kFailed, result);
    }
    Number(difference, state_number);
    const std::uint64_t estimate = EstimateList(engine, difference);
    if (end + estimate > kMaxStorageBytes) {
        return FailFull(u"The storage file cannot grow over 4 GB", result);
    }
    const ResultCode room = CheckRoom(engine, estimate, result);
    if (room != ResultCode::kSuccess) {
        return Fail(room, result);
    }
    StorageAppender storage(sav_bytes, end);
    std::size_t failed_count = 0;
    const bool has_state = BackupItems(engine, storage, difference, failed_count) != 0;
    result.failed = static_cast<std::uint32_t>(failed_count);
    return (has_state && Flush(sav_file.get())) || Fail(ResultCode::kFailed, result);
}

// Records that failed stay out: the new state has what the state before had, and the next backup
// meets the objects again.
bool MergeIntoJournal(const ObjectList& difference, ObjectList& journal) {
    for (const ObjectList::Node& node : difference) {
        if ((node.record->flags & JF_FAILED) == 0 && !journal.AddObject(*node.record)) {
            return false;
        }
    }
    return true;
}

// Writes the journal with the new state and loads it again. A journal that could not be merged
// whole is not written: the state would lack objects, and its restore would delete them.
bool SaveJournal(Engine& engine, bool keep_journal_closed, BackupResult& result) {
    OpenedStorage& storage = engine.storage;
    const bool merged = MergeIntoJournal(*storage.difference, *storage.journal);
    const int written = CloseJournal(storage.names, storage.journal, merged, &engine.progress);
    FreeWorkingLists(storage, true);
    if (!keep_journal_closed && !OpenJournal(storage, &engine.progress)) {
        return Fail(ResultCode::kJournalUnreadable, result);
    }
    return written != 0 || Fail(ResultCode::kFailed, result);
}

// False when the storage file cannot be opened.
bool LeaveOutOwnValues(Engine& engine) {
    ObjectList& difference = *engine.storage.difference;
    if (difference.CountRecords() == 0) {
        return true;
    }
    Descriptions descriptions(engine);
    if (descriptions.sav_file) {
        TakeOutOwnValues(difference, kOwnValues, descriptions.source);
    }
    return static_cast<bool>(descriptions.sav_file);
}

bool RunBackup(Engine& engine, std::uint32_t state_number, const char16_t* description,
               bool keep_journal_closed, BackupResult& result) {
    if (state_number == 0) {
        return Fail(ResultCode::kFailed, result);
    }
    if (!FindDifference(engine, state_number - 1)) {
        return Fail(CodeWithoutDifferences(engine.storage), result);
    }
    if (!LeaveOutOwnValues(engine) || !WithdrawDeletions(engine, result)) {
        return Fail(ResultCode::kFailed, result);
    }
    if (engine.storage.difference->CountRecords() == 0) {
        result.code = ResultCode::kNoDifference;
        for (int i = 0; i < kCompleteSteps; ++i) {
            engine.progress.ProgressStep(u"Complete.");
        }
        return true;
    }
    if (state_number > kMaxStateNumber) {
        return FailFull(u"The storage file has no number for another state", result);
    }
    if (!WriteState(engine, state_number, description, result)) {
        return false;
    }
    if (result.failed != 0 && !WithdrawDeletionsOfFailed(engine)) {
        return Fail(ResultCode::kFailed, result);
    }
    // An automatic backup ends the program: nobody is told.
    SavedCounts saved;
    if (!keep_journal_closed && CountSaved(engine, saved)) {
        saved.state_number = state_number;
    }
    const bool is_saved = SaveJournal(engine, keep_journal_closed, result);
    engine.storage.saved = is_saved ? saved : SavedCounts{};
    return is_saved;
}

// An item that could not be written is described once, for the log and for what is in it.
void NoteFailedItem(Engine& engine, const ObjectRecord& record, LostContainers& lost) {
    TextBuffer<kFailureTextUnits> text;
    InfoBlock block;
    if (engine.info.GetOIDInfo(record.TolvOID, record.dwOID, block)) {
        text.Append(u"dwOID = ").AppendHex(record.dwOID);
        text.Append(u", TolvOID = ").AppendHex(record.TolvOID);
        text.Append(u"\r\nObj Name: ").Append(block.name());
        text.Append(u"\r\nObj Type: ").AppendHex(block.head().type);
        if (!lost.Contain(block)) {
            lost.Add(block);
        }
    } else {
        text.Append(u"unavailable info from dwOID = ").AppendHex(record.dwOID);
        text.Append(u", TolvOID = ").AppendHex(record.TolvOID);
    }
    LogMessage(text.text(), u"backup item failed", kLogError);
}

// True for an addition in a container that could not be written. The scan meets a container before
// what is in it, and so does the list.
bool IsLost(Engine& engine, const ObjectRecord& record, const LostContainers& lost) {
    InfoBlock block;
    return !lost.empty() && (record.flags & JF_ADD) != 0 &&
           engine.info.GetOIDInfo(record.TolvOID, record.dwOID, block) && lost.Contain(block);
}

}  // namespace

bool DoBackup(Engine& engine, std::uint32_t state_number, const char16_t* description,
              bool keep_journal_closed, BackupResult& result) {
    result = {};
    engine.storage.saved = {};
    const bool done = RunBackup(engine, state_number, description, keep_journal_closed, result);
    // The difference list of a backup must not be met by the advanced page's buttons.
    FreeWorkingLists(engine.storage, true);
    engine.storage.registry_objects.RegObjectClear();
    return done;
}

int BackupItems(Engine& engine, StorageAppender& storage, ObjectList& list,
                std::size_t& failed_count) {
    engine.progress.ProgressBegin(list.CountRecords());
    engine.progress.ProgressStep(u"Backing Up...");
    failed_count = 0;
    LostContainers lost;
    const ObjectInfo::KeptOpen until_written(engine.info);
    for (const ObjectList::Node& node : list) {
        ObjectRecord& record = *node.record;
        const bool is_stored = !IsLost(engine, record, lost) && BackupItem(engine, storage, record);
        if (!is_stored) {
            record.flags |= JF_FAILED;
            NoteFailedItem(engine, record, lost);
            ++failed_count;
        }
        if (!is_stored && record.type == ObjectType::kState) {
            return 0;
        }
        engine.progress.ProgressStep();
    }
    return 1;
}

bool BackupItem(Engine& engine, StorageAppender& storage, ObjectRecord& record) {
    if ((record.flags & JF_ADD) == 0) {
        return true;
    }
    const ObjectInfo::KeptOpen until_written(engine.info);
    InfoBlock block;
    // An id that was given out again since the scan is another object's.
    if (!engine.info.GetOIDInfo(record.TolvOID, record.dwOID, block) ||
        block.type() != record.type) {
        return false;
    }
    StoredData data;
    const DataWriter writer{engine.info, engine.databases, storage,
                            block,       record.TolvOID,   record.dwOID};
    std::uint32_t block_offset = 0;
    if (!storage.WriteBlock(block.bytes(), kInfoHeadBytes, block_offset, true) ||
        !BackupObjectData(writer, data) || !storage.Flush()) {
        storage.TakeBack(block_offset);
        return false;
    }
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.data_offset = data.offset;
    if (CarriesDataChecksum(record.type)) {
        record.content_fingerprint = data.checksum;
    }
    record.propOffset = block_offset;
    return true;
}

}  // namespace tolvenar
