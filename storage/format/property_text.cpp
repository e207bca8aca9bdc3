#include "storage/format/property_text.h"

#include <cstring>

#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

char16_t UnitAt(const std::uint8_t* bytes) {
    char16_t unit;
    std::memcpy(&unit, bytes, sizeof unit);
    return unit;
}

bool AppendTerminated(const std::uint8_t* bytes, std::size_t size, TextBuilder& text) {
    for (std::size_t i = 0; i + sizeof(char16_t) <= size; i += sizeof(char16_t)) {
        const char16_t unit = UnitAt(bytes + i);
        if (unit == 0) {
            return true;
        }
        text.AppendUnit(unit);
    }
    return false;
}

}  // namespace

bool FindTextProperty(const void* buffer, std::size_t buffer_bytes, std::size_t count,
                      std::uint32_t propid, TextBuilder& text) {
    const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
    for (std::size_t i = 0; i < count && (i + 1) * sizeof(StoredProperty) <= buffer_bytes; ++i) {
        StoredProperty property;
        std::memcpy(&property, bytes + i * sizeof property, sizeof property);
        if (property.propid == propid) {
            return property.value < buffer_bytes &&
                   AppendTerminated(bytes + property.value, buffer_bytes - property.value, text);
        }
    }
    return false;
}

void AppendStoredText(const void* bytes, std::size_t size, TextBuilder& text) {
    AppendTerminated(static_cast<const std::uint8_t*>(bytes), size, text);
}

}  // namespace tolvenar
