#include "tests/damage/damage_kinds.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>

namespace tolvenar {
namespace {

constexpr std::size_t kRecordBytes = sizeof(ObjectRecord);
constexpr std::size_t kSectorBytes = 512;
constexpr std::size_t kSectorFills = 4;
constexpr std::size_t kTailStep = 16;
constexpr char kAllOnes = '\xFF';

std::size_t Places(std::size_t bytes, std::size_t step) { return (bytes + step - 1) / step; }

template <std::size_t factor>
std::size_t JournalBytes(const SoundStorage& own) {
    return own.journal().size() * factor;
}
std::size_t JournalRecords(const SoundStorage& own) { return own.journal().size() / kRecordBytes; }
std::size_t JournalSectors(const SoundStorage& own) {
    return kSectorFills * Places(own.journal().size(), kSectorBytes);
}
std::size_t SavBits(const SoundStorage& own) { return own.sav().size() * 8; }
std::size_t SavSectors(const SoundStorage& own) {
    return kSectorFills * Places(own.sav().size(), kSectorBytes);
}
std::size_t SavTails(const SoundStorage& own) { return Places(own.sav().size(), kTailStep); }

void FlipBit(Bytes& bytes, std::size_t bit) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
}

// Four cases for each sector: all zero, all ones, anything, what the sector before has.
std::string FillSector(Bytes& bytes, std::size_t index) {
    constexpr const char* kFills[kSectorFills] = {" zeroed", " all FF", " random",
                                                  " as the one before"};
    const std::size_t begin = index / kSectorFills * kSectorBytes;
    const std::size_t size = std::min(kSectorBytes, bytes.size() - begin);
    const std::size_t before = begin == 0 ? bytes.size() - size : begin - kSectorBytes;
    const Bytes fills[kSectorFills] = {Bytes(size, '\0'), Bytes(size, kAllOnes),
                                       RandomBytes(size, static_cast<unsigned>(index)),
                                       bytes.substr(before, size)};
    bytes.replace(begin, size, fills[index % kSectorFills]);
    return "sector " + std::to_string(index / kSectorFills) + kFills[index % kSectorFills];
}

void ZeroFrom(Bytes& bytes, std::size_t begin) {
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(begin), bytes.end(), '\0');
}

Damaged SoundPair(const Storages& storages) {
    return {storages.own.pairs.back(), "", &storages.own};
}

Damaged WithJournal(const Storages& storages, const std::function<std::string(Bytes&)>& change) {
    Damaged damaged = SoundPair(storages);
    damaged.what = "journal: " + change(*damaged.pair.journal);
    return damaged;
}

Damaged WithSav(const Storages& storages, const std::function<std::string(Bytes&)>& change) {
    Damaged damaged = SoundPair(storages);
    damaged.what = "storage file: " + change(*damaged.pair.sav);
    return damaged;
}

Damaged CutJournal(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        journal.resize(index);
        return "cut to " + std::to_string(index) + " bytes";
    });
}

Damaged FlipJournalBit(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        FlipBit(journal, index);
        return "byte " + std::to_string(index / 8 % kRecordBytes) + " bit " +
               std::to_string(index % 8) + " of record " + std::to_string(index / 8 / kRecordBytes);
    });
}

// One record of the journal becomes `replacement` of the bytes of it, its neighbour before and the
// one behind.
using Replacement = Bytes (*)(const Bytes& record, const Bytes& before, const Bytes& behind);

Damaged ReplaceRecord(const Storages& storages, std::size_t index, Replacement replacement) {
    return WithJournal(storages, [&](Bytes& journal) {
        const std::size_t count = journal.size() / kRecordBytes;
        const auto record = [&](std::size_t n) {
            return journal.substr(n % count * kRecordBytes, kRecordBytes);
        };
        journal.replace(index * kRecordBytes, kRecordBytes,
                        replacement(record(index), record(index + count - 1), record(index + 1)));
        return "record " + std::to_string(index);
    });
}

Bytes Zeroed(const Bytes& record, const Bytes&, const Bytes&) { return Bytes(record.size(), '\0'); }
Bytes Filled(const Bytes& record, const Bytes&, const Bytes&) {
    return Bytes(record.size(), kAllOnes);
}
Bytes Dropped(const Bytes&, const Bytes&, const Bytes&) { return {}; }
Bytes Doubled(const Bytes& record, const Bytes&, const Bytes&) { return record + record; }
Bytes AsTheOneBefore(const Bytes&, const Bytes& before, const Bytes&) { return before; }
Bytes AsTheOneBehind(const Bytes&, const Bytes&, const Bytes& behind) { return behind; }

template <Replacement replacement>
Damaged Replace(const Storages& storages, std::size_t index) {
    return ReplaceRecord(storages, index, replacement);
}

Damaged ZeroJournalTail(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        ZeroFrom(journal, index * kRecordBytes);
        return "zero from record " + std::to_string(index) + " on";
    });
}

Damaged FillJournalSector(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) { return FillSector(journal, index); });
}

// The order of the records means nothing within a state.
Damaged SwapRecords(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        const std::size_t second = (index + 1) * kRecordBytes % journal.size();
        const Bytes record = journal.substr(index * kRecordBytes, kRecordBytes);
        journal.replace(index * kRecordBytes, kRecordBytes, journal, second, kRecordBytes);
        journal.replace(second, kRecordBytes, record);
        return "record " + std::to_string(index) + " and the next swapped";
    });
}

// A cluster of the file that went out of its chain, or a part of one.
constexpr std::size_t kHoles[] = {2, 3, 8, 16};

std::size_t JournalHoles(const SoundStorage& own) {
    return JournalRecords(own) * std::size(kHoles);
}

Damaged TakeRecordsOut(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        const std::size_t first = index / std::size(kHoles);
        const std::size_t count = kHoles[index % std::size(kHoles)];
        journal.erase(first * kRecordBytes, count * kRecordBytes);
        return std::to_string(count) + " records from record " + std::to_string(first) + " on";
    });
}

// Every record moves to each other state, and to one that never was.
std::size_t OtherStates(const SoundStorage& own) { return JournalRecords(own) * own.states.size(); }

Damaged MoveToState(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        const std::size_t states = storages.own.states.size();
        const std::size_t record = index / states;
        const std::size_t place = record * kRecordBytes + offsetof(ObjectRecord, state_number);
        auto other = static_cast<std::uint16_t>(index % states + 1);
        if (journal.compare(place, sizeof other, BytesOf(other)) == 0) {
            other = static_cast<std::uint16_t>(states + 1);
        }
        Patch(journal, place, other);
        return "record " + std::to_string(record) + " moved to state " + std::to_string(other);
    });
}

// A load and a save turn the order round: the last records are those of another state then.
Damaged CutReversedJournal(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        journal = Reversed(journal).substr(0, index * kRecordBytes);
        return "reversed, then cut to " + std::to_string(index) + " records";
    });
}

// For each older journal its sectors, one of which was never overwritten.
std::size_t StaleSectors(const SoundStorage& own) {
    return (own.pairs.size() - 1) * Places(own.journal().size(), kSectorBytes);
}

Damaged KeepStaleSector(const Storages& storages, std::size_t index) {
    return WithJournal(storages, [&](Bytes& journal) {
        const std::size_t older = storages.own.pairs.size() - 1;
        const Bytes& stale = *storages.own.pairs[index % older].journal;
        const std::size_t begin = index / older * kSectorBytes;
        if (begin < stale.size()) {
            const std::size_t size =
                std::min({kSectorBytes, stale.size() - begin, journal.size() - begin});
            journal.replace(begin, size, stale, begin, size);
        }
        return "sector " + std::to_string(index / older) + " still that of state " +
               std::to_string(index % older + 1);
    });
}

// Either file goes on behind its end: so many bytes of zeros, of ones, of anything.
constexpr std::size_t kTailSizes[] = {1, kRecordBytes, kSectorBytes};

std::size_t LongerFiles(const SoundStorage&) { return 2 * 3 * std::size(kTailSizes); }

Damaged MakeLonger(const Storages& storages, std::size_t index) {
    const std::size_t size = kTailSizes[index / 6];
    const Bytes tails[] = {Bytes(size, '\0'), Bytes(size, kAllOnes), RandomBytes(size, 1)};
    const auto change = [&](Bytes& bytes) {
        bytes += tails[index / 2 % 3];
        return std::to_string(size) + " bytes longer, fill " + std::to_string(index / 2 % 3);
    };
    return index % 2 == 0 ? WithJournal(storages, change) : WithSav(storages, change);
}

Damaged FlipSavBit(const Storages& storages, std::size_t index) {
    return WithSav(storages, [&](Bytes& sav) {
        FlipBit(sav, index);
        return "byte " + std::to_string(index / 8) + " bit " + std::to_string(index % 8);
    });
}

Damaged ZeroSavTail(const Storages& storages, std::size_t index) {
    return WithSav(storages, [&](Bytes& sav) {
        ZeroFrom(sav, index * kTailStep);
        return "zero from " + std::to_string(index * kTailStep) + " on";
    });
}

Damaged CutSav(const Storages& storages, std::size_t index) {
    return WithSav(storages, [&](Bytes& sav) {
        sav.resize(index * kTailStep);
        return "cut to " + std::to_string(index * kTailStep) + " bytes";
    });
}

Damaged FillSavSector(const Storages& storages, std::size_t index) {
    return WithSav(storages, [&](Bytes& sav) { return FillSector(sav, index); });
}

// Older halves of the storage itself: for each state but the last, its journal beside the newest
// storage file and the reverse. Then halves of the other storages, and the reverse.
std::size_t MixedPairs(const SoundStorage& own) { return 2 * (own.pairs.size() - 1) + 4; }

Damaged Mix(const Storages& storages, std::size_t index) {
    const SoundStorage& own = storages.own;
    const std::size_t older = own.pairs.size() - 1;
    const bool is_others_journal = index % 2 == 0;
    const SoundStorage& other = index < 2 * older       ? own
                                : index < 2 * older + 2 ? storages.fresh
                                                        : storages.foreign;
    const Pair& half = &other == &own ? own.pairs[index / 2] : other.pairs.back();
    const std::string name = &other == &own              ? "state " + std::to_string(index / 2 + 1)
                             : &other == &storages.fresh ? "a storage begun anew"
                                                         : "another device";
    Damaged damaged = SoundPair(storages);
    damaged.what = (is_others_journal ? "the journal of " : "the storage file of ") + name;
    if (is_others_journal) {
        damaged.pair.journal = half.journal;
        damaged.storage = &other;
    } else {
        damaged.pair.sav = half.sav;
    }
    return damaged;
}

std::size_t FourHalves(const SoundStorage&) { return 4; }

Damaged TakeHalf(const Storages& storages, std::size_t index) {
    Damaged damaged = SoundPair(storages);
    const bool is_journal = index % 2 == 0;
    std::optional<Bytes>& half = is_journal ? damaged.pair.journal : damaged.pair.sav;
    half = index < 2 ? std::nullopt : std::make_optional<Bytes>();
    damaged.what = std::string(index < 2 ? "no " : "empty ") + (is_journal ? "journal" : "file");
    return damaged;
}

}  // namespace

const std::array<DamageKind, kDamageKinds> kDamageTable = {{
    {"journal-cut", JournalBytes<1>, CutJournal},
    {"journal-bit", JournalBytes<8>, FlipJournalBit},
    {"journal-zeroed", JournalRecords, Replace<Zeroed>},
    {"journal-filled", JournalRecords, Replace<Filled>},
    {"journal-dropped", JournalRecords, Replace<Dropped>},
    {"journal-doubled", JournalRecords, Replace<Doubled>},
    {"journal-as-before", JournalRecords, Replace<AsTheOneBefore>},
    {"journal-as-behind", JournalRecords, Replace<AsTheOneBehind>},
    {"journal-tail", JournalRecords, ZeroJournalTail},
    {"journal-hole", JournalHoles, TakeRecordsOut},
    {"journal-state", OtherStates, MoveToState},
    {"journal-swapped", JournalRecords, SwapRecords},
    {"journal-reversed-cut", JournalRecords, CutReversedJournal},
    {"journal-stale", StaleSectors, KeepStaleSector},
    {"journal-sector", JournalSectors, FillJournalSector},
    {"sav-bit", SavBits, FlipSavBit},
    {"sav-tail", SavTails, ZeroSavTail},
    {"sav-cut", SavTails, CutSav},
    {"sav-sector", SavSectors, FillSavSector},
    {"longer", LongerFiles, MakeLonger},
    {"mixed", MixedPairs, Mix},
    {"half", FourHalves, TakeHalf},
    {"none", [](const SoundStorage&) -> std::size_t { return 1; },
     [](const Storages& storages, std::size_t) { return SoundPair(storages); }},
}};

}  // namespace tolvenar
