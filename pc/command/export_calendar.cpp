// export ical: the records of appointments and tasks as entries of a calendar. The identifiers of
// their properties are those that the platform's object model and the message store publish; how
// old devices keep beginnings and recurrences is published nowhere.
#include <fmt/format.h>

#include "pc/command/exported_records.h"
#include "pc/command/exports.h"
#include "pc/command/record_fields.h"

namespace tolvenar::pc {
namespace {

struct Kind {
    const char16_t* database;
    const char* component;
    const char* end;  // name of the line for the end
};
constexpr Kind kKinds[] = {{u"Appointments Database", "VEVENT", "DTEND"},
                           {u"Tasks Database", "VTODO", "DUE"}};

const Kind* KindOfDatabase(const std::u16string& name) {
    for (const Kind& kind : kKinds) {
        if (name == kind.database) {
            return &kind;
        }
    }
    return nullptr;
}

// The first that a record has is told.
struct TextRow {
    std::uint32_t propid;
    const char* name;
};
constexpr TextRow kTexts[] = {
    {PropertyId(0x0037, kPropertyString), "SUMMARY"},
    {PropertyId(0x0020, kPropertyString), "SUMMARY"},
    {PropertyId(0x0041, kPropertyString), "LOCATION"},
    {PropertyId(0x1000, kPropertyString), "DESCRIPTION"},
    {PropertyId(0x101F, kPropertyString), "DESCRIPTION"},
    {PropertyId(0x101D, kPropertyString), "CATEGORIES"},
};
struct TimeRow {
    std::uint32_t propid;
    bool is_end;
};
constexpr TimeRow kTimes[] = {
    {PropertyId(0x0060, kPropertyFileTime), false},
    {PropertyId(0x1042, kPropertyFileTime), false},
    {PropertyId(0x0061, kPropertyFileTime), true},
    {PropertyId(0x1043, kPropertyFileTime), true},
};
struct NumberRow {
    std::uint32_t propid;
    std::uint32_t number;
    const char* name;
    const char* value;
};
constexpr NumberRow kNumbers[] = {
    {PropertyId(0x0017, kPropertyI4), 0, "PRIORITY", "9"},
    {PropertyId(0x0017, kPropertyI4), 1, "PRIORITY", "5"},
    {PropertyId(0x0017, kPropertyI4), 2, "PRIORITY", "1"},
    {PropertyId(0x0036, kPropertyI4), 0, "CLASS", "PUBLIC"},
    {PropertyId(0x0036, kPropertyI4), 2, "CLASS", "PRIVATE"},
    {PropertyId(0x0036, kPropertyI4), 3, "CLASS", "CONFIDENTIAL"},
    {PropertyId(0x0021, kPropertyUI4), 0, "CLASS", "PUBLIC"},
    {PropertyId(0x0021, kPropertyUI4), 2, "CLASS", "PRIVATE"},
};

// A calendar's lines may not say the same twice.
class Entry {
public:
    Entry(RecordFields& fields, ContentLines& lines) : fields_(fields), lines_(lines) {}

    void AddText(const TextRow& row) {
        const std::optional<std::u16string> text = fields_.TakeText(row.propid);
        Add(row.propid, row.name, text ? std::optional(EscapedText(*text)) : std::nullopt);
    }
    void AddTime(std::uint32_t propid, const char* name) {
        const std::optional<FileTime> time = fields_.TakeTime(propid);
        Add(propid, name, time ? CompactUtc(*time) : std::nullopt);
    }
    void AddNumber(const NumberRow& row) {
        if (told_.count(row.propid) == 0) {
            const std::optional<std::uint32_t> number = fields_.TakeNumber(row.propid);
            Add(row.propid, row.name,
                number == row.number ? std::optional<std::string>(row.value) : std::nullopt);
        }
    }

private:
    void Add(std::uint32_t propid, const char* name, const std::optional<std::string>& value) {
        if (!value || names_[name]) {
            fields_.GiveBack(propid);
            return;
        }
        names_[name] = true;
        told_[propid] = true;
        lines_.Add(name, *value);
    }

    RecordFields& fields_;
    ContentLines& lines_;
    std::map<std::string, bool> names_;
    std::map<std::uint32_t, bool> told_;
};

// Different storages give different identifiers, and every export of one the same.
std::string IdentifierOf(const StoredPair& pair, const StoredObject& record) {
    const StorageHeader& head = pair.header();
    return fmt::format("{}-{:08x}{:08x}@tolvenar", record.record.dwOID, head.created_high,
                       head.created_low);
}

std::string MomentOf(const StoredPair& pair, std::uint16_t number) {
    for (const State& state : pair.states()) {
        if (state.number == number) {
            const std::uint64_t whole_seconds = state.made.ticks - state.made.ticks % 10000000;
            return CompactUtc({whole_seconds}).value_or("19700101T000000Z");
        }
    }
    return "19700101T000000Z";
}

void AddEntry(StoredPair& pair, const Kind& kind, const StoredObject& record,
              const std::vector<RecordProperty>& properties, ContentLines& lines,
              std::map<std::uint32_t, int>& unknown) {
    RecordFields fields(properties);
    Entry entry(fields, lines);
    lines.Add("BEGIN", kind.component);
    lines.Add("UID", IdentifierOf(pair, record));
    lines.Add("DTSTAMP", MomentOf(pair, record.record.state_number));
    for (const TextRow& row : kTexts) {
        entry.AddText(row);
    }
    for (const TimeRow& row : kTimes) {
        entry.AddTime(row.propid, row.is_end ? kind.end : "DTSTART");
    }
    for (const NumberRow& row : kNumbers) {
        entry.AddNumber(row);
    }
    lines.Add("X-TOLVENAR-ID", std::to_string(record.record.dwOID));
    fields.AddRest(lines, unknown);
    lines.Add("END", kind.component);
}

}  // namespace

std::string ExportCalendar(StoredPair& pair, const std::vector<StoredObject>& objects,
                           Omissions& omissions) {
    ContentLines lines;
    lines.Add("BEGIN", "VCALENDAR");
    lines.Add("VERSION", "2.0");
    lines.Add("PRODID", "-//Tolvenar//On the PC//EN");
    // An event of a calendar that is published needs no beginning.
    lines.Add("METHOD", "PUBLISH");
    std::map<std::uint32_t, int> unknown;
    bool is_empty = true;
    ForEachRecord(
        pair, objects, omissions,
        [](const std::u16string& name) { return KindOfDatabase(name) != nullptr; },
        [&](const StoredObject& record, const std::vector<RecordProperty>& properties) {
            AddEntry(pair, *KindOfDatabase(record.name), record, properties, lines, unknown);
            is_empty = false;
        });
    if (is_empty) {
        throw Failure(ExitCode::kCannot,
                      "nothing of \"Appointments Database\" or \"Tasks Database\" is there");
    }
    lines.Add("END", "VCALENDAR");
    TellUnknown(unknown, omissions);
    return lines.text();
}

}  // namespace tolvenar::pc
