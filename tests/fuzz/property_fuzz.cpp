// The properties of a stored record come from a card that anything may have damaged: their count
// and every offset and length among them.
#include "snapshot/records/checksum.h"
#include "storage/format/property_encoding.h"
#include "storage/format/property_text.h"
#include "tests/fuzz/fuzz_source.h"

using namespace tolvenar;

namespace {

constexpr std::size_t kElementBytes = sizeof(StoredProperty);

Bytes Content(const std::vector<char>& buffer) { return {buffer.begin(), buffer.end()}; }

StoredProperty At(const Bytes& buffer, std::size_t index) {
    StoredProperty property;
    std::memcpy(&property, buffer.data() + index * kElementBytes, sizeof property);
    return property;
}

bool IsText(const StoredProperty& property) { return (property.propid & 0xFFFF) == 31; }

// The place of an empty blob means nothing, and turning to and fro makes it the buffer's start.
Bytes WithEmptyBlobsAt(Bytes buffer, std::size_t count, std::uint32_t base) {
    for (std::size_t i = 0; i < count; ++i) {
        const StoredProperty property = At(buffer, i);
        if ((property.propid & 0xFFFF) == 65 && property.value == 0) {
            Patch(buffer, i * kElementBytes + offsetof(StoredProperty, value_high), base);
        }
    }
    return buffer;
}

// Whether every text ends and every blob lies behind the array and inside the buffer.
bool IsWhole(const Bytes& buffer, std::size_t count, std::uint32_t base) {
    if (count > buffer.size() / kElementBytes) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const StoredProperty property = At(buffer, i);
        const bool is_blob = (property.propid & 0xFFFF) == 65 && property.value != 0;
        if (!is_blob && !IsText(property)) {
            continue;
        }
        const std::uint32_t place = (is_blob ? property.value_high : property.value) - base;
        if (place < count * kElementBytes || place > buffer.size()) {
            return false;
        }
        const Bytes behind = buffer.substr(place);
        if (is_blob ? property.value > behind.size()
                    : TextIn(behind).find(u'\0') == std::u16string::npos) {
            return false;
        }
    }
    return true;
}

bool FindText(const Bytes& buffer, std::size_t count, std::uint32_t propid) {
    const std::vector<char> exact = Exactly(buffer);
    TextBuffer<20> text;
    const bool found = FindTextProperty(exact.data(), exact.size(), count, propid, text);
    Require(std::u16string_view(text.text()).size() == text.length());
    return found;
}

// Whatever stands in the array, nothing is looked for or written outside the buffer.
void CheckTexts(const Bytes& buffer, std::size_t count, bool are_whole) {
    const std::size_t present = std::min(count, buffer.size() / kElementBytes);
    for (std::size_t i = 0; i < present; ++i) {
        const StoredProperty property = At(buffer, i);
        const bool found = FindText(buffer, count, property.propid);
        Require(found || !IsText(property) || !are_whole);
    }
    Require(!FindText(buffer, 0, 31));
    const std::vector<char> exact = Exactly(buffer);
    TextBuffer<20> text;
    AppendStoredText(exact.data(), exact.size(), text);
    Require(text.length() <= exact.size() / 2);
}

// What is accepted one way is accepted back and is as before; its checksum can be made.
void CheckTurning(const Bytes& given, std::size_t count, std::uint32_t base) {
    std::vector<char> buffer = Exactly(given);
    const bool is_whole = PointersToOffsets(buffer.data(), buffer.size(), count, base);
    Require(is_whole == IsWhole(given, count, base));
    const Bytes stored = Content(buffer);
    const std::size_t array = std::min(count * kElementBytes, given.size());
    Require(given.substr(array) == stored.substr(array));
    CheckTexts(stored, count, is_whole);
    std::uint16_t checksum = 0;
    const bool has_sum = ChecksumOfProperties(buffer.data(), buffer.size(), count, checksum);
    if (!is_whole) {
        return;
    }
    Require(has_sum);
    Require(OffsetsToPointers(buffer.data(), buffer.size(), count, base));
    Require(Content(buffer) == WithEmptyBlobsAt(given, count, base));
    Require(PointersToOffsets(buffer.data(), buffer.size(), count, base));
    Require(Content(buffer) == stored);
}

// The same from offsets on.
void CheckTurningBack(const Bytes& given, std::size_t count, std::uint32_t base) {
    std::vector<char> buffer = Exactly(given);
    const bool is_whole = OffsetsToPointers(buffer.data(), buffer.size(), count, base);
    Require(is_whole == IsWhole(given, count, 0));
    if (is_whole) {
        Require(PointersToOffsets(buffer.data(), buffer.size(), count, base));
        Require(Content(buffer) == WithEmptyBlobsAt(given, count, 0));
    }
}

// One checksum, however its bytes are cut.
void CheckChecksum(const Bytes& bytes, std::size_t cut) {
    const std::vector<char> first = Exactly(bytes.substr(0, cut));
    const std::vector<char> second = Exactly(bytes.substr(first.size()));
    const std::uint16_t whole = Checksum16(bytes.data(), bytes.size());
    const std::uint16_t begun = Checksum16(first.data(), first.size());
    Require(whole == Checksum16(second.data(), second.size(), begun));
    std::uint16_t plain = kChecksumSeed;
    for (const char& byte : bytes) {
        plain = Checksum16(&byte, 1, plain);
    }
    Require(whole == plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::size_t count = input.Word();
    const std::uint32_t base = input.Word();
    const Bytes buffer = input.Rest();
    CheckTurning(buffer, count, base);
    CheckTurning(buffer, count, 0);
    CheckTurningBack(buffer, count, base);
    CheckChecksum(buffer, base % 300);
    return 0;
}
