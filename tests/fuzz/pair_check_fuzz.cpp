// The check of a pair whose two files hold anything: 16 bits tell how much of the input is the
// journal, the rest is the storage file.
#include "snapshot/compare/data_check.h"
#include "snapshot/compare/pair_check.h"
#include "storage/format/journal_records.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

constexpr std::uint32_t kHeadBytes = 236;

struct Extent {
    std::uint64_t begin;
    std::uint64_t end;
};

// A pair without findings has blocks that are whole, apart from one another and inside the file.
void ExpectApart(const PairCheck& check, const ObjectList& journal, StorageReader& stored,
                 std::size_t sav_bytes) {
    std::vector<Extent> extents;
    for (const ObjectRecord& record : RecordsOf(journal)) {
        InfoBlock block;
        if ((record.flags & kAdditionFlags) == 0 || check.DamageOf(record) != Damage::kNone) {
            continue;
        }
        Require(stored.GetInfoFromStorage(record.propOffset, block));
        const std::uint64_t data = HasStoredData(block) ? block.head().data_bytes : 0;
        extents.push_back({record.propOffset, record.propOffset + block.size() + data});
    }
    std::sort(extents.begin(), extents.end(),
              [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
    for (std::size_t i = 0; i < extents.size(); ++i) {
        Require(extents[i].end <= (i + 1 < extents.size() ? extents[i + 1].begin : sav_bytes));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint16_t journal_bytes = input.Half();
    const Bytes journal_file = input.TakeBytes(journal_bytes);
    const Bytes sav = input.Rest();
    ClearLog();

    const auto journal = ObjectList::CreateList();
    MemoryBytes journal_reader(journal_file);
    std::uint32_t taken = 0;
    Require(ReadJournalRecords(journal_reader, *journal, nullptr, taken));
    MemoryBytes file(sav);
    StorageReader stored(file);
    PairCheck check(*journal, stored);
    Require(check.Run({static_cast<std::uint32_t>(journal_file.size()),
                       static_cast<std::uint32_t>(sav.size()), kHeadBytes}));
    Require(check.findings_in_list() == 0 || !LogLines().empty());
    if (check.findings_in_list() == 0) {
        ExpectApart(check, *journal, stored, sav.size());
    }
    Require(check.ForEachDouble(*journal, [](const ObjectRecord& older, const ObjectRecord& newer) {
        Require(older.propOffset <= newer.propOffset);
    }));
    for (const ObjectRecord& record : RecordsOf(*journal)) {
        InfoBlock block;
        if (stored.GetInfoFromStorage(record.propOffset, block)) {
            DataAreSound(stored, record, block);
            // Nothing stands behind the end of the file.
            Require(!check.HoldsNewer(*journal, block, static_cast<std::uint32_t>(sav.size())));
            check.HoldsNewer(*journal, block, record.propOffset);
        }
    }
    return 0;
}
