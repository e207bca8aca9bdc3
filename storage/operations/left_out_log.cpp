#include "storage/operations/left_out_log.h"

#include <cstddef>

#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

constexpr char16_t kBackupModule[] = u"DoBackup";
constexpr char16_t kRestoreModule[] = u"DoRestore";
constexpr char16_t kUnlisted[] = u"There may be databases that could not be listed";
// A name and what stands before it.
constexpr std::size_t kLineUnits = 400;

// An entry of a database record without an id stands for records of which nothing is known.
void LogEntry(const char16_t* reason, const LeftOut::Entry& entry, const char16_t* module,
              std::uint32_t flags) {
    TextBuffer<kLineUnits> text;
    text.Append(reason).Append(entry.name);
    if (entry.dwOID != 0) {
        text.Append(u", dwOID = ").AppendHex(entry.dwOID);
    } else if (entry.type == ObjectType::kDatabaseRecord) {
        text.Append(u", records of it");
    }
    LogMessage(text.text(), module, flags);
}

}  // namespace

void LogKept(const ObjectRecord& record, const InfoBlock& block) {
    LogObject(u"Not read, kept as before: ", record, block, kBackupModule, kLogNote);
}

std::uint32_t LogNotStored(const LeftOut& left_out) {
    std::uint32_t count = 0;
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        if (!entry->is_kept) {
            LogEntry(u"Not read, not stored: ", *entry, kBackupModule, kLogNote);
            ++count;
        }
    }
    if (left_out.has_unlisted_databases()) {
        LogMessage(kUnlisted, kBackupModule, kLogNote);
        ++count;
    }
    return count;
}

void LogLeftAlone(const LeftOut& left_out) {
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        if (entry->type != ObjectType::kFile) {
            LogEntry(u"Not read, left alone: ", *entry, kRestoreModule, kLogError);
        }
    }
    if (left_out.has_unlisted_databases()) {
        LogMessage(kUnlisted, kRestoreModule, kLogError);
    }
}

}  // namespace tolvenar
