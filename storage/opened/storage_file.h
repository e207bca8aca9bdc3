// Making, reading and opening the storage file. docs/formats/storage-file.md. The head is parsed
// and judged in storage_header; the blocks behind it are written by the backup writer.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <memory>

#include "storage/format/storage_header.h"
#include "storage/opened/opened_storage.h"

namespace tolvenar {

// Asks the user for a new storage's description; implemented by the interface.
class DescriptionPrompt {
public:
    // Offers `proposed` for editing. True when the user confirmed: `units` units (200 at most) are
    // in `answer`, terminated or not.
    virtual bool AskDescription(const char16_t* proposed, char16_t (&answer)[kMaxDescriptionUnits],
                                std::size_t& units) = 0;

protected:
    ~DescriptionPrompt() = default;
};

// What becomes of a storage file that is there already.
enum class Existing {
    kReset,
    kKept,  // and none is created
};

// Creates the ".sav" file of `path` and writes its head without a description, which is whole
// before `prompt` is asked; what the user confirms replaces it. Null when the file cannot be
// created or there is no memory; a failed write is found at the next open.
std::unique_ptr<StorageHeader> CreateStorage(const char16_t* path, DescriptionPrompt* prompt,
                                             Existing existing = Existing::kReset);

// The head of an existing storage file; null when it cannot be opened or read, or is not whole.
std::unique_ptr<StorageHeader> ReadStorageHeader(const char16_t* sav_path);

// Opens the storage that `path` belongs to: puts its header and two empty working lists into
// `storage`. On failure `result` says why and `storage` stays as it was.
bool OpenStorage(const char16_t* path, OpenedStorage& storage, OpenStorageResult& result);

// True when one of the two files is write-protected: the storage can be read and restored from, and
// nothing is written to either.
bool StorageIsWriteProtected(const StorageNames& names);

// True when there is certainly no such file, so that one may be created: a file that exists but is
// held by another program is not absent.
bool IsReallyAbsent(const char16_t* path);

// Fills in the device's name, processor, system version and the format that this program writes.
void ReadDeviceIdent(StorageHeader& header);

constexpr std::size_t kDeviceTextUnits = 512;
// The text that is offered as a new storage's description. Returns its length.
std::size_t FormatDeviceText(const StorageHeader& header, char16_t (&buffer)[kDeviceTextUnits]);

}  // namespace tolvenar
