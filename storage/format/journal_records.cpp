#include "storage/format/journal_records.h"

#include "snapshot/text/log.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kRecordBytes = sizeof(ObjectRecord);

void Step(Progress* progress) {
    if (progress != nullptr) {
        progress->ProgressStep();
    }
}

}  // namespace

bool JournalRecordReader::Next(ObjectRecord& record) {
    std::uint32_t read = 0;
    if (!file_.ReadAt(offset_, &record_, kRecordBytes, read) || read == 0) {
        return false;
    }
    offset_ += read;
    record = record_;
    return true;
}

bool ReadJournalRecords(ByteReader& file, ObjectList& list, Progress* progress,
                        std::uint32_t& taken) {
    JournalRecordReader records(file);
    ObjectRecord record{};
    for (taken = 0; records.Next(record); ++taken) {
        if (!list.AddObject(record)) {
            return false;
        }
        Step(progress);
    }
    return true;
}

std::size_t WriteJournalRecords(ByteAppender& file, const ObjectList& list, Progress* progress) {
    std::size_t written = 0;
    for (const ObjectList::Node& node : list) {
        const ObjectRecord& record = *node.record;
        if (record.propOffset == 0 && (record.flags & JF_DELETE) != 0) {
            LogMessage(u"Empty propOffset, but JF_DELETE", u"CloseJournal", kLogError);
        }
        if (!file.Append(&record, kRecordBytes)) {
            break;
        }
        ++written;
        Step(progress);
    }
    return written;
}

}  // namespace tolvenar
