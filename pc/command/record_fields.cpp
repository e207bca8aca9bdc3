#include "pc/command/record_fields.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fmt/format.h>

#include "pc/text/hex.h"

namespace tolvenar::pc {
namespace {

constexpr int kLastYear = 9999;

}  // namespace

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

std::optional<std::string> CompactUtc(FileTime time) {
    const UnixTime moment = ToUnix(time);
    const std::time_t seconds = static_cast<std::time_t>(moment.seconds);
    std::tm parts{};
    if (time.ticks == 0 || moment.nanoseconds != 0 || ::gmtime_r(&seconds, &parts) == nullptr ||
        parts.tm_year + 1900 > kLastYear) {
        return std::nullopt;
    }
    return fmt::format("{:04}{:02}{:02}T{:02}{:02}{:02}Z", parts.tm_year + 1900, parts.tm_mon + 1,
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

}  // namespace tolvenar::pc
