// export vcard3 and vcard4: the records of contacts as cards. The identifiers of their properties
// are the platform's HHPR_* ones.
#include <algorithm>
#include <fmt/format.h>

#include "pc/command/exported_records.h"
#include "pc/command/exports.h"
#include "pc/command/record_fields.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

constexpr const char16_t* kContacts = u"Contacts Database";

constexpr std::uint32_t Text(std::uint16_t id) { return PropertyId(id, kPropertyString); }

constexpr std::uint32_t kPrefix = Text(0x4023);
constexpr std::uint32_t kGivenName = Text(0x3A06);
constexpr std::uint32_t kMiddleName = Text(0x4024);
constexpr std::uint32_t kSurname = Text(0x3A11);
constexpr std::uint32_t kGeneration = Text(0x3A05);
constexpr std::uint32_t kCompany = Text(0x3A16);
constexpr std::uint32_t kDepartment = Text(0x3A18);
constexpr std::uint32_t kFileAs = Text(0x4013);
constexpr std::uint32_t kEmail = Text(0x4083);
constexpr std::uint32_t kWebPage = Text(0x4008);
constexpr std::uint32_t kBirthday = PropertyId(0x4001, kPropertyFileTime);
constexpr std::uint32_t kAnniversary = PropertyId(0x4003, kPropertyFileTime);

enum class Version { k3, k4 };

// A property that is one text, and its line in each version.
struct TextRow {
    std::uint32_t propid;
    const char* name3;
    const char* name4;
};
constexpr TextRow kTexts[] = {
    {Text(0x3A17), "TITLE", "TITLE"},
    {Text(0x3A08), "TEL;TYPE=WORK,VOICE", "TEL;TYPE=work,voice"},
    {Text(0x4007), "TEL;TYPE=WORK,VOICE", "TEL;TYPE=work,voice"},
    {Text(0x3A24), "TEL;TYPE=WORK,FAX", "TEL;TYPE=work,fax"},
    {Text(0x3A09), "TEL;TYPE=HOME,VOICE", "TEL;TYPE=home,voice"},
    {Text(0x3A2F), "TEL;TYPE=HOME,VOICE", "TEL;TYPE=home,voice"},
    {Text(0x3A25), "TEL;TYPE=HOME,FAX", "TEL;TYPE=home,fax"},
    {Text(0x3A1C), "TEL;TYPE=CELL", "TEL;TYPE=cell"},
    {Text(0x3A1E), "TEL;TYPE=CAR", "TEL;TYPE=x-car"},
    {Text(0x3A1D), "TEL;TYPE=X-RADIO", "TEL;TYPE=x-radio"},
    {Text(0x4009), "TEL;TYPE=PAGER", "TEL;TYPE=pager"},
    {Text(0x4004), "TEL;TYPE=X-ASSISTANT", "TEL;TYPE=x-assistant"},
    {kEmail, "EMAIL;TYPE=INTERNET", "EMAIL"},
    {Text(0x4093), "EMAIL;TYPE=INTERNET", "EMAIL"},
    {Text(0x40A3), "EMAIL;TYPE=INTERNET", "EMAIL"},
    {Text(0x4005), "CATEGORIES", "CATEGORIES"},
    {Text(0x1000), "NOTE", "NOTE"},
    {kFileAs, "X-FILE-AS", "X-FILE-AS"},
    {Text(0x3A19), "X-OFFICE-LOCATION", "X-OFFICE-LOCATION"},
    {Text(0x4002), "X-ASSISTANT", "X-ASSISTANT"},
    {Text(0x400A), "X-SPOUSE", "X-SPOUSE"},
    {Text(0x4006), "X-CHILDREN", "X-CHILDREN"},
    {Text(0x4011), "X-PHONETIC-FIRST-NAME", "X-PHONETIC-FIRST-NAME"},
    {Text(0x4010), "X-PHONETIC-LAST-NAME", "X-PHONETIC-LAST-NAME"},
    {Text(0x4012), "X-PHONETIC-ORG", "X-PHONETIC-ORG"},
};

// A property of several texts; 0 is a component that the device does not know.
struct CompoundRow {
    std::vector<std::uint32_t> propids;
    const char* name3;
    const char* name4;
};
const CompoundRow kCompounds[] = {
    {{kCompany, kDepartment}, "ORG", "ORG"},
    {{0, 0, Text(0x4040), Text(0x4041), Text(0x4042), Text(0x4043), Text(0x4044)},
     "ADR;TYPE=HOME",
     "ADR;TYPE=home"},
    {{0, 0, Text(0x4045), Text(0x4046), Text(0x4047), Text(0x4048), Text(0x4049)},
     "ADR;TYPE=WORK",
     "ADR;TYPE=work"},
    {{0, 0, Text(0x404A), Text(0x404B), Text(0x404C), Text(0x404D), Text(0x404E)},
     "ADR;TYPE=X-OTHER",
     "ADR;TYPE=x-other"},
};

// Why this way round is told by no document: it is the order of names in western letters.
std::u16string FullName(RecordFields& fields) {
    std::u16string name;
    for (const std::uint32_t part : {kPrefix, kGivenName, kMiddleName, kSurname, kGeneration}) {
        const std::u16string text = fields.TakeText(part).value_or(u"");
        name += (name.empty() || text.empty() ? u"" : u" ") + text;
    }
    for (const std::uint32_t other : {kFileAs, kCompany, kEmail}) {
        if (name.empty()) {
            name = fields.TakeText(other).value_or(u"");
        }
    }
    return name.empty() ? u"?" : name;
}

std::optional<std::string> Compound(RecordFields& fields,
                                    const std::vector<std::uint32_t>& propids) {
    std::string value;
    bool is_there = false;
    for (std::size_t i = 0; i < propids.size(); ++i) {
        const std::optional<std::u16string> text =
            propids[i] == 0 ? std::nullopt : fields.TakeText(propids[i]);
        is_there = is_there || text;
        value += (i == 0 ? "" : ";") + EscapedText(text.value_or(u""));
    }
    return is_there ? std::optional(value) : std::nullopt;
}

// A date where the time is midnight; version 3 has marks between the parts.
std::string DayText(const std::string& compact, Version version) {
    const std::string marked = compact.substr(0, 4) + "-" + compact.substr(4, 2) + "-" +
                               compact.substr(6, 2) + "T" + compact.substr(9, 2) + ":" +
                               compact.substr(11, 2) + ":" + compact.substr(13);
    const std::string& text = version == Version::k3 ? marked : compact;
    return compact.substr(9) == "000000Z" ? text.substr(0, text.find('T')) : text;
}

void AddDay(RecordFields& fields, std::uint32_t propid, const char* name, Version version,
            ContentLines& lines) {
    const std::optional<FileTime> time = fields.TakeTime(propid);
    const std::optional<std::string> text = time ? CompactUtc(*time) : std::nullopt;
    if (text) {
        lines.Add(name, DayText(*text, version));
    } else {
        fields.GiveBack(propid);
    }
}

// An address is no text and has no escapes, so it must be one as it stands.
void AddWebPage(RecordFields& fields, ContentLines& lines) {
    const std::optional<std::u16string> text = fields.TakeText(kWebPage);
    if (text && std::all_of(text->begin(), text->end(),
                            [](char16_t unit) { return unit > u' ' && unit < 0x7F; })) {
        lines.Add("URL", ToUtf8(*text));
    } else {
        fields.GiveBack(kWebPage);
    }
}

std::string Card(const StoredObject& record, const std::vector<RecordProperty>& properties,
                 Version version, std::map<std::uint32_t, int>& unknown) {
    const bool is_3 = version == Version::k3;
    RecordFields fields(properties);
    ContentLines lines;
    lines.Add("BEGIN", "VCARD");
    lines.Add("VERSION", is_3 ? "3.0" : "4.0");
    lines.Add("FN", EscapedText(FullName(fields)));
    lines.Add("N", Compound(fields, {kSurname, kGivenName, kMiddleName, kPrefix, kGeneration})
                       .value_or(";;;;"));
    for (const CompoundRow& row : kCompounds) {
        if (const std::optional<std::string> value = Compound(fields, row.propids)) {
            lines.Add(is_3 ? row.name3 : row.name4, *value);
        }
    }
    for (const TextRow& row : kTexts) {
        if (const std::optional<std::u16string> text = fields.TakeText(row.propid)) {
            lines.Add(is_3 ? row.name3 : row.name4, EscapedText(*text));
        }
    }
    AddWebPage(fields, lines);
    AddDay(fields, kBirthday, "BDAY", version, lines);
    AddDay(fields, kAnniversary, is_3 ? "X-ANNIVERSARY" : "ANNIVERSARY", version, lines);
    lines.Add("X-TOLVENAR-ID", std::to_string(record.record.dwOID));
    fields.AddRest(lines, unknown);
    lines.Add("END", "VCARD");
    return lines.text();
}

std::string Export(Version version, StoredPair& pair, const std::vector<StoredObject>& objects,
                   Omissions& omissions) {
    std::string cards;
    std::map<std::uint32_t, int> unknown;
    ForEachRecord(
        pair, objects, omissions, [](const std::u16string& name) { return name == kContacts; },
        [&](const StoredObject& record, const std::vector<RecordProperty>& properties) {
            cards += Card(record, properties, version, unknown);
        });
    if (cards.empty()) {
        throw Failure(ExitCode::kCannot, "nothing of \"" + ToUtf8(kContacts) + "\" is there");
    }
    TellUnknown(unknown, omissions);
    return cards;
}

}  // namespace

std::string ExportCards3(StoredPair& pair, const std::vector<StoredObject>& objects,
                         Omissions& omissions) {
    return Export(Version::k3, pair, objects, omissions);
}

std::string ExportCards4(StoredPair& pair, const std::vector<StoredObject>& objects,
                         Omissions& omissions) {
    return Export(Version::k4, pair, objects, omissions);
}

}  // namespace tolvenar::pc
