// Keys and values as a ".reg" file, "Windows Registry Editor Version 5.00".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

// The first line.
std::u16string RegistryHead();
// "[HKEY_CURRENT_USER\Software]" on lines of its own.
std::u16string KeySection(std::uint32_t hive, std::u16string_view key_path);
// A value's line, or lines; exact whatever its type and data are. A name is told as its units are,
// surrogates that stand alone too.
std::u16string ValueLines(const StoredObject& value, const std::vector<std::uint8_t>& data);

// False when a ".reg" file cannot tell the name: its lines would end in it.
bool FitsALine(std::u16string_view name);

// The file's bytes of some text: UTF-16, which is exact.
std::string BytesOf(std::u16string_view text);

}  // namespace tolvenar::pc
