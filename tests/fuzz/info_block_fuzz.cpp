// Stored blocks come from a card that anything may have damaged.
#include <string_view>

#include "storage/format/info_block.h"
#include "tests/fuzz/fuzz_source.h"

using namespace tolvenar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InfoBlock block;
    if (!ParseInfoBlock(data, size, block)) {
        Require(block.head().name_bytes == 0);
        return 0;
    }
    const std::size_t units = block.head().name_bytes / sizeof(char16_t);
    Require(block.size() <= size && block.size() <= kInfoBlockBytes && block.name()[units] == 0);
    Require(std::u16string_view(block.name()).size() <= units);
    // Whatever was read can be extended up to the buffer's end and not beyond.
    while (block.AppendName(u"x", 1)) {
    }
    Require(block.size() == kInfoBlockBytes);
    return 0;
}
