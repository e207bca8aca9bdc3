#include "storage/opened/journal.h"

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "storage/files/block_io.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kRecordBytes = sizeof(ObjectRecord);

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

// A short last record keeps the bytes of the one before it behind its own, on purpose: the buffer
// is the same for all. False when memory is short.
bool ReadRecords(HANDLE file, ObjectList& list, Progress* progress, std::uint32_t& taken) {
    ObjectRecord record{};
    DWORD done = 0;
    while (::ReadFile(file, &record, kRecordBytes, &done, nullptr) && done != 0) {
        if (!list.AddObject(record)) {
            return false;
        }
        ++taken;
        if (progress != nullptr) {
            progress->ProgressStep();
        }
    }
    return true;
}

// Stops at the first failed write. Returns the result of the last one.
int WriteRecords(HANDLE file, const ObjectList& list, Progress* progress) {
    int result = 0;
    ObjectList::Cursor cursor = list.First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record)) {
        if (record->propOffset == 0 && (record->flags & JF_DELETE) != 0) {
            LogMessage(u"Empty propOffset, but JF_DELETE", u"CloseJournal", kLogError);
        }
        result = WriteAll(file, record, kRecordBytes) ? 1 : 0;
        if (result == 0) {
            break;
        }
        if (progress != nullptr) {
            progress->ProgressStep();
        }
    }
    return result;
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
    const int result = WriteRecords(file.get(), list, progress);
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
    std::uint32_t bytes = 0;
    if (!file || !FileBytes(file.get(), bytes)) {
        return false;
    }
    if (bytes == 0) {
        return true;
    }
    load.held = bytes / kRecordBytes + (bytes % kRecordBytes != 0 ? 1 : 0);
    if (progress != nullptr) {
        progress->ProgressBegin(bytes / kRecordBytes);
        progress->ProgressStep(u"Loading object list...");
    }
    return ReadRecords(file.get(), list, progress, load.taken);
}

int CloseJournal(const StorageNames& names, std::unique_ptr<ObjectList>& list, bool save,
                 Progress* progress) {
    const int result = save && list ? SaveObjectList(names, *list, progress) : 0;
    list.reset();
    return result;
}

bool EmptyJournal(const StorageNames& names) {
    const UniqueHandle file = OpenJournalFile(names);
    if (!file || !MoveTo(file.get(), 0) || !::SetEndOfFile(file.get())) {
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
    std::uint32_t bytes = 0;
    return file && FileBytes(file.get(), bytes) ? bytes : kNoFileSize;
}

}  // namespace tolvenar
