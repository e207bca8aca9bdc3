// The open storage: its names, header, journal and the lists of the operation that runs. The
// application owns one and hands it on by reference.
#pragma once

#include <cstdint>
#include <memory>

#include "snapshot/records/failure_reasons.h"
#include "snapshot/records/left_out.h"
#include "snapshot/records/object_list.h"
#include "snapshot/records/registry_objects.h"
#include "storage/files/journal_stamp.h"
#include "storage/format/storage_header.h"
#include "storage/format/storage_names.h"

namespace tolvenar {

// What a backup put into its state, in objects; a changed one counts once.
struct SavedCounts {
    std::uint32_t state_number = 0;  // 0: nothing is known
    std::uint32_t added = 0;
    std::uint32_t changed = 0;
    std::uint32_t deleted = 0;
};

struct OpenedStorage {
    StorageNames names;
    std::unique_ptr<StorageHeader> header;   // null while no storage is open
    std::unique_ptr<ObjectList> journal;     // every record of every state; null when not loaded
    JournalStamp journal_stamp;              // the journal file's when it was loaded
    std::unique_ptr<ObjectList> older;       // the older state
    std::unique_ptr<ObjectList> newer;       // the newer state or the device
    std::unique_ptr<ObjectList> difference;  // what differs, for writer, restore and tree
    // The states that the difference list leads to when it is restored as it stands, and with its
    // sense turned round; 0 is none, or the device as it was.
    std::uint32_t aimed_state = 0;
    std::uint32_t opposite_state = 0;
    FailureTable failures;             // why the last restore left records in the difference list
    SavedCounts saved;                 // by the last backup, until a restore
    RegistryObjects registry_objects;  // what the last registry scan met
    LeftOut left_out;                  // what the last scan met and could not read
};

// Frees the working lists without saving, the difference list too when `all` is set.
void FreeWorkingLists(OpenedStorage& storage, bool all);
// Frees every list without saving, and the header: no storage is open afterwards. The names stay.
void CloseStorage(OpenedStorage& storage);

}  // namespace tolvenar
