// Finds a text among the properties of a database record as they are stored. Platform-free; any
// count and offset may be wrong in a damaged storage file.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/text/text_buffer.h"

namespace tolvenar {

// Appends the string of the first of `count` properties with this identifier, cut where `text` is
// full. False when there is none or its string does not end inside the buffer.
bool FindTextProperty(const void* buffer, std::size_t buffer_bytes, std::size_t count,
                      std::uint32_t propid, TextBuilder& text);

// Whether a registry value of this type holds one text (REG_SZ, REG_EXPAND_SZ).
constexpr bool IsTextValue(std::uint32_t value_type) { return value_type == 1 || value_type == 2; }

// Appends UTF-16 bytes up to a terminator or the end; a last odd byte is left out.
void AppendStoredText(const void* bytes, std::size_t size, TextBuilder& text);

}  // namespace tolvenar
