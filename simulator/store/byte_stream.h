// The parts of a stored entry: 32-bit numbers, texts with their length in front, and the rest.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

namespace sim {

inline void PutNumber(std::string& out, std::uint32_t number) {
    out.append(reinterpret_cast<const char*>(&number), sizeof number);
}
inline void PutNumbers(std::string& out, std::initializer_list<std::uint32_t> numbers) {
    for (const std::uint32_t number : numbers) {
        PutNumber(out, number);
    }
}
inline void PutLong(std::string& out, std::uint64_t number) {
    out.append(reinterpret_cast<const char*>(&number), sizeof number);
}
inline void PutBytes(std::string& out, std::string_view bytes) {
    PutNumber(out, static_cast<std::uint32_t>(bytes.size()));
    out += bytes;
}
inline void PutText(std::string& out, std::u16string_view text) {
    PutNumber(out, static_cast<std::uint32_t>(text.size()));
    out.append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
}

// Reads what the functions above wrote.
class ByteReader {
public:
    explicit ByteReader(const std::string& bytes) : bytes_(bytes) {}
    std::uint32_t Number() { return Take<std::uint32_t>(); }
    std::uint64_t Long() { return Take<std::uint64_t>(); }
    std::string Bytes() {
        const std::uint32_t size = Number();
        at_ += size;
        return bytes_.substr(at_ - size, size);
    }
    std::u16string Text() {
        std::u16string text(Number(), u'\0');
        std::memcpy(&text[0], bytes_.data() + at_, text.size() * sizeof(char16_t));
        at_ += text.size() * sizeof(char16_t);
        return text;
    }
    std::string Rest() const { return bytes_.substr(at_); }

private:
    template <typename T>
    T Take() {
        T value{};
        std::memcpy(&value, bytes_.data() + at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    const std::string& bytes_;
    std::size_t at_ = 0;
};

}  // namespace sim
