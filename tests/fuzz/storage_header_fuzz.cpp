// The head of a storage file comes from a card that anything may have damaged; names come from
// paths that a user types.
#include <cstring>
#include <string>

#include "storage/format/storage_header.h"
#include "storage/format/storage_names.h"
#include "tests/fuzz/fuzz_source.h"

using namespace tolvenar;

namespace {

void CheckHeader(const std::uint8_t* data, std::size_t size) {
    StorageHeader header;
    if (!ParseStorageHeader(data, size, header)) {
        Require(header.descriptionBytes == 0);
        return;
    }
    Require(header.descriptionBytes <= kMaxDescriptionBytes);
    Require(StorageHeaderBytesToRead(header) <= sizeof header);
    Require(header.deviceName[99] == 0 && header.description[kMaxDescriptionUnits - 1] == 0);
    Require(std::u16string(header.description).size() <= header.descriptionBytes / 2);
    CheckStorageHeader(header, header);
}

void CheckNames(const std::uint8_t* data, std::size_t size) {
    std::u16string path(size / sizeof(char16_t), u'\0');
    std::memcpy(path.data(), data, path.size() * sizeof(char16_t));
    StorageNames names;
    if (MakeStorageNames(path.c_str(), names)) {
        Require(std::u16string(names.journal_temporary) == std::u16string(names.path) + u".jrn_1");
    }
    StorageLocation location;
    if (SplitStoragePath(path.c_str(), location)) {
        Require(std::u16string(location.stem).find(u'\\') == std::u16string::npos);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckHeader(data, size);
    CheckNames(data, size);
    return 0;
}
