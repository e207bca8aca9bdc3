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
    const bool is_old = header.formatFamily == 1 && header.formatRevision == 0;
    Require(CheckStorageHeader(header, header) ==
            (is_old ? OpenStorageResult::kUnsupportedRevision : OpenStorageResult::kOpened));
    StorageHeader device = header;
    ++device.osMinor;
    Require(CheckStorageHeader(header, device) != OpenStorageResult::kOpened);
    Require(ProcessorName(header.processorType)[0] != 0);
}

// A description of any length is set as far as there is room for it.
void CheckDescription(const std::u16string& text) {
    StorageHeader header{};
    SetDescription(header, text.data(), text.size());
    Require(header.descriptionBytes <= kMaxDescriptionBytes);
    const std::u16string_view set(header.description);
    Require(set.size() < kMaxDescriptionUnits && text.compare(0, set.size(), set) == 0);
}

void CheckNames(const std::u16string& path) {
    StorageNames names;
    if (MakeStorageNames(path.c_str(), names)) {
        Require(std::u16string(names.journal_temporary) == std::u16string(names.path) + u".jrn_1");
        for (const std::uint32_t number : {1u, 2u, 9999u}) {
            char16_t name[kStorageNameUnits];
            Require(MakeOldJournalName(names, number, name));
            Require(std::u16string(name).find(u".jrn_old") == std::u16string(names.path).size());
        }
    }
    StorageLocation location;
    if (SplitStoragePath(path.c_str(), location)) {
        Require(std::u16string(location.stem).find(u'\\') == std::u16string::npos);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckHeader(data, size);
    std::u16string text(size / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), data, text.size() * sizeof(char16_t));
    CheckDescription(text);
    CheckNames(text);
    return 0;
}
