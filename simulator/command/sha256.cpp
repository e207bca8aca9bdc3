// FIPS 180-4.
#include "simulator/command/sha256.h"

#include <array>
#include <cstdint>

namespace sim {
namespace {

constexpr std::array<std::uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::uint32_t Turn(std::uint32_t x, int bits) { return (x >> bits) | (x << (32 - bits)); }

void AddBlock(std::array<std::uint32_t, 8>& sum, const char* block) {
    std::array<std::uint32_t, 64> w{};
    for (std::size_t i = 0; i < 64; ++i) {
        w[i / 4] = (w[i / 4] << 8) | static_cast<unsigned char>(block[i]);
    }
    for (std::size_t i = 16; i < 64; ++i) {
        const std::uint32_t a = w[i - 15];
        const std::uint32_t b = w[i - 2];
        w[i] = w[i - 16] + (Turn(a, 7) ^ Turn(a, 18) ^ (a >> 3)) + w[i - 7] +
               (Turn(b, 17) ^ Turn(b, 19) ^ (b >> 10));
    }
    std::array<std::uint32_t, 8> s = sum;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t e = Turn(s[4], 6) ^ Turn(s[4], 11) ^ Turn(s[4], 25);
        const std::uint32_t choice = (s[4] & s[5]) ^ (~s[4] & s[6]);
        const std::uint32_t first = s[7] + e + choice + kRound[i] + w[i];
        const std::uint32_t a = Turn(s[0], 2) ^ Turn(s[0], 13) ^ Turn(s[0], 22);
        const std::uint32_t majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
        s = {first + a + majority, s[0], s[1], s[2], s[3] + first, s[4], s[5], s[6]};
    }
    for (std::size_t i = 0; i < 8; ++i) {
        sum[i] += s[i];
    }
}

// What follows the last whole block: one bit, zeros, the length in bits.
std::string Padded(const std::string& bytes, std::size_t from) {
    std::string tail = bytes.substr(from) + '\x80';
    while (tail.size() % 64 != 56) {
        tail += '\0';
    }
    const std::uint64_t bits = static_cast<std::uint64_t>(bytes.size()) * 8;
    for (int shift = 56; shift >= 0; shift -= 8) {
        tail += static_cast<char>(bits >> shift);
    }
    return tail;
}

}  // namespace

std::string Sha256(const std::string& bytes) {
    std::array<std::uint32_t, 8> sum = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    const std::size_t whole = bytes.size() / 64 * 64;
    for (std::size_t at = 0; at < whole; at += 64) {
        AddBlock(sum, bytes.data() + at);
    }
    const std::string tail = Padded(bytes, whole);
    for (std::size_t at = 0; at < tail.size(); at += 64) {
        AddBlock(sum, tail.data() + at);
    }
    std::string hex;
    for (const std::uint32_t word : sum) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            hex += "0123456789abcdef"[(word >> shift) & 15];
        }
    }
    return hex;
}

}  // namespace sim
