// The 16-bit checksum of everything that is stored. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

constexpr std::uint16_t kChecksumSeed = 0xFFFF;

// The CRC of RFC 1662 (reflected polynomial 0x8408) without its final complement over `size` bytes.
// `seed` is the result so far when one checksum runs over several buffers; no bytes give the seed
// back.
std::uint16_t Checksum16(const void* bytes, std::size_t size, std::uint16_t seed = kChecksumSeed);

}  // namespace tolvenar
