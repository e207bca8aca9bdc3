#include "pc/storage/storage_head.h"

#include "pc/text/failure.h"

namespace tolvenar::pc {

StorageHeader ReadStorageHead(StorageReader& reader, const std::string& path) {
    StorageHeader header{};
    if (!reader.ReadHead(header) || header.formatFamily != kFormatFamily ||
        header.formatRevision == 0 || header.formatRevision > kFormatRevision) {
        throw Failure(ExitCode::kNotAStorage,
                      path + ": not a storage, or of a newer version of Tolvenar");
    }
    return header;
}

}  // namespace tolvenar::pc
