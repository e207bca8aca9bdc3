#include "snapshot/checksum.h"

#include <array>

namespace tolvenar {
namespace {
constexpr std::array<std::uint16_t, 256> MakeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit) { crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1; }
        table[i] = static_cast<std::uint16_t>(crc);
    }
    return table;
}
constexpr auto kTable = MakeTable();
}  // namespace

std::uint16_t Checksum16(const void* bytes, std::size_t size, std::uint16_t seed) {
    const auto* byte = static_cast<const std::uint8_t*>(bytes);
    unsigned crc = seed;
    for (; size != 0; --size) { crc = kTable[(crc ^ *byte++) & 0xFF] ^ (crc >> 8); }
    return static_cast<std::uint16_t>(crc);
}

}  // namespace tolvenar
