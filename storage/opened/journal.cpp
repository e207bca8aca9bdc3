#include "storage/opened/journal.h"

#include <optional>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "storage/files/card_retry.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/journal_records.h"
#include "storage/opened/old_journals.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

// Nothing when the platform cannot tell: a card that is not ready is no card without a journal.
std::optional<bool> Exists(const char16_t* path) {
    if (::GetFileAttributesW(Wide(path)) != INVALID_FILE_ATTRIBUTES) {
        return true;
    }
    return IsReallyAbsent(path) ? std::optional<bool>(false) : std::nullopt;
}

// False when the file cannot be opened or read to its end: it may hold what was not read.
bool HoldsAState(const char16_t* journal, bool& holds) {
    const UniqueHandle file = OpenFile(journal, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    HandleBytes bytes(file.get());
    std::uint32_t size = 0;
    holds = false;
    if (!file || !bytes.Size(size)) {
        return false;
    }
    JournalRecordReader records(bytes);
    ObjectRecord record{};
    std::uint32_t read = 0;
    for (; !holds && records.Next(record); ++read) {
        holds = record.type == ObjectType::kState;
    }
    return holds || read >= JournalRecordCount(size);
}

// A storage file without a journal but with a temporary one: saving was stopped between the
// deletion and the renaming, so the temporary file is whole. One without any state is no journal
// that a save left. On a write-protected card it stays where it is. `path` is the journal then.
bool FinishInterruptedSave(const StorageNames& names, const char16_t*& path) {
    path = names.journal;
    const std::optional<bool> has_journal = Exists(names.journal);
    if (has_journal.value_or(false)) {
        return true;
    }
    const std::optional<bool> has_sav = Exists(names.sav);
    const std::optional<bool> has_temporary = Exists(names.journal_temporary);
    if (!has_journal || !has_sav || !has_temporary) {
        return false;
    }
    if (!*has_sav || !*has_temporary) {
        return true;
    }
    bool is_journal = false;
    // One that cannot be read now is left where it is for the next load.
    if (!HoldsAState(names.journal_temporary, is_journal)) {
        return false;
    }
    if (IsWriteProtected(names.journal_temporary)) {
        path = is_journal ? names.journal_temporary : names.journal;
        return true;
    }
    return is_journal ? ::MoveFileW(Wide(names.journal_temporary), Wide(names.journal)) != FALSE
                      : MoveJournalAside(names, names.journal_temporary);
}

// Makes the file as large as the list will be, so that a full card is met before anything of the
// journal is given up.
bool ReserveRoom(HANDLE file, HandleBytes& bytes, const ObjectList& list) {
    const std::uint64_t size = std::uint64_t{sizeof(ObjectRecord)} * list.CountRecords();
    return size <= 0xFFFFFFFF && bytes.MoveTo(static_cast<std::uint32_t>(size)) &&
           WriteToCard([file] { return ::SetEndOfFile(file) != FALSE; }) && bytes.MoveTo(0);
}

enum class Saved { kNothing, kPart, kAll };

// Writes the list into the temporary file.
Saved WriteTemporary(const StorageNames& names, const ObjectList& list, Progress* progress) {
    UniqueHandle file;
    WriteToCard([&] {
        file = OpenFile(names.journal_temporary, GENERIC_WRITE, 0, CREATE_ALWAYS);
        return static_cast<bool>(file);
    });
    HandleBytes bytes(file.get());
    if (!file || !ReserveRoom(file.get(), bytes, list)) {
        return Saved::kNothing;
    }
    if (progress != nullptr) {
        progress->ProgressBegin(list.CountRecords());
        progress->ProgressStep(u"Saving object list...");
    }
    const std::size_t written = WriteJournalRecords(bytes, list, progress);
    const bool is_whole = written == list.CountRecords();
    // What is left of the reserved room would be read as records.
    const auto end = static_cast<std::uint32_t>(written * sizeof(ObjectRecord));
    if (!is_whole && !(bytes.MoveTo(end) && ::SetEndOfFile(file.get()))) {
        return Saved::kNothing;
    }
    if (!Flush(file.get())) {
        return Saved::kNothing;
    }
    return is_whole ? Saved::kAll : Saved::kPart;
}

// Returns the result of the last record's write. A list that could be written in part only replaces
// the journal all the same (docs/oddities.md, 3): what it holds is newer, and the caller reports
// the failure by the result. The journal of before is then kept.
int SaveObjectList(const StorageNames& names, const ObjectList& list, Progress* progress) {
    const Saved saved = WriteTemporary(names, list, progress);
    if (saved == Saved::kNothing) {
        return 0;
    }
    if (saved == Saved::kAll) {
        WriteToCard([&] { return ::DeleteFileW(Wide(names.journal)) != FALSE; });
    } else if (!MoveJournalAside(names, names.journal)) {
        return 0;
    }
    const bool replaced = WriteToCard(
        [&] { return ::MoveFileW(Wide(names.journal_temporary), Wide(names.journal)) != FALSE; });
    return replaced && saved == Saved::kAll && list.CountRecords() != 0 ? 1 : 0;
}

}  // namespace

bool OpenJournal(OpenedStorage& storage, Progress* progress) {
    storage.journal = ObjectList::CreateList();
    if (!storage.journal) {
        LogMessage(u"Could't create journal", u"OpenJournal", kLogError);
        return false;
    }
    JournalLoad load{};
    if (LoadObjectList(storage.names, *storage.journal, progress, load) &&
        load.taken >= load.held) {
        storage.journal_stamp = ReadJournalStamp(storage.names);
        return true;
    }
    LogMessage(u"Could't read journal", u"OpenJournal", kLogError);
    CloseJournal(storage.names, storage.journal, false, nullptr);
    return false;
}

bool JournalIsAsLoaded(const OpenedStorage& storage) {
    return storage.journal != nullptr &&
           IsSameJournal(storage.journal_stamp, ReadJournalStamp(storage.names));
}

bool LoadObjectList(const StorageNames& names, ObjectList& list, Progress* progress,
                    JournalLoad& load) {
    load = {};
    const char16_t* path = nullptr;
    if (!FinishInterruptedSave(names, path)) {
        return false;
    }
    const UniqueHandle file = OpenForWritingIfAllowed(path, FILE_SHARE_READ, OPEN_ALWAYS);
    // Only where none can be made is there none.
    if (!file && ::GetLastError() == ERROR_FILE_NOT_FOUND) {
        return true;
    }
    HandleBytes bytes(file.get());
    std::uint32_t size = 0;
    if (!file || !bytes.Size(size)) {
        return false;
    }
    if (size == 0) {
        return true;
    }
    load.held = JournalRecordCount(size);
    if (progress != nullptr) {
        progress->ProgressBegin(size / sizeof(ObjectRecord));
        progress->ProgressStep(u"Loading object list...");
    }
    return ReadJournalRecords(bytes, list, progress, load.taken);
}

bool ReadJournalFile(const char16_t* path, ObjectList& list, JournalLoad& load,
                     std::uint32_t& bytes) {
    load = {};
    const UniqueHandle file = OpenFile(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    HandleBytes file_bytes(file.get());
    if (!file || !file_bytes.Size(bytes)) {
        return false;
    }
    load.held = JournalRecordCount(bytes);
    return ReadJournalRecords(file_bytes, list, nullptr, load.taken);
}

int CloseJournal(const StorageNames& names, std::unique_ptr<ObjectList>& list, bool save,
                 Progress* progress) {
    const int result = save && list ? SaveObjectList(names, *list, progress) : 0;
    list.reset();
    return result;
}

bool ClearJournalPlace(const StorageNames& names) {
    const bool has_records = JournalFileSize(names) != 0;
    for (const char16_t* old : {names.journal, names.journal_temporary}) {
        const bool is_kept = old != names.journal || has_records;
        const std::optional<bool> exists = is_kept ? Exists(old) : false;
        if (!exists || (*exists && !MoveJournalAside(names, old))) {
            return false;
        }
    }
    return true;
}

bool CreateJournal(const StorageNames& names) {
    return static_cast<bool>(
        OpenFile(names.journal, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS));
}

bool LacksItsStates(const OpenedStorage& storage) {
    if (storage.header == nullptr || storage.journal == nullptr ||
        storage.journal->CountRecords() != 0) {
        return false;
    }
    const UniqueHandle file = OpenSavFile(storage.names);
    std::uint32_t size = 0;
    // One that is too large to be told holds blocks.
    return file && (!HandleBytes(file.get()).Size(size) ||
                    size > StorageHeaderBytesToRead(*storage.header));
}

std::uint32_t NextStateNumber(const ObjectList* journal) { return HighestStateNumber(journal) + 1; }

std::uint32_t HighestStateNumber(const ObjectList* list) {
    return list != nullptr ? list->MaxStateNumber() : 0;
}

std::uint32_t LowestStateNumber(const ObjectList* list) {
    return list != nullptr ? list->MinStateNumber() : 0xFFFFFFFF;
}

std::uint32_t JournalFileSize(const StorageNames& names) {
    const UniqueHandle file = OpenFile(names.journal, GENERIC_READ, 0, OPEN_EXISTING);
    std::uint32_t size = 0;
    return file && HandleBytes(file.get()).Size(size) ? size : kNoFileSize;
}

}  // namespace tolvenar
