#include "app/operations/storage_files.h"

#include <algorithm>

#include "app/settings/own_values.h"
#include "platform/text.h"
#include "snapshot/text/text_buffer.h"
#include "storage/opened/journal.h"

namespace tolvenar {

static_assert(kSettingPathUnits == kStoragePathUnits && kSettingTextUnits == kLocationTextUnits);

bool DeriveNames(StorageNames& names) {
    char16_t path[kStoragePathUnits];
    names = {};
    return ReadStoragePath(path) && MakeStorageNames(path, names);
}

bool CreateStoragePair(const StorageNames& names, DescriptionPrompt* prompt, Existing existing) {
    // First, so that a stop in between leaves no old journal beside the new storage file.
    if (!ClearJournalPlace(names) || !CreateStorage(names.sav, prompt, existing)) {
        return false;
    }
    if (CreateJournal(names)) {
        return true;
    }
    ::DeleteFileW(Wide(names.sav));
    return false;
}

bool CreateNewStorage() {
    StorageNames names;
    return DeriveNames(names) && CreateStoragePair(names, nullptr, Existing::kKept);
}

bool DeleteOldStorage() {
    StorageNames names;
    if (!DeriveNames(names)) {
        return false;
    }
    const bool journal_deleted = ::DeleteFileW(Wide(names.journal)) != FALSE;
    const bool storage_deleted = ::DeleteFileW(Wide(names.sav)) != FALSE;
    // A save that was stopped left it. Beside a journal that stays nobody deletes it.
    if (journal_deleted) {
        ::DeleteFileW(Wide(names.journal_temporary));
    }
    return journal_deleted && storage_deleted;
}

void CompleteStoragePath(bool was_read, char16_t (&path)[kStoragePathUnits]) {
    if (was_read || path[0] == 0) {
        return;
    }
    TextBuffer<kStoragePathUnits> completed;
    completed.Append(path).Append(u"storage0");
    std::copy_n(completed.text(), completed.length() + 1, path);
}

// Only an installation creates the value.
bool StorageFolderIsFixed() { return !ValueExists(setting::kStoragePath); }

void SaveLocation(const char16_t* chosen_path) {
    StorageLocation location;
    if (!SplitStoragePath(chosen_path, location)) {
        return;
    }
    WriteStorageFileName(location.stem);
    WriteStorageFolder(location.folder);
}

}  // namespace tolvenar
