#include "snapshot/records/checksum.h"

#include <array>
#include <cstring>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

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

// Long buffers need no table. The polynomial's 32nd power is y^16 + y^12 + y^5 + 1 with y = x^32,
// and what is congruent modulo a power is so modulo the polynomial: a word of the buffer may be
// moved 4, 11 and 16 words towards the end. Folding stops at the last 16 words, whose checksum is
// the buffer's.
constexpr std::size_t kFoldWords = 16;
constexpr std::size_t kFoldBytes = 4 * kFoldWords;
using Folded = std::array<std::uint32_t, kFoldWords>;

inline std::uint32_t WordAt(const std::uint8_t* bytes, std::size_t i) {
    std::uint32_t word;
    std::memcpy(&word, bytes + 4 * i, 4);  // the bytes may stand anywhere
    return word;
}

template <std::size_t... kIndex>
inline void Fold(Folded& folded, const std::uint8_t* bytes, std::index_sequence<kIndex...>) {
    ((folded[kIndex] ^= WordAt(bytes, kIndex) ^ folded[(kIndex + 12) % kFoldWords] ^
                        folded[(kIndex + 5) % kFoldWords]),
     ...);
}

// The last words have been moved into one another too, though they stay where they are.
inline void Unfold(Folded& folded) {
    for (std::size_t i = kFoldWords; i-- > 4;) {
        folded[i] ^= folded[i - 4] ^ (i >= 11 ? folded[i - 11] : 0u);
    }
}

#if defined(__x86_64__)
// The same where the processor multiplies polynomials: four times 16 bytes are moved 64 bytes on.
// Bytes stand in the order of the checksum's bits, the first with the highest powers, and the
// product of two such halves has one power too few: the factors have it less.
constexpr unsigned PowerOfX(int exponent) {
    unsigned power = 0x8000;  // 1
    for (; exponent != 0; --exponent) {
        power = (power & 1) ? (power >> 1) ^ 0x8408 : power >> 1;
    }
    return power;
}

constexpr int kMovedBits = 8 * kFoldBytes;
constexpr std::uint64_t kNearFactor = std::uint64_t{PowerOfX(kMovedBits - 1)} << 48;
constexpr std::uint64_t kFarFactor = std::uint64_t{PowerOfX(kMovedBits + 63)} << 48;
const bool kMultiplies = __builtin_cpu_supports("pclmul");

[[gnu::target("pclmul")]] inline __m128i Moved(__m128i bytes, __m128i factors) {
    return _mm_xor_si128(_mm_clmulepi64_si128(bytes, factors, 0x00),
                         _mm_clmulepi64_si128(bytes, factors, 0x11));
}

[[gnu::target("pclmul")]] void FoldByProducts(Folded& folded, const std::uint8_t*& bytes,
                                              std::size_t& size) {
    const __m128i factors =
        _mm_set_epi64x(static_cast<long long>(kNearFactor), static_cast<long long>(kFarFactor));
    auto* const words = reinterpret_cast<__m128i*>(folded.data());
    __m128i sums[4];
    const auto* const first = reinterpret_cast<const __m128i*>(bytes);
    for (int i = 0; i < 4; ++i) {
        sums[i] = _mm_xor_si128(_mm_loadu_si128(words + i), _mm_loadu_si128(first + i));
    }
    for (size -= kFoldBytes, bytes += kFoldBytes; size >= kFoldBytes;
         size -= kFoldBytes, bytes += kFoldBytes) {
        const auto* const next = reinterpret_cast<const __m128i*>(bytes);
        for (int i = 0; i < 4; ++i) {
            sums[i] = _mm_xor_si128(Moved(sums[i], factors), _mm_loadu_si128(next + i));
        }
    }
    for (int i = 0; i < 4; ++i) {
        _mm_storeu_si128(words + i, sums[i]);
    }
}
#endif

void FoldAll(Folded& folded, const std::uint8_t*& bytes, std::size_t& size) {
#if defined(__x86_64__)
    if (kMultiplies) {
        FoldByProducts(folded, bytes, size);
        return;
    }
#endif
    for (; size >= kFoldBytes; size -= kFoldBytes, bytes += kFoldBytes) {
        Fold(folded, bytes, std::make_index_sequence<kFoldWords>{});
    }
    Unfold(folded);
}

inline unsigned Sliced(const std::uint8_t* byte, std::size_t size, unsigned crc) {
    for (; size >= kSlice; size -= kSlice, byte += kSlice) {
        crc = Look(WordAt(byte, 3), 0) ^ Look(WordAt(byte, 2), 4) ^ Look(WordAt(byte, 1), 8) ^
              Look(WordAt(byte, 0) ^ crc, 12);
    }
    for (; size != 0; --size) {
        crc = kTables[0][(crc ^ *byte++) & 0xFF] ^ (crc >> 8);
    }
    return crc;
}

}  // namespace

std::uint16_t Checksum16(const void* bytes, std::size_t size, std::uint16_t seed) {
    const auto* byte = static_cast<const std::uint8_t*>(bytes);
    unsigned crc = seed;
    if (size >= 4 * kFoldBytes) {
        Folded folded{};
        folded[0] = crc;
        FoldAll(folded, byte, size);
        crc = Sliced(reinterpret_cast<const std::uint8_t*>(folded.data()), kFoldBytes, 0);
    }
    return static_cast<std::uint16_t>(Sliced(byte, size, crc));
}

}  // namespace tolvenar
