#include "pc/storage/salvage_plan.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "pc/storage/object_data.h"
#include "pc/storage/salvaged_object.h"
#include "pc/storage/state_objects.h"
#include "pc/storage/storage_head.h"
#include "pc/storage/versions.h"
#include "pc/text/failure.h"
#include "storage/format/state_block.h"

namespace tolvenar::pc {
namespace {

constexpr std::u16string_view kLostState = u"Salvaged: the block of the state itself is lost.";
constexpr std::uint32_t kLastSpareId = 0xFFFFFFFE;  // from there down: no device gives such ids

// How the object is called whatever is wrong with it.
std::u16string NameOf(StoredObject object) {
    object.is_damaged = false;
    return PathOf(object);
}

std::string BytesOf(const void* bytes, std::size_t size) {
    return {static_cast<const char*>(bytes), size};
}

// A block for a state whose own is lost, with its description behind it.
std::string MakeStateBlock() {
    InfoBlock block;
    block.SetName(kStateBlockName.data(), kStateBlockName.size());
    block.head().type = static_cast<std::uint16_t>(ObjectType::kState);
    block.head().data_bytes =
        static_cast<std::uint32_t>((kLostState.size() + 1) * sizeof(char16_t));
    return BytesOf(block.bytes(), block.size()) +
           BytesOf(kLostState.data(), kLostState.size() * sizeof(char16_t)) +
           std::string(sizeof(char16_t), '\0');
}

// The head without its description, whose length cannot be right.
std::string MakeHead(StorageHeader header) {
    header.descriptionBytes = 0;
    return BytesOf(&header, kDescriptionOffset) +
           std::string(kStorageHeadBytes - kDescriptionOffset, '\0');
}

// Gives object-store ids: those of proofs, of which the newest object keeps it where two have one,
// else such as no device gives.
class Ids {
public:
    explicit Ids(const SurvivingRecords& records) : records_(records) {}

    // The newest object comes first.
    void Give(const std::u16string& identity, ObjectRecord& record) {
        if (TraitsOf(record.type).id != IdSource::kObjectStore) {
            return;
        }
        if (record.dwOID != 0 &&
            holders_.emplace(record.dwOID, identity).first->second == identity) {
            return;
        }
        do {
            record.dwOID = next_--;
        } while (records_.HaveId(record.dwOID));
    }

private:
    const SurvivingRecords& records_;
    std::map<std::uint32_t, std::u16string> holders_;
    std::uint32_t next_ = kLastSpareId;
};

struct Found {
    StoredObject object;
    std::u16string identity;  // empty for a state and for what is left out
    std::uint16_t old_number;
};

class Salvager {
public:
    explicit Salvager(SalvageSource& source)
        : source_(source), planner_(source.reader, source.info) {}

    Salvage Run() {
        std::vector<Found> objects = Collect(WalkFromHead());
        Ids ids(source_.records);
        for (auto found = objects.rbegin(); found != objects.rend(); ++found) {
            if (!found->identity.empty()) {
                ids.Give(found->identity, found->object.record);
            }
        }
        for (const Found& found : objects) {
            Take(found);
        }
        if (salvage_.states.empty()) {
            throw Failure(ExitCode::kDamaged, "no block of any object was found");
        }
        EndState();
        KeepDeletedOf(blocks_);
        salvage_.plan = planner_.Finish();
        return std::move(salvage_);
    }

private:
    BlockWalk WalkFromHead() {
        const auto head = static_cast<std::uint32_t>(StorageHeadSize(source_.header));
        BlockWalk walk = WalkBlocks(source_.reader, source_.records, head, source_.bytes);
        // A damaged length of the description hides the first block.
        if (walk.blocks.empty() || walk.blocks[0].offset != head) {
            BlockWalk earlier =
                WalkBlocks(source_.reader, source_.records, kDescriptionOffset, source_.bytes);
            salvage_.is_head_made = source_.bytes < head ||
                                    (!earlier.blocks.empty() && earlier.blocks[0].offset < head);
            walk = salvage_.is_head_made ? std::move(earlier) : std::move(walk);
        }
        if (salvage_.is_head_made) {
            planner_.MakeHead(MakeHead(source_.header));
        } else {
            planner_.CopyHead(head);
        }
        salvage_.gaps = walk.gaps;
        return walk;
    }

    std::vector<Found> Collect(const BlockWalk& walk) {
        std::vector<Found> objects;
        std::set<std::uint32_t> places;
        for (const FoundBlock& block : walk.blocks) {
            places.insert(block.offset);
            Found found{DescribeFound(source_.reader, block), {}, 0};
            const StoredObject& object = found.object;
            const bool is_state = object.type() == ObjectType::kState;
            found.old_number =
                block.proof != nullptr ? block.proof->state_number : std::uint16_t{0};
            if (!is_state && object.is_damaged) {
                salvage_.damaged.push_back({block.offset, NameOf(object)});
                continue;
            }
            if (!is_state) {
                Note(block, object);
                found.identity = Identity(object);
            }
            objects.push_back(std::move(found));
        }
        for (const std::uint32_t place : source_.records.Places()) {
            salvage_.lost_blocks += 1 - places.count(place);
        }
        return objects;
    }

    void Note(const FoundBlock& block, const StoredObject& object) {
        ++(block.proof != nullptr ? salvage_.proved : salvage_.unproved);
        if (block.is_doubtful) {
            salvage_.doubtful.push_back({block.offset, PathOf(object)});
        }
        if (block.proof != nullptr && source_.records.TellDeletionOf(block.offset)) {
            salvage_.deleted.push_back({block.offset, PathOf(object)});
        }
        salvage_.records_without_id +=
            object.type() == ObjectType::kDatabaseRecord && object.record.dwOID == 0 ? 1 : 0;
    }

    // What a later version has replaced was deleted for it.
    void KeepDeletedOf(const Blocks& last_state) {
        std::vector<SalvageNote>& deleted = salvage_.deleted;
        deleted.erase(std::remove_if(deleted.begin(), deleted.end(),
                                     [&last_state](const SalvageNote& note) {
                                         return last_state.count(note.offset) == 0;
                                     }),
                      deleted.end());
    }

    // A database record without an id is one of its own: nothing tells which it is a version of.
    static std::u16string Identity(const StoredObject& object) {
        if (object.type() != ObjectType::kDatabaseRecord || object.record.dwOID != 0) {
            return IdentityOf(object);
        }
        const std::uint32_t place = object.record.propOffset;
        return IdentityOf(object) + std::u16string{static_cast<char16_t>(place >> 16),
                                                   static_cast<char16_t>(place & 0xFFFF)};
    }

    void Take(const Found& found) {
        if (found.object.type() == ObjectType::kState) {
            EndState();
            BeginState(found);
            return;
        }
        // A backup stores no object twice: the block of a state between is lost.
        if (salvage_.states.empty() || met_.count(found.identity) != 0) {
            EndState();
            BeginLostState();
        }
        met_.insert(found.identity);
        const auto version = living_.find(found.identity);
        if (version != living_.end()) {
            blocks_.erase(version->second);
        }
        const bool is_new = version == living_.end();
        living_[found.identity] = found.object.record.propOffset;
        blocks_[found.object.record.propOffset] = found.object.record;
        Count(found.object, is_new);
        ++salvage_.states.back().stored;
    }

    // The fingerprint of a database that nothing proves is the number of its records.
    void Count(const StoredObject& object, bool is_new) {
        if (object.type() == ObjectType::kDatabaseRecord) {
            std::uint16_t& count = record_counts_[object.name];
            count = static_cast<std::uint16_t>(count + (is_new ? 1 : 0));
        } else if (object.type() == ObjectType::kDatabase &&
                   object.record.content_fingerprint == 0) {
            uncounted_.emplace_back(object.record.propOffset, object.name);
        }
    }

    void BeginState(const Found& found) {
        if (found.object.is_damaged) {
            BeginLostState();
            return;
        }
        title_ = found.object.record;
        made_title_.clear();
        salvage_.states.push_back({found.old_number, found.object.time, true});
    }
    void BeginLostState() {
        made_title_ = MakeStateBlock();
        salvage_.states.push_back({0, {}, false});
    }
    void EndState() {
        for (const auto& [place, name] : uncounted_) {
            blocks_.at(place).content_fingerprint = record_counts_[name];
        }
        uncounted_.clear();
        if (!salvage_.states.empty()) {
            planner_.AddState(title_, made_title_, blocks_);
        }
        met_.clear();
    }

    SalvageSource& source_;
    PairPlanner planner_;
    Salvage salvage_;
    ObjectRecord title_{};  // of the present state
    std::string made_title_;
    Blocks blocks_;                                          // the objects of the present state
    std::map<std::u16string, std::uint32_t> living_;         // their places by their identities
    std::set<std::u16string> met_;                           // what the present state has stored
    std::map<std::u16string, std::uint16_t> record_counts_;  // of living ones
    std::vector<std::pair<std::uint32_t, std::u16string>> uncounted_;  // the state's databases
};

}  // namespace

SalvageSource::SalvageSource(const PairFiles& files)
    : sav(files.sav),
      journal(files.has_journal     ? files.journal
              : files.has_temporary ? files.temporary
                                    : std::string()),
      records(journal) {
    header = ReadStorageHead(reader, files.sav);
    if (!sav.Size(bytes)) {
        throw Failure(ExitCode::kCannot, files.sav + ": its size cannot be told, or is too large");
    }
}

Salvage PlanSalvage(SalvageSource& source) { return Salvager(source).Run(); }

bool IsSalvageOf(StoredPair& made, const PairPlan& plan) {
    if (!made.findings().empty() || !made.list_is_sound() ||
        made.states().size() != plan.objects.size()) {
        return false;
    }
    for (std::size_t i = 0; i < plan.objects.size(); ++i) {
        const std::vector<StoredObject> objects = ObjectsOf(made, made.states()[i].number);
        if (objects.size() != plan.objects[i]) {
            return false;
        }
        for (const StoredObject& object : objects) {
            if (object.record.state_number == made.states()[i].number &&
                !DataAreSound(made, object)) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace tolvenar::pc
