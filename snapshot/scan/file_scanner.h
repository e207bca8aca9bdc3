// Walks the object store's folders and makes a record of every file and folder.
#pragma once

#include "platform/win32.h"

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/info_source.h"
#include "snapshot/records/left_out.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

struct FileScan {
    ObjectList& list;
    LiveObjects& info;
    const StorageFileNames& storage_files;
    LeftOut& left_out;  // gets the files that are there and cannot be read, and a lack of memory
};

// Called for each entry of the walk; the folder's path has no backslash at its end and is empty for
// the root.
using FileMaker = void (*)(FileScan& scan, const char16_t* folder_path,
                           const WIN32_FIND_DATAW& entry);

// Visits everything below the folder, which itself is not visited; empty is the root of the object
// store. A folder comes before its contents. Mounted cards are not entered. What cannot be listed
// is left out.
void ScanFiles(FileScan& scan, const char16_t* folder_path, FileMaker maker);

// Enters the record of one entry, or none: what is excluded, in ROM, a mounted card, without an
// identifier, or cannot be described or read is left out.
void MakeFileObject(FileScan& scan, const char16_t* folder_path, const WIN32_FIND_DATAW& entry);

}  // namespace tolvenar
