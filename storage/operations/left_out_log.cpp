#include "storage/operations/left_out_log.h"

#include <cstddef>

#include "snapshot/compare/exclusion.h"
#include "snapshot/records/registry_objects.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// What a block can name, with what stands before and behind it.
constexpr std::size_t kLineUnits = 400;

constexpr const char16_t* kHiveNames[] = {u"HKCR", u"HKCU", u"HKLM", u"HKU"};

// Key path and value name as a path behind the hive.
void AppendRegistryName(const InfoBlock& block, TextBuilder& text) {
    text.Append(kHiveNames[(block.head().hive - kHiveClassesRoot) % 4]).AppendUnit(u'\\');
    for (const char16_t* unit = block.name(); *unit != 0; ++unit) {
        text.AppendUnit(*unit == kNameSeparator ? u'\\' : *unit);
    }
}

void LogLine(const TextBuilder& text) { LogMessage(text.text(), u"DoBackup", kLogNote); }

}  // namespace

// The reason comes first: a line of the log ends at 260 units.
void LogKept(const ObjectRecord& record, const InfoBlock& block) {
    TextBuffer<kLineUnits> text;
    text.Append(u"Not read, kept as before: ");
    if (IsRegistryObject(record)) {
        AppendRegistryName(block, text);
    } else {
        text.Append(block.name());
    }
    if (record.type == ObjectType::kDatabaseRecord) {
        text.Append(u", dwOID = ").AppendHex(record.dwOID);
    }
    LogLine(text);
}

std::uint32_t LogNotStored(const LeftOut& left_out) {
    std::uint32_t count = 0;
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        if (entry->is_kept) {
            continue;
        }
        TextBuffer<kLineUnits> text;
        LogLine(text.Append(u"Not read, not stored: ").Append(entry->name));
        ++count;
    }
    return count;
}

}  // namespace tolvenar
