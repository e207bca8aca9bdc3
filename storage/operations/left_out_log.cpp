#include "storage/operations/left_out_log.h"

#include <cstddef>

#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"DoBackup";
// A name and what stands before it.
constexpr std::size_t kLineUnits = 400;

}  // namespace

void LogKept(const ObjectRecord& record, const InfoBlock& block) {
    LogObject(u"Not read, kept as before: ", record, block, kModule, kLogNote);
}

std::uint32_t LogNotStored(const LeftOut& left_out) {
    std::uint32_t count = 0;
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        if (entry->is_kept) {
            continue;
        }
        TextBuffer<kLineUnits> text;
        text.Append(u"Not read, not stored: ").Append(entry->name);
        LogMessage(text.text(), kModule, kLogNote);
        ++count;
    }
    return count;
}

}  // namespace tolvenar
