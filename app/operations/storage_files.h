// The pair of files that the settings name: deriving their names, creating, deleting and choosing
// them.
#pragma once

#include "storage/format/storage_names.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {

// Fills `names` from the settings. False when no storage is chosen: none can be opened then.
bool DeriveNames(StorageNames& names);

// Creates the storage file of `names` and an empty journal beside it. On failure no storage file is
// made: with the old journal it would pass for one that holds everything already.
bool CreateStoragePair(const StorageNames& names, DescriptionPrompt* prompt, Existing existing);
// The same, silently, for the storage that the settings name. A storage file that is there is left
// as it is: a card that comes up late may have hidden it.
bool CreateNewStorage();

// Deletes the journal, then the storage file, that the settings name. True when both were deleted;
// the second is tried in any case.
bool DeleteOldStorage();

// Completes a path that another program's restore starts from: text that a failed read left gets
// "storage0" behind it (docs/oddities.md, 30). An empty path stays empty.
void CompleteStoragePath(bool was_read, char16_t (&path)[kStoragePathUnits]);

// True when every chosen file's folder is refused: the storage is looked for beside the program
// then.
bool StorageFolderIsFixed();

// Takes a chosen file's path into the settings. The folder is kept only on an installed system.
void SaveLocation(const char16_t* chosen_path);

}  // namespace tolvenar
