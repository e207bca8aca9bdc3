#include "difftree/model/data_text.h"

#include <algorithm>
#include <cstring>

#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

constexpr char16_t kByteOrderMark = 0xFEFF;
constexpr std::size_t kHexLineBytes = 8;
constexpr std::size_t kBlobBytesShown = 32;

// Types of registry values.
constexpr std::uint32_t kValueText = 1;
constexpr std::uint32_t kValueExpandedText = 2;
constexpr std::uint32_t kValueNumber = 4;
constexpr std::uint32_t kValueTexts = 7;

char16_t UnitAt(const std::uint8_t* bytes) {
    char16_t unit;
    std::memcpy(&unit, bytes, sizeof unit);
    return unit;
}

bool IsControl(unsigned unit) { return unit < u' '; }
bool IsControlOfText(unsigned unit) { return unit == u'\t' || unit == u'\r' || unit == u'\n'; }

bool IsBytesOfText(const std::uint8_t* bytes, std::size_t size) {
    return std::all_of(bytes, bytes + size,
                       [](std::uint8_t byte) { return !IsControl(byte) || IsControlOfText(byte); });
}

bool IsWesternUtf16(const std::uint8_t* bytes, std::size_t size) {
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        if (bytes[i + 1] != 0 || !IsBytesOfText(bytes + i, 1)) {
            return false;
        }
    }
    return size > 1;
}

// A list of texts has a terminator behind each.
void AppendUnits(const std::uint8_t* bytes, std::size_t size, bool is_list, TextBuilder& text) {
    for (std::size_t i = 0; i + sizeof(char16_t) <= size && !text.cut(); i += sizeof(char16_t)) {
        const char16_t unit = UnitAt(bytes + i);
        const char16_t last = i >= sizeof unit ? UnitAt(bytes + i - sizeof unit) : u'\0';
        if (unit == 0 && (!is_list || last == 0)) {
            return;
        }
        if (unit == u'\r' || unit == 0 || (unit == u'\n' && last != u'\r')) {
            EndLine(text);
        } else if (unit != u'\n' && (i != 0 || unit != kByteOrderMark)) {
            text.AppendUnit(IsControl(unit) ? u' ' : unit);
        }
    }
}

void AppendHexNumber(std::uint32_t number, TextBuilder& text) {
    text.AppendUnsigned(number).Append(u" (0x").AppendHex(number, 8).AppendUnit(u')');
}

void AppendBlob(const std::uint8_t* buffer, std::size_t size, const StoredProperty& property,
                TextBuilder& text) {
    const std::size_t offset = property.value_high;
    const std::size_t length = property.value;
    if (offset > size || length > size - offset) {
        return;
    }
    const std::size_t shown = std::min(length, kBlobBytesShown);
    for (std::size_t i = 0; i < shown; ++i) {
        text.AppendHex(buffer[offset + i], 2).AppendUnit(u' ');
    }
    if (shown < length) {
        text.Append(u"...");
    }
}

void AppendPropertyValue(const std::uint8_t* buffer, std::size_t size,
                         const StoredProperty& property, AppendTime append_time,
                         TextBuilder& text) {
    switch (property.propid & 0xFFFF) {
        case kPropertyI2: text.AppendNumber(static_cast<std::int16_t>(property.value)); break;
        case kPropertyUI2: text.AppendUnsigned(property.value & 0xFFFF); break;
        case kPropertyI4: text.AppendNumber(static_cast<std::int32_t>(property.value)); break;
        case kPropertyBool:
        case kPropertyUI4: text.AppendUnsigned(property.value); break;
        case kPropertyFileTime: append_time(property.value, property.value_high, text); break;
        case kPropertyBlob: AppendBlob(buffer, size, property, text); break;
        case kPropertyString:
            if (property.value < size) {
                AppendUnits(buffer + property.value, size - property.value, false, text);
            }
            break;
        default:
            text.Append(u"0x").AppendHex(property.value_high, 8).AppendHex(property.value, 8);
            break;
    }
}

}  // namespace

TextKind KindOfText(const std::uint8_t* bytes, std::size_t size) {
    const bool is_marked = size >= sizeof kByteOrderMark && UnitAt(bytes) == kByteOrderMark;
    if (is_marked || IsWesternUtf16(bytes, size)) {
        return TextKind::kUtf16;
    }
    return size != 0 && IsBytesOfText(bytes, size) ? TextKind::kBytes : TextKind::kNone;
}

void AppendLines(const std::uint8_t* bytes, std::size_t size, TextBuilder& text) {
    AppendUnits(bytes, size, false, text);
}

void AppendHexLines(const std::uint8_t* bytes, std::size_t size, TextBuilder& text) {
    for (std::size_t i = 0; i < size && !text.cut(); ++i) {
        if (i != 0) {
            text.Append(i % kHexLineBytes == 0 ? u"\r\n" : u" ");
        }
        text.AppendHex(bytes[i], 2);
    }
}

void AppendValueData(std::uint32_t value_type, const std::uint8_t* bytes, std::size_t size,
                     TextBuilder& text) {
    switch (value_type) {
        case kValueText:
        case kValueExpandedText: AppendUnits(bytes, size, false, text); return;
        case kValueTexts: AppendUnits(bytes, size, true, text); return;
        case kValueNumber:
            if (size == sizeof(std::uint32_t)) {
                std::uint32_t number;
                std::memcpy(&number, bytes, sizeof number);
                AppendHexNumber(number, text);
                return;
            }
            break;
        default: break;
    }
    AppendHexLines(bytes, size, text);
}

void AppendProperties(const std::uint8_t* buffer, std::size_t size, std::size_t count,
                      AppendTime append_time, TextBuilder& text) {
    for (std::size_t i = 0; i < count && (i + 1) * sizeof(StoredProperty) <= size && !text.cut();
         ++i) {
        StoredProperty property;
        std::memcpy(&property, buffer + i * sizeof property, sizeof property);
        text.AppendHex(property.propid >> 16, 4).Append(u": ");
        AppendPropertyValue(buffer, size, property, append_time, text);
        EndLine(text);
    }
}

}  // namespace tolvenar
