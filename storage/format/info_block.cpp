#include "storage/format/info_block.h"

namespace tolvenar {

bool InfoBlock::SetName(const char16_t* text, std::size_t units) {
    head().name_bytes = 0;
    name()[0] = 0;
    return AppendName(text, units);
}

bool InfoBlock::AppendName(const char16_t* text, std::size_t units) {
    const std::size_t present = head().name_bytes / sizeof(char16_t);
    if (units > kMaxNameBytes / sizeof(char16_t) - present) {
        return false;
    }
    std::memcpy(name() + present, text, units * sizeof(char16_t));
    name()[present + units] = 0;
    head().name_bytes = static_cast<std::uint16_t>((present + units) * sizeof(char16_t));
    return true;
}

bool ParseInfoBlock(const void* bytes, std::size_t available, InfoBlock& block) {
    block.Clear();
    if (available < kInfoHeadBytes) {
        return false;
    }
    std::memcpy(block.bytes(), bytes, kInfoHeadBytes);
    const std::size_t name_bytes = block.head().name_bytes;
    if (name_bytes % sizeof(char16_t) != 0 || name_bytes > kMaxNameBytes ||
        name_bytes > available - kInfoHeadBytes) {
        block.Clear();
        return false;
    }
    std::memcpy(block.bytes(), bytes, kInfoHeadBytes + name_bytes);
    block.name()[name_bytes / sizeof(char16_t)] = 0;
    return true;
}

}  // namespace tolvenar
