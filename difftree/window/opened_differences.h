// The difference list of the open storage as the difference tree takes it.
#pragma once

#include "difftree/model/list_enumerator.h"
#include "difftree/window/device_contents.h"
#include "storage/files/storage_view.h"
#include "storage/opened/engine.h"

namespace tolvenar {

// Holds the storage file open for as long as it lives.
class OpenedDifferences {
public:
    explicit OpenedDifferences(Engine& engine)
        : has_storage_(mapping_.Open(engine.storage.names.sav)),
          contents_(engine.databases, engine.info),
          enumerator_(engine.storage.difference.get(), engine.storage.failures,
                      has_storage_ ? &storage_ : nullptr, engine.info, contents_) {}
    OpenedDifferences(const OpenedDifferences&) = delete;
    OpenedDifferences& operator=(const OpenedDifferences&) = delete;

    DifferenceEnumerator& enumerator() { return enumerator_; }

private:
    StorageMapping mapping_;
    bool has_storage_;
    MappedBytes bytes_{mapping_};
    StorageReader storage_{bytes_};
    DeviceContents contents_;
    ListEnumerator enumerator_;
};

}  // namespace tolvenar
