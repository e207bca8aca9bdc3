#include "pc/storage/record_properties.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

#include "pc/text/file_time.h"
#include "pc/text/hex.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

// Of what has no bytes behind the array.
std::size_t FixedBytes(std::uint16_t type) {
    switch (type) {
        case kPropertyI2:
        case kPropertyUI2: return 2;
        case kPropertyI4:
        case kPropertyUI4:
        case kPropertyBool: return 4;
        default: return 8;
    }
}

std::string Slice(const std::vector<std::uint8_t>& data, std::size_t offset, std::size_t bytes) {
    if (offset > data.size() || bytes > data.size() - offset) {
        return {};
    }
    return {reinterpret_cast<const char*>(data.data()) + offset, bytes};
}

std::string TerminatedAt(const std::vector<std::uint8_t>& data, std::size_t offset) {
    std::size_t end = offset;
    while (end + 1 < data.size() && (data[end] != 0 || data[end + 1] != 0)) {
        end += sizeof(char16_t);
    }
    return end + 1 < data.size() ? Slice(data, offset, end - offset) : std::string();
}

template <typename Number>
Number NumberOf(const std::string& bytes) {
    Number number{};
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

}  // namespace

std::vector<RecordProperty> PropertiesOf(const std::vector<std::uint8_t>& data, std::size_t count) {
    std::vector<RecordProperty> properties;
    for (std::size_t i = 0; i < count && (i + 1) * sizeof(StoredProperty) <= data.size(); ++i) {
        StoredProperty stored;
        std::memcpy(&stored, data.data() + i * sizeof stored, sizeof stored);
        RecordProperty property{stored.propid, stored.flags, {}};
        switch (property.type()) {
            case kPropertyString: property.bytes = TerminatedAt(data, stored.value); break;
            case kPropertyBlob:
                property.bytes = Slice(data, stored.value_high, stored.value);
                break;
            default:
                property.bytes.assign(reinterpret_cast<const char*>(&stored.value),
                                      FixedBytes(property.type()));
                break;
        }
        properties.push_back(std::move(property));
    }
    return properties;
}

std::string TextOf(const RecordProperty& property) {
    const std::string& bytes = property.bytes;
    switch (property.type()) {
        case kPropertyI2: return fmt::format("{}", NumberOf<std::int16_t>(bytes));
        case kPropertyUI2: return fmt::format("{}", NumberOf<std::uint16_t>(bytes));
        case kPropertyI4: return fmt::format("{}", NumberOf<std::int32_t>(bytes));
        case kPropertyUI4:
        case kPropertyBool: return fmt::format("{}", NumberOf<std::uint32_t>(bytes));
        case kPropertyR8: return fmt::format("{}", NumberOf<double>(bytes));
        case kPropertyFileTime: return UtcText({NumberOf<std::uint64_t>(bytes)});
        case kPropertyString: {
            std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
            std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
            return ToUtf8(text);
        }
        default: return HexOf(bytes);
    }
}

}  // namespace tolvenar::pc
