// What a restore leaves alone, settles and keeps although its list names it.
#include "snapshot/engine/difference_engine.h"
#include "snapshot/records/checksum.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class RestorePlanTest : public RestoreEngineTest {
protected:
    // A sound storage of one state with what was stored by hand, behind its own block.
    void BeginState() {
        sav_ = Content(kSav);
        ObjectRecord state = StoreBlock(kState, 0, 0, u"Title", "");
        state.data_offset = static_cast<std::uint32_t>(sav_.size());
        journal_.assign(1, state);
    }
    void Enter(ObjectRecord record, const Bytes& data) {
        if (record.type == kFile && (record.data_offset != kNoData || data.empty())) {
            record.content_fingerprint = Checksum16(data.data(), data.size());
        }
        journal_.push_back(record);
    }
    void SaveState() {
        SaveStorage();
        SaveJournal(journal_);
        ASSERT_TRUE(OpenJournal(storage_, nullptr));
    }
    void EnterKey(const Text& path) {
        ObjectRecord key = StoreKey(HKEY_CURRENT_USER, path);
        key.TolvOID = MakeKeyTolvOID(0x80000001, path);
        journal_.push_back(key);
    }

    std::vector<ObjectRecord> journal_;
};

TEST_F(RestorePlanTest, AnOldStatesCopyOfTheStoragesFilesIsLeftAlone) {
    BeginState();
    Enter(StoreFile(u"\\Old\\HOME.sav", "old storage"), "old storage");
    Enter(StoreFile(u"\\a.txt", "x"), "x");
    SaveState();
    device().PutFile(L"\\Old\\Home.sav", "precious");
    device().Remove(L"\\Old\\Home.sav");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_FALSE(Exists(u"\\Old\\HOME.sav"));
    EXPECT_EQ("x", Content(u"\\a.txt"));
    EXPECT_TRUE(LogHas("The storage's own, left alone: \\Old\\HOME.sav"));
}

TEST_F(RestorePlanTest, ThatAloneIsNothingToRestore) {
    ASSERT_EQ(Done(), Backup(1));
    BeginState();
    // Behind what the first state has.
    journal_[0].state_number = 2;
    ObjectRecord own = StoreFile(u"\\Old\\Home.jrn", "old list");
    own.state_number = 2;
    Enter(own, "old list");
    const Bytes first = Content(kJournal);
    SaveStorage();
    Bytes bytes;
    for (const ObjectRecord& record : journal_) {
        bytes += BytesOf(record);
    }
    Put(kJournal, bytes + first);
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(2));
}

TEST_F(RestorePlanTest, WhatWouldLandOnACardIsLeftAloneAndTheRestComesBack) {
    BeginState();
    Enter(StoreFile(u"\\Storage Card\\a.txt", "on the card"), "on the card");
    Enter(StoreFile(u"\\b.txt", "x"), "x");
    SaveState();
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_FALSE(restore_.is_damaged);
    EXPECT_FALSE(Exists(u"\\Storage Card\\a.txt"));
    EXPECT_EQ("x", Content(u"\\b.txt"));
    EXPECT_TRUE(LogHas("On a card now, left alone: \\Storage Card\\a.txt"));
    EXPECT_EQ(FailureReason::kOnCard, storage_.failures.Of(*storage_.difference->First()->record));
}

TEST_F(RestorePlanTest, APathThatHoldsAZeroIsDamage) {
    BeginState();
    Enter(StoreFile(Text(u"\\a\0b.txt", 8), "x"), "x");
    Enter(StoreFile(u"\\c.txt", "y"), "y");
    SaveState();
    device().PutFile(L"\\a", "precious");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(restore_.is_damaged);
    EXPECT_EQ("precious", Content(u"\\a"));
    EXPECT_EQ("y", Content(u"\\c.txt"));
}

TEST_F(RestorePlanTest, AKeyBelowWhichTheStateHasSomethingStays) {
    BeginState();
    EnterKey(u"Key\\Sub");
    SaveState();
    device().Command("reg-set HKCU\\Key\\Sub Since REG_DWORD 1");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key\\Sub", L"Since"));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Key\\Sub"));
    EXPECT_TRUE(LogHas("Kept, something stays below it: HKCU\\Key"));
}

TEST_F(RestorePlanTest, AKeyThatTheStateDoesNotHoldGoesWithWhatIsBelowIt) {
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"New\\Sub", L"v", REG_DWORD, Word(1));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"New"));
}

TEST_F(RestorePlanTest, TheChangesOfTwoStatesKeepAKeyInWhichSomethingNewIs) {
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key\\Sub", L"v", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(2));
    SetValue(HKEY_CURRENT_USER, L"Key\\Sub", L"since", REG_DWORD, Word(2));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ("", Value(HKEY_CURRENT_USER, L"Key\\Sub", L"v"));
    EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"Key\\Sub", L"since"));
    EXPECT_TRUE(LogHas("Kept, something stays below it: HKCU\\Key"));
}

TEST_F(RestorePlanTest, TheChangesOfTwoStatesDeleteAKeyWithNothingNewInIt) {
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key\\Sub", L"v", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(2));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Key"));
}

TEST_F(RestorePlanTest, AStateThatIsNoneIsNotRestored) {
    device().PutFile(L"\\a.txt", "precious");
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Restore(1));
    ASSERT_EQ(Done(), Backup(1));
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Restore(2));
    EXPECT_EQ("precious", Content(u"\\a.txt"));
}

TEST_F(RestorePlanTest, WhatIsInUseIsNamedInTheLog) {
    RestoreTwoFilesOfWhichOneIsReadOnly();
    EXPECT_FALSE(restore_.is_damaged);
    EXPECT_TRUE(LogHas("Not restored, write-protected or in use: \\a.txt"));
}

// The key's phase would end at its first pass.
TEST_F(RestorePlanTest, AHeldFileDoesNotKeepTheOtherPhasesFromGoingOn) {
    device().PutFile(L"\\Sub\\a.txt", "x");
    SetValue(HKEY_CURRENT_USER, L"Key\\Deep", L"v", REG_DWORD, Word(1));
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    device().Remove(L"\\Sub");
    device().Command("reg-delete HKCU\\Key");
    device().Command("db-delete People");
    device().PutFile(L"\\held.txt", "held");
    device().Fault("DeleteFileW", 1, 1000, ERROR_ACCESS_DENIED, "held.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_EQ("x", Content(u"\\Sub\\a.txt"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key\\Deep", L"v"));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
    EXPECT_EQ(1u, storage_.difference->CountRecords());
}

class RoomTest : public RestorePlanTest {
protected:
    // A file of 400,000 bytes is to come back to a device with four granules.
    void LeaveTooLittleRoom() {
        device().PutFile(L"\\small.txt", "one");
        device().PutFile(L"\\large.bin", RandomBytes(400000, 1));
        ASSERT_EQ(Done(), Backup(1));
        device().Remove(L"\\large.bin");
        device().PutFile(L"\\small.txt", "two");
        device().Set("memory.free", "150000");
        device().Set("store.free", "150000");
    }
    struct Answer final : RestoreQuestions {
        bool MayWriteBackMissing(const DamageCount&) override { return false; }
        bool MayTakeOlderList(std::uint32_t) override { return false; }
        bool MayGoOnWithoutRoom(std::uint64_t missing) override {
            missing_bytes = missing;
            return yes;
        }
        std::uint64_t missing_bytes = 0;
        bool yes = false;
    };
};

TEST_F(RoomTest, WithoutRoomForEverythingNothingIsTouched) {
    LeaveTooLittleRoom();
    EXPECT_EQ(Failed(), Restore(1));
    EXPECT_EQ("two", Content(u"\\small.txt"));
    EXPECT_TRUE(LogHas("The device lacks "));
    EXPECT_FALSE(restore_.is_damaged);
    EXPECT_EQ(400003u - 4 * 0x10000, restore_.missing_bytes);
}

// What was settled before the question has its new ids in the journal in memory.
TEST_F(RoomTest, AfterANoTheNextBackupFindsWhatWasSettledUnchanged) {
    device().PutFile(L"\\same.txt", "same");
    device().Touch(L"\\same.txt", kSomeTime);
    LeaveTooLittleRoom();
    device().Remove(L"\\same.txt");
    device().PutFile(L"\\same.txt", "same");
    device().Touch(L"\\same.txt", kSomeTime);
    EXPECT_EQ(Failed(), Restore(1));
    EXPECT_EQ(Done(), Backup(2));
    EXPECT_EQ(0u, FindingsInPair());
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_FALSE(record.state_number == 2 && record.dwOID == OidOfPath(L"\\same.txt"));
    }
}

TEST_F(RoomTest, TheUserMayGoOn) {
    LeaveTooLittleRoom();
    Answer answer;
    questions_ = &answer;
    EXPECT_EQ(Failed(), Restore(1));
    EXPECT_EQ("two", Content(u"\\small.txt"));
    EXPECT_EQ(400003u - 4 * 0x10000, answer.missing_bytes);
    answer.yes = true;
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("one", Content(u"\\small.txt"));
}

TEST_F(RoomTest, WhatIsDeletedAndOverwrittenMakesRoom) {
    const Bytes stored = RandomBytes(300000, 1);
    device().PutFile(L"\\a.bin", stored);
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.bin", RandomBytes(200000, 2));
    device().PutFile(L"\\new.bin", RandomBytes(50000, 3));
    device().Set("memory.free", "90000");
    device().Set("store.free", "140000");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_TRUE(stored == Content(u"\\a.bin"));
}

}  // namespace
}  // namespace tolvenar
