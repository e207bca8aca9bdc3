#include "app/operations/storage_search.h"

#include "app/operations/messages.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/storage_files.h"
#include "platform/file_entry.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

FileStamp StampOf(const char16_t* path) {
    WIN32_FIND_DATAW entry{};
    if (!FindEntry(path, entry)) {
        return {};
    }
    return {true, entry.nFileSizeLow, entry.ftLastWriteTime.dwLowDateTime,
            entry.ftLastWriteTime.dwHighDateTime};
}

PairStamp StampOf(const StorageNames& names) {
    return {StampOf(names.sav), StampOf(names.journal)};
}

// A damaged head is told when its file is chosen; else the page that offers another is enough.
void TellOnce(StorageSearch& search, OpenStorageResult result) {
    if (result != OpenStorageResult::kHeaderUnreadable && result != search.told) {
        TellWhyNotOpened(result);
    }
    search.told = result;
}

StorageLoad Load(Application& app) {
    app.storageStatus = StorageStatus::kNone;
    if (!DeriveNames(app.storage.names)) {
        return StorageLoad::kNone;
    }
    OpenStorageResult result;
    if (!OpenStorage(app.storage.names.sav, app.storage, result)) {
        TellOnce(app.search, result);
        return StorageLoad::kNone;
    }
    app.search.told = OpenStorageResult::kOpened;
    if (!LoadUnderPopup(app)) {
        return StorageLoad::kListUnreadable;
    }
    app.storageStatus = StorageStatus::kOpen;
    return StorageLoad::kLoaded;
}

// What failed once fails again for as long as the files are the same.
bool IsWorthwhile(const StorageSearch& search, SearchReason reason) {
    StorageNames names;
    return reason == SearchReason::kButton ||
           (DeriveNames(names) && !(search.has_failed && StampOf(names) == search.failed));
}

bool MayLook(const Application& app) {
    return app.storageStatus != StorageStatus::kOpen && !app.gate.IsOccupied() &&
           !app.search.is_held && !ScheduleIsSuspended();
}

SearchResult Look(Application& app, SearchReason reason) {
    const JournalStamp before = app.storage.journal_stamp;
    CloseStorage(app.storage);
    switch (LoadChosenStorage(app)) {
        case StorageLoad::kLoaded: break;
        case StorageLoad::kListUnreadable:
            CloseStorage(app.storage);
            if (reason == SearchReason::kButton) {
                TellOfUnreadableJournal(app.instance, app.storage.names);
            }
            return SearchResult::kNothing;
        default: return SearchResult::kNothing;
    }
    return IsSameJournal(before, app.storage.journal_stamp) ? SearchResult::kSame
                                                            : SearchResult::kOther;
}

}  // namespace

void NoteFailedLoad(Application& app) {
    app.search.has_failed = true;
    app.search.failed = StampOf(app.storage.names);
}

StorageLoad LoadChosenStorage(Application& app) {
    const StorageLoad load = Load(app);
    app.search.has_failed = false;
    if (load != StorageLoad::kLoaded) {
        NoteFailedLoad(app);
    }
    return load;
}

SearchResult LookForStorage(Application& app, SearchReason reason) {
    if (!MayLook(app) || !IsWorthwhile(app.search, reason)) {
        return SearchResult::kNothing;
    }
    app.search.is_held = true;
    const SearchResult result = Look(app, reason);
    app.search.is_held = false;
    return result;
}

}  // namespace tolvenar
