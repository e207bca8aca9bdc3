#include "pc/command/record_fields.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

#include "pc/text/hex.h"

namespace tolvenar::pc {
namespace {}  // namespace

RecordFields::RecordFields(const std::vector<RecordProperty>& properties) {
    for (const RecordProperty& property : properties) {
        fields_.push_back({property});
    }
}

// Flags say something that no line tells.
RecordFields::Field* RecordFields::Find(std::uint32_t propid) {
    const auto field = std::find_if(fields_.begin(), fields_.end(), [propid](const Field& each) {
        return each.property.propid == propid && each.property.flags == 0;
    });
    return field == fields_.end() ? nullptr : &*field;
}

std::optional<std::u16string> RecordFields::TakeText(std::uint32_t propid) {
    Field* const field = Find(propid);
    if (field == nullptr) {
        return std::nullopt;
    }
    const std::string& bytes = field->property.bytes;
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    field->way = EscapesExactly(text) ? Way::kTold : Way::kShown;
    return text;
}

std::optional<std::uint32_t> RecordFields::TakeNumber(std::uint32_t propid) {
    Field* const field = Find(propid);
    if (field == nullptr) {
        return std::nullopt;
    }
    field->way = Way::kTold;
    const std::string& bytes = field->property.bytes;
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

std::optional<FileTime> RecordFields::TakeTime(std::uint32_t propid) {
    Field* const field = Find(propid);
    FileTime time;
    if (field == nullptr || field->property.bytes.size() != sizeof time.ticks) {
        return std::nullopt;
    }
    field->way = Way::kTold;
    std::memcpy(&time.ticks, field->property.bytes.data(), sizeof time.ticks);
    return time;
}

void RecordFields::GiveBack(std::uint32_t propid) {
    if (Field* const field = Find(propid)) {
        field->way = Way::kUnknown;
    }
}

void RecordFields::AddRest(ContentLines& lines, std::map<std::uint32_t, int>& unknown) const {
    for (const Field& field : fields_) {
        const RecordProperty& property = field.property;
        if (field.way != Way::kTold) {
            lines.Add("X-TOLVENAR-PROPERTY", fmt::format("{:08x} {:04x} {}", property.propid,
                                                         property.flags, HexOf(property.bytes)));
        }
        if (field.way == Way::kUnknown) {
            ++unknown[property.propid];
        }
    }
}

void TellUnknown(const std::map<std::uint32_t, int>& unknown, Omissions& omissions) {
    for (const auto& [propid, records] : unknown) {
        omissions.Tell(
            fmt::format("property {:08x} of {} records has no line of its own: it stands as "
                        "X-TOLVENAR-PROPERTY",
                        propid, records),
            ExitCode::kIncomplete);
    }
}

// UtcText without what parts it, "2026-11-16T04:33:12Z".
std::optional<std::string> CompactUtc(FileTime time) {
    constexpr std::size_t kLength = 20;
    std::string text = UtcText(time);
    if (text.size() != kLength || ToUnix(time).nanoseconds != 0) {
        return std::nullopt;  // no time, a year of five digits, or less than a second told
    }
    for (const char separator : {'-', ':'}) {
        text.erase(std::remove(text.begin(), text.end(), separator), text.end());
    }
    return text;
}

}  // namespace tolvenar::pc
