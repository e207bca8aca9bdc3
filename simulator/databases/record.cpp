#include "simulator/databases/record.h"

#include <algorithm>

#include "simulator/store/byte_stream.h"
#include "simulator/store/names.h"

namespace sim::databases {
namespace {

Record::iterator Place(Record& record, std::uint32_t propid) {
    return std::lower_bound(
        record.begin(), record.end(), propid,
        [](const Property& property, std::uint32_t id) { return property.propid < id; });
}

template <typename T>
int CompareAs(const std::string& a, const std::string& b) {
    T left{};
    T right{};
    std::memcpy(&left, a.data(), sizeof left);
    std::memcpy(&right, b.data(), sizeof right);
    return left < right ? -1 : (right < left ? 1 : 0);
}

std::u16string TextOf(const std::string& value) {
    std::u16string text(value.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], value.data(), text.size() * sizeof(char16_t));
    return text;
}

int CompareTexts(const std::string& a, const std::string& b, bool case_insensitive) {
    const std::u16string left = TextOf(a);
    const std::u16string right = TextOf(b);
    return case_insensitive ? FoldName(left).compare(FoldName(right)) : left.compare(right);
}

int CompareValues(ValueType type, const std::string& a, const std::string& b, bool fold) {
    switch (type) {
        case kI2: return CompareAs<std::int16_t>(a, b);
        case kI4: return CompareAs<std::int32_t>(a, b);
        case kR8: return CompareAs<double>(a, b);
        case kUi2: return CompareAs<std::uint16_t>(a, b);
        case kBool:
        case kUi4: return CompareAs<std::uint32_t>(a, b);
        case kText: return CompareTexts(a, b, fold);
        case kFileTime: return CompareAs<std::uint64_t>(a, b);
        case kBlob: break;
    }
    return a.compare(b);
}

}  // namespace

int FixedBytes(ValueType type) {
    switch (type) {
        case kI2:
        case kUi2: return 2;
        case kI4:
        case kUi4:
        case kBool: return 4;
        case kR8:
        case kFileTime: return 8;
        case kText:
        case kBlob: return 0;
    }
    return -1;
}

bool IsValid(const Property& property) {
    const int fixed = FixedBytes(property.type());
    if (fixed > 0) {
        return property.value.size() == static_cast<std::size_t>(fixed);
    }
    return fixed == 0 && property.value.size() <= kMaxPropertyBytes &&
           (property.type() == kBlob || property.value.size() % sizeof(char16_t) == 0);
}

const Property* Find(const Record& record, std::uint32_t propid) {
    const auto at = Place(const_cast<Record&>(record), propid);
    return at != record.end() && at->propid == propid ? &*at : nullptr;
}

void Put(Record& record, const Property& property) {
    const auto at = Place(record, property.propid);
    if (at != record.end() && at->propid == property.propid) {
        *at = property;
    } else {
        record.insert(at, property);
    }
}

void Remove(Record& record, std::uint32_t propid) {
    const auto at = Place(record, propid);
    if (at != record.end() && at->propid == propid) {
        record.erase(at);
    }
}

std::string Encode(const Record& record) {
    std::string bytes;
    PutNumber(bytes, static_cast<std::uint32_t>(record.size()));
    for (const Property& property : record) {
        PutNumbers(bytes, {property.propid, property.flags});
        PutBytes(bytes, property.value);
    }
    return bytes;
}

Record Decode(const std::string& bytes) {
    ByteReader reader(bytes);
    Record record(reader.Number());
    for (Property& property : record) {
        property.propid = reader.Number();
        property.flags = static_cast<std::uint16_t>(reader.Number());
        property.value = reader.Bytes();
    }
    return record;
}

int Compare(const SortOrder& order, const Property* a, const Property* b) {
    if (a == nullptr || b == nullptr) {
        const int absent_last = static_cast<int>(a == nullptr) - static_cast<int>(b == nullptr);
        return (order.flags & kUnknownFirst) != 0 ? -absent_last : absent_last;
    }
    const bool fold = (order.flags & kCaseInsensitive) != 0;
    const int result = CompareValues(a->type(), a->value, b->value, fold);
    return (order.flags & kDescending) != 0 ? -result : result;
}

}  // namespace sim::databases
