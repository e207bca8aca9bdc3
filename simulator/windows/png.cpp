#include "simulator/windows/png.h"

#include <algorithm>
#include <array>

namespace sim::windows {
namespace {

constexpr char kSignature[] = "\x89PNG\r\n\x1A\n";
constexpr std::uint8_t kFilterUp = 2;
constexpr std::size_t kBytesPerPixel = 3;
constexpr std::size_t kLongestMatch = 258;
constexpr std::size_t kShortestMatch = 3;
constexpr std::uint32_t kAdlerBase = 65521;

void AppendBig(std::string& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out += static_cast<char>(value >> shift);
    }
}

std::uint32_t Crc(const std::string& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
        }
    }
    return ~crc;
}

std::uint32_t Adler(const std::string& bytes) {
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<std::uint8_t>(byte)) % kAdlerBase;
        b = (b + a) % kAdlerBase;
    }
    return (b << 16) | a;
}

void AppendChunk(std::string& out, const char* type, const std::string& data) {
    AppendBig(out, static_cast<std::uint32_t>(data.size()));
    const std::string body = type + data;
    out += body;
    AppendBig(out, Crc(body));
}

// Deflate with the fixed code. Screens are flat: what the row filter leaves is runs of zeros, so
// the only match that is looked for is a run of the byte before.
class Deflater {
public:
    std::string Run(const std::string& in) {
        Bits(1, 1);  // last block
        Bits(1, 2);  // fixed code
        for (std::size_t at = 0; at < in.size();) {
            at += Step(in, at);
        }
        Symbol(256);
        if (used_ > 0) {
            out_ += static_cast<char>(pending_);
        }
        return out_;
    }

private:
    std::size_t Step(const std::string& in, std::size_t at) {
        std::size_t run = 0;
        const std::size_t most = std::min(in.size() - at, kLongestMatch);
        while (at > 0 && run < most && in[at + run] == in[at - 1]) {
            ++run;
        }
        if (run < kShortestMatch) {
            Symbol(static_cast<std::uint8_t>(in[at]));
            return 1;
        }
        Length(static_cast<unsigned>(run));
        Code(0, 5);  // distance 1
        return run;
    }
    // RFC 1951, 3.2.5: the first length of each symbol from 257 on.
    void Length(unsigned length) {
        static constexpr std::array<unsigned, 29> kFirst = {
            3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
            31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
        std::size_t row = kFirst.size() - 1;
        while (kFirst[row] > length) {
            --row;
        }
        Symbol(static_cast<unsigned>(257 + row));
        const unsigned extra = row < 8 || row == 28 ? 0 : static_cast<unsigned>(row / 4 - 1);
        Bits(length - kFirst[row], extra);
    }
    void Symbol(unsigned symbol) {
        if (symbol < 144) {
            Code(0x30 + symbol, 8);
        } else if (symbol < 256) {
            Code(0x190 + symbol - 144, 9);
        } else if (symbol < 280) {
            Code(symbol - 256, 7);
        } else {
            Code(0xC0 + symbol - 280, 8);
        }
    }
    void Code(unsigned code, unsigned count) {  // codes go out from their highest bit
        while (count > 0) {
            Bits((code >> --count) & 1, 1);
        }
    }
    void Bits(unsigned value, unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            pending_ |= ((value >> i) & 1) << used_;
            if (++used_ == 8) {
                out_ += static_cast<char>(pending_);
                pending_ = 0;
                used_ = 0;
            }
        }
    }

    std::string out_;
    unsigned pending_ = 0;
    unsigned used_ = 0;
};

std::string FilteredRows(const Picture& picture) {
    const std::size_t row_bytes = picture.width * kBytesPerPixel;
    std::string rows;
    for (std::size_t row = 0; row < picture.height; ++row) {
        rows += static_cast<char>(kFilterUp);
        for (std::size_t i = 0; i < row_bytes; ++i) {
            const std::size_t at = row * row_bytes + i;
            const int above = row > 0 ? picture.rgb[at - row_bytes] : 0;
            rows += static_cast<char>(picture.rgb[at] - above);
        }
    }
    return rows;
}

}  // namespace

std::string EncodePng(const Picture& picture) {
    std::string out(kSignature, sizeof kSignature - 1);
    std::string head;
    AppendBig(head, picture.width);
    AppendBig(head, picture.height);
    head +=
        std::string("\x08\x02\0\0\0", 5);  // 8 bits, RGB, deflate, filters by row, not interlaced
    AppendChunk(out, "IHDR", head);
    const std::string rows = FilteredRows(picture);
    std::string data = "\x78\x01" + Deflater().Run(rows);
    AppendBig(data, Adler(rows));
    AppendChunk(out, "IDAT", data);
    AppendChunk(out, "IEND", "");
    return out;
}

}  // namespace sim::windows
