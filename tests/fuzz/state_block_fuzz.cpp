// The block and the description of a state come from a card that anything may have damaged.
#include <string_view>

#include "storage/format/state_block.h"
#include "tests/fuzz/fuzz_source.h"

using namespace tolvenar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    ObjectRecord record{};
    record.propOffset = input.Word();
    record.data_offset = input.Word();
    const std::uint32_t bad_begin = input.Half();
    const std::uint32_t bad_bytes = input.Byte();
    const Bytes content = input.Rest();
    MemoryBytes file(content);
    if (bad_bytes != 0) {
        file.bad_begin = bad_begin;
        file.bad_end = bad_begin + bad_bytes;
    }
    StorageReader storage(file);
    StateBlock block;
    std::memset(&block, 0xFF, sizeof block);
    const bool was_read = ReadStateBlock(storage, record, block);
    const bool is_there =
        content.size() >= kInfoHeadBytes && record.propOffset <= content.size() - kInfoHeadBytes;
    Require(was_read ? is_there : !is_there || bad_bytes != 0);
    const std::u16string_view description(block.description, kStateDescriptionUnits);
    const std::size_t units = description.find(u'\0');
    Require(units != std::u16string_view::npos);
    Require(was_read || (units == 0 && block.time_low == 0 && block.time_high == 0));
    Require(units == 0 ||
            content.compare(record.data_offset, 2 * units, Units(block.description)) == 0);
    return 0;
}
