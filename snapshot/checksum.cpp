#include "snapshot/checksum.h"

#include <array>
#include <cstring>

namespace tolvenar {
namespace {

constexpr std::size_t kSlice = 16;
using Table = std::array<std::uint16_t, 256>;

// tables[k][i] is the checksum of byte i followed by k zero bytes, so that the contributions of the
// bytes of one slice can be looked up independently and combined with exclusive or.
constexpr std::array<Table, kSlice> MakeTables() {
    std::array<Table, kSlice> tables{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1;
        }
        tables[0][i] = static_cast<std::uint16_t>(crc);
    }
    for (std::size_t k = 1; k < kSlice; ++k) {
        for (std::size_t i = 0; i < 256; ++i) {
            const unsigned shorter = tables[k - 1][i];
            tables[k][i] = static_cast<std::uint16_t>(tables[0][shorter & 0xFF] ^ (shorter >> 8));
        }
    }
    return tables;
}
constexpr auto kTables = MakeTables();

// The contribution of four bytes, the last of which has `after` bytes of the slice behind it.
inline unsigned Look(std::uint32_t word, std::size_t after) {
    return kTables[after + 3][word & 0xFF] ^ kTables[after + 2][word >> 8 & 0xFF] ^
           kTables[after + 1][word >> 16 & 0xFF] ^ kTables[after][word >> 24];
}

}  // namespace

std::uint16_t Checksum16(const void* bytes, std::size_t size, std::uint16_t seed) {
    const auto* byte = static_cast<const std::uint8_t*>(bytes);
    unsigned crc = seed;
    for (; size >= kSlice; size -= kSlice, byte += kSlice) {
        std::uint32_t words[kSlice / 4];
        std::memcpy(words, byte, kSlice);  // the bytes may stand anywhere
        crc = Look(words[3], 0) ^ Look(words[2], 4) ^ Look(words[1], 8) ^ Look(words[0] ^ crc, 12);
    }
    for (; size != 0; --size) {
        crc = kTables[0][(crc ^ *byte++) & 0xFF] ^ (crc >> 8);
    }
    return static_cast<std::uint16_t>(crc);
}

}  // namespace tolvenar
