#include "tests/damage/sav_map.h"

#include "platform/win32.h"

#include <algorithm>

#include "tests/support/records.h"
#include "tests/support/text.h"

namespace tolvenar {
namespace {

constexpr char kDescription[] = "state description";
constexpr char kSortOrders[] = "sort orders";
constexpr char kOtherValue[] = "bool, double";
constexpr char kUnused[] = "unused bytes";

// Offsets of the format.
constexpr std::size_t kBlockHeadBytes = 26;
constexpr std::size_t kDataBytesAt = 16;
constexpr std::size_t kNameBytesAt = 22;
constexpr std::size_t kPropertyBytes = 16;
constexpr std::size_t kFlagsAt = 6;
constexpr std::size_t kPropertyValueAt = 8;

template <typename T>
T At(const Bytes& bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

}  // namespace

SavMap::SavMap(const Pair& pair) : sav_(*pair.sav), unchecked_(pair.sav->size(), nullptr) {
    places_[0] = "head";
    for (const ObjectRecord& record : RecordsIn(*pair.journal)) {
        if ((record.flags & JF_ADD) != 0) {
            AddObject(record);
        }
    }
}

void SavMap::AddObject(const ObjectRecord& record) {
    const std::size_t block = record.propOffset;
    const std::size_t data_bytes = At<std::uint32_t>(sav_, block + kDataBytesAt);
    const std::size_t name_bytes = At<std::uint16_t>(sav_, block + kNameBytesAt);
    const std::string name =
        tests::Narrow(TextIn(sav_.substr(block + kBlockHeadBytes, name_bytes))) + " (state " +
        std::to_string(record.state_number) + ", type " +
        std::to_string(static_cast<int>(record.type)) + ")";
    places_[block] = "block of " + name;
    if (record.data_offset == kNoData || data_bytes == 0) {
        return;
    }
    places_[record.data_offset] = "data of " + name;
    switch (record.type) {
        case kState: Mark(record.data_offset, data_bytes, kDescription); return;
        case kDatabase: Mark(record.data_offset, data_bytes, kSortOrders); return;
        case kDbRecord:
            Mark(record.data_offset, data_bytes, kUnused);
            AddProperties(record, At<std::uint32_t>(sav_, block));
            return;
        default: return;
    }
}

void SavMap::AddProperties(const ObjectRecord& record, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        AddProperty(record.data_offset, i);
    }
}

void SavMap::AddProperty(std::size_t data, std::size_t index) {
    const std::size_t property = data + index * kPropertyBytes;
    const std::size_t value = property + kPropertyValueAt;
    Cover(property, sizeof(CEPROPID));
    Cover(property + kFlagsAt, sizeof(std::uint16_t));
    switch (At<std::uint32_t>(sav_, property) & 0xFFFF) {
        case CEVT_I2:
        case CEVT_UI2: Cover(value, 2); return;
        case CEVT_I4:
        case CEVT_UI4: Cover(value, 4); return;
        case CEVT_FILETIME: Cover(value, 8); return;
        case CEVT_LPWSTR: {
            const std::size_t text = data + At<std::uint32_t>(sav_, value);
            std::size_t end = text;
            while (At<char16_t>(sav_, end) != 0) {
                end += sizeof(char16_t);
            }
            Cover(value, sizeof(std::uint32_t));
            Cover(text, end + sizeof(char16_t) - text);
            return;
        }
        case CEVT_BLOB:
            Cover(value, 8);
            Cover(data + At<std::uint32_t>(sav_, value + 4), At<std::uint32_t>(sav_, value));
            return;
        default: Mark(value, 8, kOtherValue);
    }
}

void SavMap::Mark(std::size_t begin, std::size_t bytes, const char* why) {
    std::fill_n(unchecked_.begin() + static_cast<std::ptrdiff_t>(begin), bytes, why);
}

std::string SavMap::Describe(std::size_t offset) const {
    const auto place = std::prev(places_.upper_bound(offset));
    return place->second + " + " + std::to_string(offset - place->first);
}

const char* SavMap::Unchecked(std::size_t offset) const { return unchecked_.at(offset); }

}  // namespace tolvenar
