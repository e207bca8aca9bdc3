#include "storage/operations/restore_preview.h"

#include "platform/win32.h"

#include <utility>

#include "snapshot/compare/states.h"
#include "snapshot/engine/difference_engine.h"
#include "snapshot/text/log.h"
#include "storage/operations/aimed_state.h"
#include "storage/operations/held_back.h"
#include "storage/operations/restore_preparation.h"
#include "storage/operations/saved_counts.h"

namespace tolvenar {
namespace {

// A restore first compares and proves as the preview did, which was measured. What comes behind it
// is reckoned: an object costs a few calls to the object store, a file's bytes are read from a card
// and written to flash, and the copying rests for half a second after each megabyte.
constexpr std::uint64_t kMsPerObject = 20;
constexpr std::uint64_t kBytesPerMs = 200;
constexpr std::uint64_t kRestMsPerMegabyte = 500;
constexpr std::uint64_t kMegabyte = 0x100000;

std::uint32_t ExpectedSeconds(std::uint32_t preview_ms, std::size_t objects, std::uint64_t bytes) {
    const std::uint64_t ms = preview_ms + objects * kMsPerObject + bytes / kBytesPerMs +
                             bytes / kMegabyte * kRestMsPerMegabyte;
    return static_cast<std::uint32_t>(ms / 1000);
}

// Says yes to what loses nothing: the preview tells of a restore that goes on.
class YesToAll final : public RestoreQuestions {
public:
    explicit YesToAll(std::uint64_t& missing_bytes) : missing_bytes_(missing_bytes) {}

    bool MayWriteBackMissing(const DamageCount&) override { return true; }
    // It is the loaded list whose state was chosen.
    bool MayTakeOlderList(std::uint32_t) override { return false; }
    bool MayGoOnWithoutRoom(std::uint64_t missing_bytes) override {
        missing_bytes_ = missing_bytes;
        return true;
    }

private:
    std::uint64_t& missing_bytes_;
};

// Lends header and journal of one storage to another: a second copy of a long journal might not
// find room.
class Loan {
public:
    Loan(OpenedStorage& owner, OpenedStorage& borrower) : owner_(owner), borrower_(borrower) {
        borrower.names = owner.names;
        borrower.journal_stamp = owner.journal_stamp;
        Exchange();
    }
    ~Loan() { Exchange(); }
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

private:
    void Exchange() {
        std::swap(owner_.header, borrower_.header);
        std::swap(owner_.journal, borrower_.journal);
    }

    OpenedStorage& owner_;
    OpenedStorage& borrower_;
};

// How many objects a restore leaves alone; they are in the list no more.
std::uint32_t TakeOutHeldBack(ObjectList& difference) {
    std::uint32_t count = 0;
    difference.RemoveIf([&](const ObjectList::Node& node) {
        const bool is_held_back = IsHeldBack(*node.record);
        count += is_held_back ? 1 : 0;
        return is_held_back;
    });
    return count;
}

}  // namespace

RestorePreview::RestorePreview(DatabaseLayer& databases, Progress& progress)
    : describer_(storage_.registry_objects, databases),
      engine_{storage_, databases, describer_, progress} {}

void RestorePreview::Drop() {
    CloseStorage(storage_);
    figures_ = {};
}

bool RestorePreview::Find(OpenedStorage& opened, std::uint32_t state_number) {
    Drop();
    bool is_found = false;
    {
        const LogPause no_log;
        const Loan loan(opened, storage_);
        is_found = FindWithJournal(state_number);
    }
    if (!is_found) {
        Drop();
    }
    return is_found;
}

bool RestorePreview::FindWithJournal(std::uint32_t state_number) {
    const DWORD start = ::GetTickCount();
    if (!Compare(state_number) || !Plan()) {
        return false;
    }
    figures_.seconds = ExpectedSeconds(::GetTickCount() - start, CountPending(*storage_.difference),
                                       figures_.written_bytes);
    if (!LookFromDevice() || !CountSaved(engine_, figures_.counts)) {
        return false;
    }
    figures_.counts.state_number = state_number;
    FreeWorkingLists(storage_, false);
    return true;
}

// A state that is none would pass for an empty one.
bool RestorePreview::Compare(std::uint32_t state_number) {
    return storage_.journal != nullptr && HasState(*storage_.journal, state_number) &&
           FindDifference(engine_, state_number) != 0;
}

// Leaves in the list what a restore would do.
bool RestorePreview::Plan() {
    YesToAll questions(figures_.missing_bytes);
    RestorePlan plan{engine_, &questions, nullptr, true};
    // Without a journal no new ids are kept.
    RestoreRun run(nullptr);
    if (PrepareRestore(plan, run) != PlanOutcome::kGo) {
        return false;
    }
    storage_.failures.Clear();
    figures_.left_alone = TakeOutHeldBack(*storage_.difference);
    figures_.is_damaged = plan.is_damaged;
    figures_.written_bytes = plan.written_bytes;
    return true;
}

// From now on the device is the older of the two.
bool RestorePreview::LookFromDevice() {
    TurnRound(storage_, *storage_.difference);
    std::swap(storage_.older, storage_.newer);
    return EnterOverwrittenFiles();
}

// A file of which only the contents changed has one key for both versions and stands in the list
// once: the user would read that the restore adds it.
bool RestorePreview::EnterOverwrittenFiles() {
    for (const ObjectList::Node& node : *storage_.difference) {
        const ObjectKey key = node.key.OfScannedFile();
        const bool is_file_to_write =
            node.record->type == ObjectType::kFile && (node.record->flags & JF_ADD) != 0;
        const ObjectList::Node* const overwritten =
            is_file_to_write ? storage_.older->FindByKey(key) : nullptr;
        if (overwritten == nullptr || (overwritten->record->flags & JF_MATCHED) != 0) {
            continue;
        }
        ObjectRecord deletion = *overwritten->record;
        deletion.flags = JF_DELETE;
        if (!storage_.difference->InsertCopy(key, deletion)) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar
