// What an object holds as lines of text for a reader: text as it is, numbers, bytes in hexadecimal,
// the fields of a record. Lines end as an edit control wants it, in CR LF. Platform-free; any size,
// count and offset may be wrong in a damaged storage file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/text/text_buffer.h"

namespace tolvenar {

inline void EndLine(TextBuilder& text) { text.Append(u"\r\n"); }

// Appends a FILETIME as the device's locale writes it.
using AppendTime = void (*)(std::uint32_t low, std::uint32_t high, TextBuilder& text);

enum class TextKind { kNone, kBytes, kUtf16 };

// Whether the start of a file is text: bytes without a zero or other control character, or UTF-16
// with its mark or with a zero in every other byte, as Western text has it.
TextKind KindOfText(const std::uint8_t* bytes, std::size_t size);

// Appends UTF-16 text up to a terminator or the end. Any line end becomes CR LF, any other control
// character a blank; a byte-order mark and a last odd byte are left out.
void AppendLines(const std::uint8_t* bytes, std::size_t size, TextBuilder& text);

// Appends eight bytes a line.
void AppendHexLines(const std::uint8_t* bytes, std::size_t size, TextBuilder& text);

// Appends the data of a registry value of this type (REG_*).
void AppendValueData(std::uint32_t value_type, const std::uint8_t* bytes, std::size_t size,
                     TextBuilder& text);

// Appends a line for each of `count` properties of a record as they are stored: identifier and
// value. One that is not whole inside the buffer has no value.
void AppendProperties(const std::uint8_t* buffer, std::size_t size, std::size_t count,
                      AppendTime append_time, TextBuilder& text);

}  // namespace tolvenar
