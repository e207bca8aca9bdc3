// A record's properties on their way into a card or a calendar's entry: each is told by a line that
// means what it means, or stands exactly in a line of this program's own.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pc/command/exports.h"
#include "pc/storage/record_properties.h"
#include "pc/text/content_lines.h"
#include "pc/text/file_time.h"

namespace tolvenar::pc {

constexpr std::uint32_t PropertyId(std::uint16_t id, PropertyType type) {
    return std::uint32_t{id} << 16 | type;
}

class RecordFields {
public:
    explicit RecordFields(const std::vector<RecordProperty>& properties);

    // Each gives a property that a line is about to tell; nothing when the record has none of this
    // identifier and type. A text that a line cannot tell exactly stands in an own line, too.
    std::optional<std::u16string> TakeText(std::uint32_t propid);
    std::optional<std::uint32_t> TakeNumber(std::uint32_t propid);
    std::optional<FileTime> TakeTime(std::uint32_t propid);
    // No line could tell it after all.
    void GiveBack(std::uint32_t propid);

    // Of what no line tells: "X-TOLVENAR-PROPERTY:16000041 0000 abcd": identifier, flags and bytes
    // in hexadecimal. Counts those whose meaning is not known.
    void AddRest(ContentLines& lines, std::map<std::uint32_t, int>& unknown) const;

private:
    enum class Way { kUnknown, kShown, kTold };
    struct Field {
        RecordProperty property;
        Way way = Way::kUnknown;
    };

    Field* Find(std::uint32_t propid);

    std::vector<Field> fields_;
};

// Tells of each property that stands in own lines alone, and in how many records.
void TellUnknown(const std::map<std::uint32_t, int>& unknown, Omissions& omissions);

// "20261116T043310Z"; nothing for a time that has parts of a second or is beyond the calendar.
std::optional<std::string> CompactUtc(FileTime time);

}  // namespace tolvenar::pc
