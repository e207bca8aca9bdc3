// Building of short UTF-16 texts in a buffer of fixed size; what does not fit is cut off at the
// end. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

// Writes into a buffer of `units` UTF-16 units (at least 1) that somebody else owns and that holds
// a zero-terminated text at any time.
class TextBuilder {
public:
    TextBuilder(char16_t* buffer, std::size_t units) : buffer_(buffer), units_(units) {}
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    void Clear();
    // An absent text adds nothing.
    TextBuilder& Append(const char16_t* text);
    TextBuilder& Append(const char16_t* text, std::size_t units);
    TextBuilder& AppendUnit(char16_t unit);
    // Decimal, as "%i" writes it.
    TextBuilder& AppendNumber(std::int32_t number);
    // Decimal, as "%u" writes it.
    TextBuilder& AppendUnsigned(std::uint32_t number) { return AppendDigits(number, 10, 1); }
    // Lower-case hexadecimal, filled with zeros to `digits` digits: "%x" with 1, "%08x" with 8.
    TextBuilder& AppendHex(std::uint32_t number, std::size_t digits = 1);

    const char16_t* text() const { return buffer_; }
    std::size_t length() const { return length_; }
    // True when something did not fit since the last Clear.
    bool cut() const { return cut_; }

private:
    TextBuilder& AppendDigits(std::uint32_t number, std::uint32_t base, std::size_t digits);

    char16_t* buffer_;
    std::size_t units_;
    std::size_t length_ = 0;
    bool cut_ = false;
};

// A builder with a buffer of its own, empty at first; `kUnits` counts the terminator.
template <std::size_t kUnits>
class TextBuffer : public TextBuilder {
public:
    TextBuffer() : TextBuilder(storage_, kUnits) { Clear(); }

private:
    char16_t storage_[kUnits];
};

}  // namespace tolvenar
