// Damaged lists and blocks on a device whose memory runs out where the input says: an operation
// that succeeds all the same has the result that it has with memory, and none fails without cause.
#include <iterator>

#include "difftree/model/difference_tree.h"
#include "difftree/model/list_enumerator.h"
#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/lost_containers.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/compare/state_identifiers.h"
#include "snapshot/compare/value_names.h"
#include "snapshot/compare/written_records.h"
#include "snapshot/records/left_out.h"
#include "storage/format/journal_records.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/failing_new.h"
#include "tests/native/recording_log.h"
#include "tests/support/fake_tree.h"
#include "tests/support/records.h"

using namespace tolvenar;

namespace {

const FailureTable kNoFailures;

// What an operation works on, and which of its allocations fail.
struct Device {
    std::uint32_t older_state;
    std::uint32_t newer_state;
    Bytes journal_bytes;
    Bytes storage_bytes;
    std::size_t failing = 0;  // counted from 1; 0 for none
    std::size_t failing_count = 0;
    bool has_failed = false;
    FuzzSource info{storage_bytes};
    std::unique_ptr<ObjectList> journal{LoadRecords(journal_bytes.data(), journal_bytes.size())};

    template <typename Operation>
    bool WhileShort(Operation operation) {
        FailAllocationsFrom(failing, failing_count);
        const bool has_succeeded = operation();
        has_failed = failing != 0 && CountedAllocations() >= failing;
        FailAllocationsFrom(0);
        return has_succeeded;
    }
    std::unique_ptr<ObjectList> State(std::uint32_t state) {
        auto list = ObjectList::CreateList();
        Require(BuildStateList(*list, *journal, state, info));
        return list;
    }
    std::unique_ptr<ObjectList> Differences() {
        const auto older = State(older_state);
        const auto newer = State(newer_state);
        auto diff = ObjectList::CreateList();
        Require(FindChanges(older.get(), newer.get(), *diff, info));
        return diff;
    }
};

Bytes Content(const ObjectList& list) {
    Bytes content;
    for (const KeyedRecord& entry : Walk(list)) {
        content += BytesOf(entry.key) + BytesOf(entry.record);
    }
    return content;
}

// Each is false when it says that memory is short, and tells its result otherwise.
bool LoadJournal(Device& device, Bytes& result) {
    MemoryBytes file(device.journal_bytes);
    const auto list = ObjectList::CreateList();
    std::uint32_t taken = 0;
    const bool loaded =
        device.WhileShort([&] { return ReadJournalRecords(file, *list, nullptr, taken); });
    result = Content(*list);
    return loaded;
}

bool BuildState(Device& device, Bytes& result) {
    std::unique_ptr<ObjectList> list;
    const bool built = device.WhileShort([&] {
        return ResetList(list) &&
               BuildStateList(*list, *device.journal, device.newer_state, device.info);
    });
    result = built ? Content(*list) : Bytes();
    return built;
}

bool Compare(Device& device, Bytes& result) {
    const auto older = device.State(device.older_state);
    const auto newer = device.State(device.newer_state);
    const auto diff = ObjectList::CreateList();
    const bool compared = device.WhileShort(
        [&] { return FindChanges(older.get(), newer.get(), *diff, device.info); });
    result = Content(*diff);
    return compared;
}

bool KeepStored(Device& device, Bytes& result) {
    const auto diff = device.Differences();
    const Bytes before = Content(*diff);
    const bool kept = device.WhileShort([&] { return KeepStoredObjects(*diff, device.info); });
    result = Content(*diff);
    Require(kept || result == before);
    return kept;
}

bool EnterNewIds(Device& device, Bytes& result) {
    const auto diff = device.Differences();
    const bool entered = device.WhileShort([&] {
        JournalUpdater updater(device.journal.get());
        std::uint32_t id = 1;
        for (const ObjectList::Node& node : *diff) {
            updater.UpdateJournalOid(*node.record, HasObjectStoreId(node.record->type) ? id++ : 0);
        }
        return updater.SeparateVersions();
    });
    result = Content(*device.journal);
    return entered;
}

bool SplitNames(Device& device, Bytes& result) {
    ValueNames names(device.journal.get(), device.info.storage(), device.info);
    return device.WhileShort([&] {
        for (const ObjectList::Node& node : *device.journal) {
            InfoBlock block;
            std::size_t place = 0;
            const bool is_described = FetchInfo(*node.record, device.info, block);
            if (is_described && names.FindSeparator(*node.record, block, place)) {
                result += Word(static_cast<std::uint32_t>(place));
            } else if (std::u16string_view(block.name()).find(kNameSeparator) !=
                       std::u16string_view::npos) {
                return false;
            }
        }
        return true;
    });
}

bool Identify(Device& device, Bytes& result) {
    const auto state = device.State(device.older_state);
    StateIdentifiers holders(device.info);
    RegistryObjects table;
    return device.WhileShort([&] {
        if (!holders.Build(*state)) {
            return false;
        }
        for (const ObjectList::Node& node : *device.journal) {
            InfoBlock block;
            FetchInfo(*node.record, device.info, block);
            const bool is_key = node.record->type == ObjectType::kRegistryKey;
            const RegistryEntry entry{is_key, block.head().hive, block.name(),
                                      is_key ? nullptr : u"value"};
            std::uint32_t TolvOID = 0;
            if (!table.Generate(block.name(), entry, TolvOID, &holders)) {
                return false;
            }
            result += Word(TolvOID);
        }
        return true;
    });
}

bool BuildTree(Device& device, Bytes& result) {
    struct NoContents final : LiveContents {
        bool ReadTextProperty(const ObjectRecord&, const InfoBlock&, std::uint32_t,
                              TextBuilder&) override {
            return false;
        }
        bool ReadValueText(const ObjectRecord&, TextBuilder&) override { return false; }
    } contents;
    ListEnumerator objects(device.journal.get(), kNoFailures, &device.info.storage(), device.info,
                           contents);
    FakeTree tree;
    TreeBuild build;
    build.advanced_view = device.older_state % 2 != 0;
    const bool built = device.WhileShort(
        [&] { return BuildDifferenceTree(tree, EnglishTexts(), objects, build) == 1; });
    for (const std::u16string& line : built ? tree.Lines() : std::vector<std::u16string>()) {
        result += Terminated(line);
    }
    // A title that cannot be read for want of memory is none: its record shows its id.
    return built && !device.has_failed;
}

bool FindObjects(Device& device, Bytes& result) {
    ObjectFinder finder(device.info);
    WrittenRecords written;
    return device.WhileShort([&] {
        if (!finder.Reserve(2 * device.journal->CountRecords())) {
            return false;
        }
        for (const ObjectList::Node& node : *device.journal) {
            result += finder.AddByName(*node.record) ? 'n' : '-';
            finder.AddById(*node.record);
            const bool is_entered = written.Add(node.record->dwOID);
            Require(written.Contains(node.record->dwOID) == is_entered);
            if (!is_entered) {
                return false;
            }
        }
        return true;
    });
}

// Without memory less is left out, and everything counts as contained.
bool RememberNames(Device& device, Bytes& result) {
    LeftOut left_out;
    LostContainers lost;
    LostContainers all_lost;
    std::vector<InfoBlock> blocks;
    for (const ObjectRecord& record : RecordsOf(*device.journal)) {
        FetchInfo(record, device.info, blocks.emplace_back());
        all_lost.Add(blocks.back());
    }
    device.WhileShort([&] {
        for (const InfoBlock& block : blocks) {
            left_out.Add(block.type(), block.name());
            lost.Add(block);
        }
        return true;
    });
    for (const InfoBlock& block : blocks) {
        Require(lost.Contain(block) || !all_lost.Contain(block));
        result += Bytes(left_out.Contains(block.type(), block.name()) ? "l" : "-") +
                  (lost.Contain(block) ? "c" : "-");
    }
    return !device.has_failed;
}

using Operation = bool (*)(Device&, Bytes&);
constexpr Operation kOperations[] = {LoadJournal, BuildState,   Compare,  KeepStored,
                                     EnterNewIds, SplitNames,   Identify, BuildTree,
                                     FindObjects, RememberNames};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const Operation operation = kOperations[input.Byte() % std::size(kOperations)];
    const std::size_t failing = 1u + input.Byte();
    const std::size_t failing_count = input.Byte() % 2 != 0 ? 1 : SIZE_MAX;
    const std::uint32_t older_state = input.Byte();
    const std::uint32_t newer_state = input.Byte();
    const Bytes journal = input.TakeBytes(sizeof(ObjectRecord) * (input.Byte() % 32));
    const Bytes storage = input.Rest();
    Bytes expected;
    Device whole{older_state, newer_state, journal, storage};
    const bool is_possible = operation(whole, expected);
    Bytes result;
    Device device{older_state, newer_state, journal, storage, failing, failing_count};
    const bool has_succeeded = operation(device, result);
    Require(has_succeeded ? result == expected : device.has_failed || !is_possible);
    ClearLog();
    return 0;
}
