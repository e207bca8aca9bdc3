#include "pc/storage/registry_text.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "pc/text/code_page.h"
#include "pc/text/hex.h"
#include "pc/text/utf.h"
#include "snapshot/compare/exclusion.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kNumber = 4;
// A byte, its comma and a backslash still fit into 80 columns.
constexpr std::size_t kLineWidth = 77;

std::u16string RootName(std::uint32_t hive) {
    static const char16_t* const kNames[] = {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER",
                                             u"HKEY_LOCAL_MACHINE", u"HKEY_USERS"};
    return IsHive(hive) ? kNames[hive - kHiveClassesRoot] : HiveName(hive);
}

std::u16string Quoted(std::u16string_view text) {
    std::u16string quoted = u"\"";
    for (const char16_t unit : text) {
        if (unit == u'\\' || unit == u'"') {
            quoted += u'\\';
        }
        quoted += unit;
    }
    return quoted + u'"';
}

// True when every reader of the version finds these units again.
bool IsTold(RegistryVersion version, std::u16string_view units) {
    return version == RegistryVersion::k5 ? IsWellFormed(units) : FitsCodePage(units);
}

// The text of data that the quoted form carries unchanged: one terminator at its end, no line ends.
std::optional<std::u16string> PlainText(RegistryVersion version,
                                        const std::vector<std::uint8_t>& data) {
    if (data.size() < sizeof(char16_t) || data.size() % sizeof(char16_t) != 0) {
        return std::nullopt;
    }
    std::u16string text(data.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), data.data(), data.size());
    if (text.back() != u'\0') {
        return std::nullopt;
    }
    text.pop_back();
    return FitsALine(text) && IsTold(version, text) ? std::optional(text) : std::nullopt;
}

std::u16string HexLines(std::u16string line, const std::vector<std::uint8_t>& data) {
    std::u16string lines;
    for (std::size_t i = 0; i < data.size(); ++i) {
        const char byte = static_cast<char>(data[i]);
        line += ToUtf16(HexOf({&byte, 1}));
        if (i + 1 == data.size()) {
            break;
        }
        line += u',';
        if (line.size() >= kLineWidth) {
            lines += line + u"\\\r\n";
            line = u"  ";
        }
    }
    return lines + line + u"\r\n";
}

std::u16string Hex(std::uint32_t number, std::size_t digits) {
    std::string text;
    for (int shift = 28; shift >= 0; shift -= 4) {
        const unsigned digit = number >> shift & 15;
        const bool is_needed = static_cast<std::size_t>(shift) / 4 < digits;
        if (digit != 0 || !text.empty() || is_needed) {
            text += "0123456789abcdef"[digit];
        }
    }
    return ToUtf16(text);
}

std::u16string ValueLines(RegistryVersion version, const StoredObject& value,
                          const std::vector<std::uint8_t>& data) {
    const std::u16string begin =
        (value.value_name.empty() ? u"@" : Quoted(value.value_name)) + u"=";
    if (value.value_type() == kText) {
        if (const std::optional<std::u16string> text = PlainText(version, data)) {
            return begin + Quoted(*text) + u"\r\n";
        }
    }
    if (value.value_type() == kNumber && data.size() == sizeof(std::uint32_t)) {
        std::uint32_t number = 0;
        std::memcpy(&number, data.data(), sizeof number);
        return begin + u"dword:" + Hex(number, 8) + u"\r\n";
    }
    const std::u16string mark = value.value_type() == kBinary
                                    ? std::u16string(u"hex:")
                                    : u"hex(" + Hex(value.value_type(), 1) + u"):";
    return HexLines(begin + mark, data);
}

bool IsAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

std::string OldBytes(std::u16string_view text) {
    // Some readers take text for UTF-8 when it might be. Here a byte stands that is none.
    const std::string hint = IsAscii(text) ? "" : "; code page 1252: \xA4\r\n";
    return "REGEDIT4\r\n" + hint + ToCodePage(text);
}

}  // namespace

RegistryText::RegistryText(RegistryVersion version) : version_(version) {}

bool RegistryText::AddKey(std::uint32_t hive, std::u16string_view key_path) {
    std::u16string path = RootName(hive);
    if (!key_path.empty()) {
        path += u'\\';
        path += key_path;
    }
    key_is_told_ = version_ == RegistryVersion::k5 || FitsCodePage(path);
    text_ += u"\r\n";
    return Add(u"[" + path + u"]\r\n");
}

bool RegistryText::AddValue(const StoredObject& value, const std::vector<std::uint8_t>& data) {
    return Add(ValueLines(version_, value, data));
}

bool RegistryText::Add(const std::u16string& lines) {
    const bool is_told = key_is_told_ && (version_ == RegistryVersion::k5 || FitsCodePage(lines));
    text_ += is_told ? lines : u"; utf16:" + ToUtf16(ExactUnits(lines)) + u"\r\n";
    return is_told;
}

std::string RegistryText::Bytes() const {
    if (version_ == RegistryVersion::k4) {
        return OldBytes(text_);
    }
    const std::u16string text = u"\uFEFFWindows Registry Editor Version 5.00\r\n" + text_;
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

bool FitsALine(std::u16string_view name) {
    for (const char16_t unit : name) {
        if (unit < u' ') {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar::pc
