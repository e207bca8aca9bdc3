#include "storage/operations/object_line.h"

#include <cstddef>

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/record_info.h"
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

}  // namespace

void LogObject(const char16_t* reason, const ObjectRecord& record, const InfoBlock& block,
               const char16_t* module, std::uint32_t flags) {
    TextBuffer<kLineUnits> text;
    text.Append(reason);
    if (IsRegistryObject(record)) {
        AppendRegistryName(block, text);
    } else {
        text.Append(block.name());
    }
    if (record.type == ObjectType::kDatabaseRecord) {
        text.Append(u", dwOID = ").AppendHex(record.dwOID);
    }
    LogMessage(text.text(), module, flags);
}

void LogObject(const char16_t* reason, const ObjectRecord& record, InfoSource& info,
               const char16_t* module, std::uint32_t flags) {
    InfoBlock block;
    if (FetchInfo(record, info, block)) {
        LogObject(reason, record, block, module, flags);
        return;
    }
    TextBuffer<kLineUnits> text;
    text.Append(reason).Append(u"dwOID = ").AppendHex(record.dwOID);
    text.Append(u", TolvOID = ").AppendHex(record.TolvOID);
    LogMessage(text.text(), module, flags);
}

}  // namespace tolvenar
