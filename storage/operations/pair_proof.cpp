#include "storage/operations/pair_proof.h"

#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/opened/journal.h"
#include "storage/opened/old_journals.h"

namespace tolvenar {
namespace {

bool Check(Engine& engine, Descriptions& descriptions, std::uint32_t journal_bytes,
           PairCheck& check) {
    PairSizes sizes{journal_bytes, 0,
                    static_cast<std::uint32_t>(StorageHeadSize(*engine.storage.header))};
    return descriptions.bytes.Size(sizes.storage) && check.Run(sizes);
}

void LogOlderList(const char16_t* path) {
    TextBuffer<kStorageNameUnits + 32> text;
    text.Append(u"Older list of states: ").Append(path);
    LogMessage(text.text(), u"CheckPair", kLogNote);
}

}  // namespace

bool CheckOpenPair(Engine& engine, Descriptions& descriptions, PairCheck& check) {
    return Check(engine, descriptions, engine.storage.journal_stamp.bytes, check);
}

bool FindOlderList(Engine& engine, Descriptions& descriptions, OlderList& older) {
    const std::unique_ptr<ObjectList> list = ObjectList::CreateList();
    JournalLoad load{};
    std::uint32_t bytes = 0;
    if (list == nullptr || !FindNewestOldJournal(engine.storage.names, older.path) ||
        !ReadJournalFile(older.path, *list, load, bytes) || load.taken < load.held) {
        return false;
    }
    LogOlderList(older.path);
    PairCheck check(*list, descriptions.stored);
    older.states = HighestStateNumber(list.get());
    return older.states != 0 && Check(engine, descriptions, bytes, check) &&
           check.findings_in_list() == 0;
}

}  // namespace tolvenar
