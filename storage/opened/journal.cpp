#include "storage/opened/journal.h"

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/journal_records.h"

namespace tolvenar {
namespace {

UniqueHandle OpenJournalFile(const StorageNames& names) {
    return OpenFile(names.journal, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS);
}

bool Exists(const char16_t* path) {
    return ::GetFileAttributesW(Wide(path)) != INVALID_FILE_ATTRIBUTES;
}

// A storage file without a journal but with a temporary one: saving was stopped between the
// deletion and the renaming, so the temporary file is whole.
bool FinishInterruptedSave(const StorageNames& names) {
    if (Exists(names.journal) || !Exists(names.sav) || !Exists(names.journal_temporary)) {
        return true;
    }
    return ::MoveFileW(Wide(names.journal_temporary), Wide(names.journal)) != FALSE;
}

int SaveObjectList(const StorageNames& names, const ObjectList& list, Progress* progress) {
    UniqueHandle file = OpenFile(names.journal_temporary, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (!file) {
        return 0;
    }
    if (progress != nullptr) {
        progress->ProgressBegin(list.CountRecords());
        progress->ProgressStep(u"Saving object list...");
    }
    HandleBytes bytes(file.get());
    const int result = WriteJournalRecords(bytes, list, progress) ? 1 : 0;
    ::FlushFileBuffers(file.get());
    file.Reset();
    // A list that could be written in part only replaces the journal all the same: what it holds is
    // newer, and the caller reports the failure by the result.
    ::DeleteFileW(Wide(names.journal));
    return ::MoveFileW(Wide(names.journal_temporary), Wide(names.journal)) ? result : 0;
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
    if (!FinishInterruptedSave(names)) {
        return false;
    }
    const UniqueHandle file = OpenJournalFile(names);
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

int CloseJournal(const StorageNames& names, std::unique_ptr<ObjectList>& list, bool save,
                 Progress* progress) {
    const int result = save && list ? SaveObjectList(names, *list, progress) : 0;
    list.reset();
    return result;
}

bool EmptyJournal(const StorageNames& names) {
    const UniqueHandle file = OpenJournalFile(names);
    if (!file || !::SetEndOfFile(file.get())) {
        return false;
    }
    return !Exists(names.journal_temporary) || ::DeleteFileW(Wide(names.journal_temporary));
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
