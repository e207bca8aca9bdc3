#include "snapshot/compare/pair_check.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "storage/format/journal_records.h"
#include "tests/support/memory_bytes.h"
#include "tests/support/pair_builder.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHeadBytes = 236;

// Three states with every kind of object.
struct ThreeStates : PairBuilder {
    ThreeStates() {
        BeginState("first");
        folder = AddFolder(u"\\Sub", 10);
        file = AddFile(u"\\Sub\\a.txt", "contents", 11);
        empty = AddFile(u"\\empty", "", 12);
        key = AddKey(u"Software\\One");
        value = AddValue(u"Software\\One", u"v", "data");
        AddValue(u"Software\\One", u"none", "");
        database = AddDatabase(u"People", 20);
        record = AddRecord(u"People", 1, 21);
        BeginState();
        AddFile(u"\\b.txt", "other", 13);
        newer_value = AddValue(u"Software\\One", u"v", "data of now");
        Delete(value);
        AddRecord(u"People", 2, 22);
        BeginState("third");
        last = AddFile(u"\\last", "behind all", 14);
        Delete(file);
        Delete(record);
    }
    ObjectRecord folder, file, empty, key, value, database, record, newer_value, last;
};

class PairCheckTest : public testing::Test {
protected:
    // Checks the pair, the storage with a head of `head_bytes`.
    void Check(const Bytes& journal_bytes, const Bytes& sav,
               std::uint32_t head_bytes = kHeadBytes) {
        check_.reset();
        reader_.reset();
        journal_ = ObjectList::CreateList();
        MemoryBytes journal(journal_bytes);
        std::uint32_t taken = 0;
        ASSERT_TRUE(ReadJournalRecords(journal, *journal_, nullptr, taken));
        sav_.reset(new MemoryBytes(sav));
        reader_.reset(new StorageReader(*sav_));
        check_.reset(new PairCheck(*journal_, *reader_));
        ASSERT_TRUE(check_->Run({static_cast<std::uint32_t>(journal_bytes.size()),
                                 static_cast<std::uint32_t>(sav.size()), head_bytes}));
    }
    std::size_t FindingsIn(const PairBuilder& pair) {
        Check(pair.JournalBytes(), pair.sav);
        return check_->findings_in_list();
    }
    // The same when one record, which `of` describes, was changed.
    std::size_t FindingsWith(const ObjectRecord& of,
                             const std::function<void(ObjectRecord&)>& change) {
        Bytes journal = pair_.JournalBytes();
        ObjectRecord changed = of;
        change(changed);
        const std::size_t at = journal.find(BytesOf(of));
        EXPECT_NE(Bytes::npos, at);
        journal.replace(at, sizeof of, BytesOf(changed));
        Check(journal, pair_.sav);
        return check_->findings_in_list();
    }
    std::size_t FindingsWithout(const ObjectRecord& lost) {
        Bytes journal = pair_.JournalBytes();
        journal.erase(journal.find(BytesOf(lost)), sizeof lost);
        Check(journal, pair_.sav);
        return check_->findings_in_list();
    }
    std::vector<std::uint32_t> Unclaimed() const {
        std::vector<std::uint32_t> offsets;
        for (const UnclaimedBlock& block : check_->unclaimed()) {
            offsets.push_back(block.offset);
        }
        return offsets;
    }
    // "older newer" for each double in the last state, by the offsets of their blocks.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> Doubles() {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> doubles;
        EXPECT_TRUE(check_->ForEachDouble(
            *journal_, [&](const ObjectRecord& older, const ObjectRecord& newer) {
                doubles.emplace_back(older.propOffset, newer.propOffset);
            }));
        return doubles;
    }

    ThreeStates pair_;
    std::unique_ptr<ObjectList> journal_;
    std::unique_ptr<MemoryBytes> sav_;
    std::unique_ptr<StorageReader> reader_;
    std::unique_ptr<PairCheck> check_;
};

TEST_F(PairCheckTest, ASoundPairHasNoFindings) {
    EXPECT_EQ(0u, FindingsIn(pair_));
    for (const ObjectRecord& record : pair_.Journal()) {
        EXPECT_EQ(Damage::kNone, check_->DamageOf(record)) << record.propOffset;
    }
    EXPECT_TRUE(Unclaimed().empty());
}

TEST_F(PairCheckTest, AnEmptyStorageHasNoFindings) {
    Check("", Head(u"Handheld", 1));
    EXPECT_EQ(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, BlocksBeginBehindADescription) {
    PairBuilder pair;
    pair.sav = pair.sav.substr(0, 228) + Word(20) + Units(u"described!");
    pair.BeginState();
    Check(pair.JournalBytes(), pair.sav, 252);
    EXPECT_EQ(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, AJournalThatIsCutInARecordIsDamaged) {
    const Bytes journal = pair_.JournalBytes();
    for (std::size_t cut = 1; cut < 32; ++cut) {
        Check(journal.substr(0, journal.size() - cut), pair_.sav);
        EXPECT_NE(0u, check_->findings_in_list()) << cut;
    }
}

// A deletion that is lost leaves no trace: what it deleted comes back.
TEST_F(PairCheckTest, AJournalThatLacksRecordsIsDamagedButForDeletionsAndAWholeNewestState) {
    const Bytes journal = pair_.JournalBytes();
    for (std::size_t bytes = 32; bytes < journal.size(); bytes += 32) {
        Check(journal.substr(0, bytes), pair_.sav);
        EXPECT_NE(0u, check_->findings_in_list() + Unclaimed().size()) << bytes;
        Check(journal.substr(bytes), pair_.sav);
        const bool is_whole = check_->findings_in_list() + Unclaimed().size() == 0;
        // The newest state stands at the begin: two deletions, its file and itself.
        EXPECT_EQ(bytes <= 4 * 32 && bytes != 3 * 32, is_whole) << bytes;
    }
}

TEST_F(PairCheckTest, ARecordTwiceIsDamage) {
    const Bytes journal = pair_.JournalBytes();
    for (std::size_t at = 0; at < journal.size(); at += 32) {
        Check(journal.substr(0, at) + journal.substr(at, 32) + journal.substr(at), pair_.sav);
        EXPECT_NE(0u, check_->findings_in_list()) << at;
    }
}

TEST_F(PairCheckTest, ARecordOfZerosOrOnesIsDamage) {
    const Bytes journal = pair_.JournalBytes();
    for (std::size_t at = 0; at < journal.size(); at += 32) {
        for (const char fill : {'\0', '\xFF'}) {
            Bytes damaged = journal;
            damaged.replace(at, 32, Bytes(32, fill));
            Check(damaged, pair_.sav);
            EXPECT_NE(0u, check_->findings_in_list()) << at;
        }
    }
}

TEST_F(PairCheckTest, EveryAdditionFlagIsOneAndTheScansFlagsSayNothing) {
    for (const std::uint16_t flags :
         std::initializer_list<std::uint16_t>{4, 5, 6, 7, 0x10, 0x20, 0x34}) {
        EXPECT_EQ(0u, FindingsWith(pair_.last, [flags](auto& r) { r.flags = flags; })) << flags;
    }
}

TEST_F(PairCheckTest, OtherFlagsAreDamage) {
    for (const std::uint16_t flags :
         std::initializer_list<std::uint16_t>{0, 1, 2, 12, 0x18, 0x28, 0x44, 0x104, 0x8004}) {
        EXPECT_NE(0u, FindingsWith(pair_.last, [flags](auto& r) { r.flags = flags; })) << flags;
    }
}

TEST_F(PairCheckTest, ReservedBytesAreNotLookedAt) {
    EXPECT_EQ(0u, FindingsWith(pair_.last, [](auto& r) { r.reserved[6] = 9; }));
}

TEST_F(PairCheckTest, AnUnknownTypeIsDamageAndSoIsAnotherThanTheBlocks) {
    EXPECT_NE(0u, FindingsWith(pair_.last, [](auto& r) { r.type = static_cast<ObjectType>(64); }));
    EXPECT_EQ(0u, FindingsWith(pair_.last, [](auto& r) { r.type = kDatabase; }));
    EXPECT_EQ(Damage::kBlock, check_->DamageOf(pair_.last));
}

TEST_F(PairCheckTest, AnIdOfTheOtherKindIsDamage) {
    EXPECT_NE(0u, FindingsWith(pair_.last, [](auto& r) { r.TolvOID = 1; }));
    EXPECT_NE(0u, FindingsWith(pair_.key, [](auto& r) { r.dwOID = 1; }));
}

// But for a deletion at the journal's begin: with the next number it looks like all that is left of
// a backup whose state could not be written.
TEST_F(PairCheckTest, AStateNumberThatAnotherRecordShouldHaveIsDamage) {
    const ObjectRecord front = pair_.Journal()[0];
    for (const ObjectRecord& record : pair_.Journal()) {
        for (std::uint16_t state = 0; state < 9; ++state) {
            const bool is_left = state == 4 && BytesOf(record) == BytesOf(front);
            if (state != record.state_number && !is_left) {
                const std::size_t findings =
                    FindingsWith(record, [=](auto& r) { r.state_number = state; });
                EXPECT_NE(0u, findings + Unclaimed().size())
                    << record.propOffset << " in " << state;
            }
        }
    }
}

TEST_F(PairCheckTest, AStateWithoutARecordOfItsOwnIsDamageWhereItsBlockIs) {
    for (const ObjectRecord& record : pair_.Journal()) {
        if (record.type == kState) {
            EXPECT_NE(0u, FindingsWithout(record)) << record.state_number;
        }
    }
}

TEST_F(PairCheckTest, AStateOfDeletionsAloneWithoutARecordOfItsOwnIsDamageToo) {
    PairBuilder pair;
    pair.BeginState();
    const ObjectRecord file = pair.AddFile(u"\\a", "x", 5);
    pair.BeginState();
    pair.Delete(file);
    pair.BeginState();
    EXPECT_EQ(0u, FindingsIn(pair));
    Bytes journal = pair.JournalBytes();
    for (const ObjectRecord& record : pair.Journal()) {
        if (record.type == kState && record.state_number == 2) {
            journal.erase(journal.find(BytesOf(record)), sizeof record);
        }
    }
    Check(journal, pair.sav);
    EXPECT_NE(0u, check_->findings_in_list());
}

// Its blocks are those of no state that is listed.
TEST_F(PairCheckTest, TheObjectsOfALastStateWithoutARecordOfItsOwnAreUnclaimed) {
    PairBuilder pair;
    pair.BeginState();
    pair.AddFile(u"\\a", "x", 5);
    ObjectRecord last = pair.AddFile(u"\\b", "y", 6);
    const Bytes journal = pair.JournalBytes();
    ASSERT_EQ(BytesOf(last), journal.substr(0, 32));
    last.state_number = 2;
    Check(BytesOf(last) + journal.substr(32), pair.sav);
    EXPECT_EQ(0u, check_->findings_in_list());
    EXPECT_EQ(std::vector<std::uint32_t>{last.propOffset}, Unclaimed());
    EXPECT_EQ(1u, check_->unclaimed().begin()->state);
}

TEST_F(PairCheckTest, AStatesOwnBlockIsItsFirst) {
    PairBuilder pair;
    pair.BeginState();
    const ObjectRecord last = pair.AddFile(u"\\a", "x", 5);
    pair.BeginState();
    Bytes journal = pair.JournalBytes();
    ObjectRecord moved = last;
    moved.state_number = 2;
    journal.erase(journal.find(BytesOf(last)), sizeof last);
    // Beside the records of the second state.
    Check(BytesOf(moved) + journal, pair.sav);
    EXPECT_NE(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, RecordsThatAreLostFromTheirStatesOwnOnAreDamage) {
    PairBuilder pair;
    pair.BeginState();
    const ObjectRecord first = pair.AddFolder(u"\\Sub", 5);
    pair.AddFile(u"\\Sub\\a", "x", 6);
    Bytes journal = pair.JournalBytes();
    journal.erase(journal.find(BytesOf(first)), 2 * sizeof first);
    ASSERT_EQ(32u, journal.size());
    Check(journal, pair.sav);
    EXPECT_NE(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, AStateWhoseOwnBlockFailedIsNone) {
    PairBuilder pair;
    pair.BeginState();
    pair.AddFile(u"\\a", "x", 5);
    PairBuilder without = pair;
    const Bytes before = without.sav;
    without.BeginState();
    // Written over by the next object's.
    without.sav = before;
    without.AddFile(u"\\b", "y", 6);
    Bytes journal = without.JournalBytes();
    for (const ObjectRecord& record : without.Journal()) {
        if (record.type == kState && record.state_number == 2) {
            journal.erase(journal.find(BytesOf(record)), sizeof record);
        }
    }
    Check(journal, without.sav);
    EXPECT_EQ(0u, check_->findings_in_list());
    EXPECT_EQ(1u, Unclaimed().size()) << "until a state follows";
}

// But for the terminator of its name, which nobody reads.
TEST_F(PairCheckTest, EveryBitOfABlockIsProved) {
    const std::size_t block = pair_.value.propOffset;
    for (std::size_t bit = 0; bit < 8 * (pair_.value.data_offset - block - 2); ++bit) {
        Bytes sav = pair_.sav;
        sav[block + bit / 8] ^= static_cast<char>(1 << bit % 8);
        Check(pair_.JournalBytes(), sav);
        EXPECT_EQ(Damage::kBlock, check_->DamageOf(pair_.value)) << bit;
        EXPECT_EQ(0u, check_->findings_in_list()) << bit;
    }
}

TEST_F(PairCheckTest, ABlockBehindTheEndIsDamaged) {
    Check(pair_.JournalBytes(), pair_.sav.substr(0, pair_.last.propOffset + 10));
    EXPECT_EQ(Damage::kBlock, check_->DamageOf(pair_.last));
    EXPECT_EQ(Damage::kNone, check_->DamageOf(pair_.file));
}

TEST_F(PairCheckTest, DataThatEndBehindTheFileAreDamaged) {
    Check(pair_.JournalBytes(), pair_.sav.substr(0, pair_.sav.size() - 1));
    EXPECT_EQ(Damage::kData, check_->DamageOf(pair_.last));
}

TEST_F(PairCheckTest, DataThatReachIntoTheNextBlockAreDamaged) {
    PairBuilder pair;
    pair.BeginState();
    const ObjectRecord file = pair.AddFile(u"\\a", "contents", 5);
    pair.sav.resize(pair.sav.size() - 3);
    const ObjectRecord next = pair.AddFile(u"\\b", "y", 6);
    EXPECT_EQ(0u, FindingsIn(pair));
    EXPECT_EQ(Damage::kData, check_->DamageOf(file));
    EXPECT_EQ(Damage::kNone, check_->DamageOf(next));
}

TEST_F(PairCheckTest, BlocksInOneAnotherAreDamage) {
    PairBuilder pair;
    pair.BeginState();
    pair.AddFolder(u"\\a", 5);
    pair.AddFolder(u"\\b", 6);
    Bytes journal = pair.JournalBytes();
    ObjectRecord inner = pair.Journal()[0];
    journal.erase(0, 32);
    inner.propOffset -= 5;
    Check(BytesOf(inner) + journal, pair.sav);
    EXPECT_NE(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, DataAnywhereButBehindTheirBlockAreDamage) {
    EXPECT_NE(0u, FindingsWith(pair_.last, [](auto& r) { r.data_offset += 1; }));
    EXPECT_NE(0u, FindingsWith(pair_.last, [](auto& r) { r.data_offset = kNoData; }));
    EXPECT_NE(0u, FindingsWith(pair_.folder, [](auto& r) { r.data_offset = 300; }));
    EXPECT_NE(0u, FindingsWith(pair_.empty, [](auto& r) { r.data_offset = 300; }));
    EXPECT_NE(0u, FindingsWith(pair_.key, [](auto& r) { r.data_offset = 300; }));
}

TEST_F(PairCheckTest, AnIdentifierIsThatOfItsName) {
    for (int bit = 0; bit < 24; ++bit) {
        const auto flip = [bit](auto& r) { r.TolvOID ^= 1u << bit; };
        EXPECT_NE(0u, FindingsWith(pair_.key, flip)) << bit;
        // The data of a value may change between scan and writing.
        EXPECT_EQ(bit >= 16, FindingsWith(pair_.newer_value, flip) == 0) << bit;
    }
}

TEST_F(PairCheckTest, AnotherCollisionCounterIsNoDamage) {
    const auto raise = [](auto& r) { r.TolvOID += 0x01000000; };
    EXPECT_EQ(0u, FindingsWith(pair_.key, raise));
    EXPECT_EQ(0u, FindingsWith(pair_.value, raise));
}

TEST_F(PairCheckTest, ADeletionRepeatsWhatItsAdditionSaysButForTheCounter) {
    ObjectRecord deletion = pair_.value;
    deletion.state_number = 2;
    deletion.flags = JF_DELETE;
    for (std::size_t bit = 0; bit < 8 * 20; ++bit) {
        const bool is_counter = bit / 8 == 7;
        const std::size_t findings = FindingsWith(deletion, [bit](ObjectRecord& r) {
            reinterpret_cast<std::uint8_t*>(&r)[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        });
        EXPECT_EQ(is_counter, findings == 0) << bit;
    }
}

TEST_F(PairCheckTest, ADeletionWithoutAnAdditionBeforeItIsDamage) {
    EXPECT_NE(0u, FindingsWithout(pair_.file));
    PairBuilder pair;
    pair.BeginState();
    pair.Delete(pair.AddFile(u"\\a", "x", 5));
    EXPECT_NE(0u, FindingsIn(pair));
}

TEST_F(PairCheckTest, ADeletionWithoutABlockIsDamage) {
    PairBuilder pair;
    pair.BeginState();
    pair.Delete(MakeRecord(kFile, 5, 0));
    EXPECT_NE(0u, FindingsIn(pair));
}

TEST_F(PairCheckTest, ALostRecordInTheMiddleOfABackupIsDamage) {
    EXPECT_NE(0u, FindingsWithout(pair_.empty));
    EXPECT_NE(0u, FindingsWithout(pair_.key));
}

TEST_F(PairCheckTest, AnEndedBackupIsNoDamage) {
    PairBuilder pair = pair_;
    pair.BeginState("ended");
    pair.AddFile(u"\\c", "one", 30);
    pair.AddFile(u"\\d", "two", 31);
    Check(pair_.JournalBytes(), pair.sav);
    EXPECT_EQ(0u, check_->findings_in_list());
    EXPECT_TRUE(Unclaimed().empty());
}

TEST_F(PairCheckTest, TheRestOfAFailedItemIsNoDamageAtTheEndOfABackup) {
    for (const Bytes& rest : {Bytes(5, 'x'), Bytes(700, '\0'), Bytes(700, 'x'),
                              Block(0x20, 0, 0, 100, kFile, u"\\big") + Bytes(99, 'x')}) {
        PairBuilder pair;
        pair.BeginState();
        pair.AddFile(u"\\a", "x", 5);
        pair.sav += rest;
        EXPECT_EQ(0u, FindingsIn(pair));
        EXPECT_TRUE(Unclaimed().empty());
        pair.BeginState();
        EXPECT_EQ(0u, FindingsIn(pair));
        EXPECT_TRUE(Unclaimed().empty());
        pair.sav += rest;
        pair.AddFile(u"\\b", "x", 6);
        EXPECT_NE(0u, FindingsIn(pair)) << "in the middle of a backup";
    }
}

TEST_F(PairCheckTest, RubbishBehindTheHeadIsNoDamage) {
    PairBuilder pair;
    pair.sav += "rubbish";
    pair.BeginState();
    EXPECT_EQ(0u, FindingsIn(pair));
}

TEST_F(PairCheckTest, AWholeBlockBehindTheLastOfABackupIsAFindingAtItsObject) {
    EXPECT_EQ(0u, FindingsWithout(pair_.last));
    EXPECT_EQ(std::vector<std::uint32_t>{pair_.last.propOffset}, Unclaimed());
}

TEST_F(PairCheckTest, TwoWholeBlocksBehindTheLastOfABackupAreDamage) {
    PairBuilder pair;
    pair.BeginState();
    pair.AddFile(u"\\a", "x", 5);
    const PairBuilder before = pair;
    pair.AddFile(u"\\b", "y", 6);
    pair.AddFolder(u"\\c", 7);
    Check(before.JournalBytes(), pair.sav);
    EXPECT_NE(0u, check_->findings_in_list());
}

TEST_F(PairCheckTest, ARecordThatNoAdditionIsBehindIsDamaged) {
    Check(pair_.JournalBytes(), pair_.sav);
    ObjectRecord foreign = pair_.file;
    foreign.propOffset += 1;
    EXPECT_EQ(Damage::kBlock, check_->DamageOf(foreign));
}

TEST_F(PairCheckTest, OfTwoLivingVersionsTheOlderIsTold) {
    PairBuilder pair;
    pair.BeginState();
    const ObjectRecord file = pair.AddFile(u"\\A.txt", "one", 5);
    const ObjectRecord key = pair.AddKey(u"Key");
    pair.AddRecord(u"People", 1, 8);
    pair.AddRecord(u"People", 1, 9);
    const ObjectRecord newer = pair.AddFile(u"\\a.TXT", "two", 6);
    const ObjectRecord newer_key = pair.AddKey(u"KEY");
    EXPECT_EQ(0u, FindingsIn(pair));
    const auto doubles = Doubles();
    ASSERT_EQ(2u, doubles.size());
    for (const auto& pair_of : doubles) {
        EXPECT_TRUE(pair_of == std::make_pair(file.propOffset, newer.propOffset) ||
                    pair_of == std::make_pair(key.propOffset, newer_key.propOffset));
    }
}

TEST_F(PairCheckTest, OneNameInTwoHivesOrOfTwoTypesIsNoDouble) {
    PairBuilder pair;
    pair.BeginState();
    pair.AddKey(u"Name");
    pair.AddFile(u"Name", "", 5);
    pair.AddDatabase(u"Name", 6);
    EXPECT_EQ(0u, FindingsIn(pair));
    EXPECT_TRUE(Doubles().empty());
}

TEST_F(PairCheckTest, RubbishIsCheckedWithoutHarm) {
    for (unsigned seed = 1; seed < 50; ++seed) {
        Check(RandomBytes(32 * 40, seed), RandomBytes(2000, seed + 100));
        EXPECT_NE(0u, check_->findings_in_list());
        Doubles();
    }
}

}  // namespace
}  // namespace tolvenar
