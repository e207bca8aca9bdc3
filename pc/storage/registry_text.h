// Keys and values as a ".reg" file: "Windows Registry Editor Version 5.00", in UTF-16, or
// "REGEDIT4", in code page 1252.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

enum class RegistryVersion { k4, k5 };

class RegistryText {
public:
    explicit RegistryText(RegistryVersion version);

    // "[HKEY_CURRENT_USER\Software]" on lines of its own. False when the version cannot tell the
    // key: then its lines and those of its values stand as comments, "; utf16:" and their units.
    bool AddKey(std::uint32_t hive, std::u16string_view key_path);
    // A value of the last key: its line, or lines, exact whatever its type and data are. False as
    // above. In version 5 a name is told as its units are, surrogates that stand alone too.
    bool AddValue(const StoredObject& value, const std::vector<std::uint8_t>& data);

    std::string Bytes() const;

private:
    bool Add(const std::u16string& lines);

    const RegistryVersion version_;
    bool key_is_told_ = false;
    std::u16string text_;
};

// False when a ".reg" file cannot tell the name: its lines would end in it.
bool FitsALine(std::u16string_view name);

}  // namespace tolvenar::pc
