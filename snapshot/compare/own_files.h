// The storage's own files as the exclusion rules want them. Header only and platform-free.
#pragma once

#include "snapshot/compare/exclusion.h"
#include "storage/format/storage_names.h"

namespace tolvenar {

class OwnFiles {
public:
    // `storage_names` stay for as long as this does.
    explicit OwnFiles(const StorageNames& storage_names) {
        SplitStoragePath(storage_names.path, location_);
        names_ = {{NameWithoutFolder(storage_names.sav), NameWithoutFolder(storage_names.journal),
                   NameWithoutFolder(storage_names.journal_temporary)},
                  location_.folder};
    }
    OwnFiles(const OwnFiles&) = delete;
    OwnFiles& operator=(const OwnFiles&) = delete;

    const StorageFileNames& names() const { return names_; }

private:
    StorageLocation location_;
    StorageFileNames names_;
};

}  // namespace tolvenar
