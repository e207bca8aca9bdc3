// The journal: the object list of all states and its file. docs/formats/journal.md.
#pragma once

#include <cstdint>
#include <memory>

#include "snapshot/records/object_list.h"
#include "snapshot/text/progress.h"
#include "storage/opened/opened_storage.h"

namespace tolvenar {

// `progress` may be null everywhere here.

// Loads the journal into `storage.journal`. False, after a line in the log and without a journal,
// when there is no memory or fewer records could be read than the file holds: an incomplete list
// must never reach a restore.
bool OpenJournal(OpenedStorage& storage, Progress* progress);

// False when the journal file is another one than `storage.journal` was loaded from, or gone: an
// operation would mix two storages.
bool JournalIsAsLoaded(const OpenedStorage& storage);

struct JournalLoad {
    std::uint32_t taken;  // records read
    std::uint32_t held;   // records in the file, a short one at its end included
};
// Reads the journal file into `list`; a missing file is created empty. Stops at a failed read,
// which only `load` tells. False when the file cannot be opened or memory is short.
bool LoadObjectList(const StorageNames& names, ObjectList& list, Progress* progress,
                    JournalLoad& load);

// The same of a journal file that is there; nothing is made or moved. Puts its size into `bytes`.
bool ReadJournalFile(const char16_t* path, ObjectList& list, JournalLoad& load,
                     std::uint32_t& bytes);

// Saves the list, when `save` is set, through the temporary file; frees it in any case. Room for
// the whole list is reserved before its first record: without it, and when the temporary file
// cannot be made or flushed, the journal stays as it was. Returns the result of the last record's
// write; 0 also when nothing was written or the saved file did not take the journal's place.
int CloseJournal(const StorageNames& names, std::unique_ptr<ObjectList>& list, bool save,
                 Progress* progress);

// Moves journal and temporary journal aside, before a new storage file is made: they belong to one
// that is gone. An empty journal holds nothing to be kept. False when one of them cannot be moved.
bool ClearJournalPlace(const StorageNames& names);
// Makes the empty journal of a new storage file. False when it cannot be had.
bool CreateJournal(const StorageNames& names);

// True when the storage file holds more than its head and the loaded journal nothing: a backup was
// ended before its journal was saved, or the journal is lost.
bool LacksItsStates(const OpenedStorage& storage);

// The number of the state to be written next: 1 for an absent or empty journal. Not cut to 16 bits.
std::uint32_t NextStateNumber(const ObjectList* journal);
// The greatest state number; 0 for an absent or empty list.
std::uint32_t HighestStateNumber(const ObjectList* list);
// The least; all ones for an absent or empty list.
std::uint32_t LowestStateNumber(const ObjectList* list);

constexpr std::uint32_t kNoFileSize = 0xFFFFFFFF;
// Bytes of the journal file, or kNoFileSize when it cannot be opened.
std::uint32_t JournalFileSize(const StorageNames& names);

}  // namespace tolvenar
