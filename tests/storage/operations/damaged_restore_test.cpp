// Restores from a storage that is damaged: what the user has stays, what is whole and missing comes
// back, and the user is told.
#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

constexpr wchar_t kOldList[] = L"\\Storage Card\\Backup\\Home.jrn_old";

// Answers a restore's questions and keeps what was asked.
class Answers final : public RestoreQuestions {
public:
    bool MayWriteBackMissing(const DamageCount& damage) override {
        asked.push_back("missing " + std::to_string(damage.in_list) + " " +
                        std::to_string(damage.objects));
        return yes;
    }
    bool MayTakeOlderList(std::uint32_t states) override {
        asked.push_back("older " + std::to_string(states));
        return takes_older;
    }
    bool MayGoOnWithoutRoom(std::uint64_t missing_bytes) override {
        asked.push_back("room " + std::to_string(missing_bytes));
        return yes;
    }
    Lines asked;
    bool yes = false;
    bool takes_older = false;
};

class DamagedRestoreTest : public RestoreEngineTest {
protected:
    // A state with a file, a value and a record. Since then all of them changed, one file is gone
    // and another is new.
    void BackUpAndChange() {
        device().PutFile(L"\\a.txt", "stored");
        device().PutFile(L"\\gone.txt", "was there");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
        MakeDatabase(L"People");
        ann_ = AddRecord(L"People", L"Ann", 1);
        ASSERT_EQ(Done(), Backup(1));
        Change();
    }
    void Change() {
        device().PutFile(L"\\a.txt", "changed");
        device().Remove(L"\\gone.txt");
        device().PutFile(L"\\new.txt", "new");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(2));
        SetValue(HKEY_CURRENT_USER, L"Key", L"new", REG_DWORD, Word(3));
        WriteRecord(L"People", ann_, {{kName, 0, L"Anna"}});
        AddRecord(L"People", L"Bob", 2);
    }
    void ExpectOnlyWhatWasGoneCameBack() {
        EXPECT_EQ("changed", Content(u"\\a.txt"));
        EXPECT_EQ("was there", Content(u"\\gone.txt"));
        ExpectTheRestAsItWas();
    }
    void ExpectTheRestAsItWas() {
        EXPECT_EQ("new", Content(u"\\new.txt"));
        EXPECT_EQ("4:" + Word(2), Value(HKEY_CURRENT_USER, L"Key", L"v"));
        EXPECT_EQ("4:" + Word(3), Value(HKEY_CURRENT_USER, L"Key", L"new"));
        EXPECT_EQ((Lines{"Anna=1", "Bob=2"}), Records(u"People"));
    }
    void PutJournal(const Bytes& bytes) {
        Put(kJournal, bytes);
        Reopen();
    }
    void Reopen() {
        CloseStorage(storage_);
        ASSERT_TRUE(Open());
    }
    void CutJournal() {
        const Bytes journal = Content(kJournal);
        PutJournal(journal.substr(0, journal.size() - 1));
    }
    // Flips a bit `behind` bytes behind the first place of `text` in the storage file.
    void DamageSav(const Bytes& text, std::size_t behind) {
        Bytes sav = Content(kSav);
        const std::size_t place = sav.find(text);
        ASSERT_NE(Bytes::npos, place);
        sav[place + behind] ^= 1;
        Put(kSav, sav);
        Reopen();
    }

    CEOID ann_ = 0;
    Answers answers_;
};

TEST_F(DamagedRestoreTest, OfADamagedListNothingIsDeletedOrOverwrittenAndWhatIsMissingComesBack) {
    BackUpAndChange();
    CutJournal();
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(restore_.is_damaged);
    ExpectOnlyWhatWasGoneCameBack();
    EXPECT_TRUE(LogHas("List damaged"));
    EXPECT_TRUE(LogHas("Not restored, left alone for the damage: \\a.txt"));
    EXPECT_TRUE(LogHas("Not restored, left alone for the damage: \\new.txt"));
}

TEST_F(DamagedRestoreTest, ADamagedListIsNotSavedAgain) {
    BackUpAndChange();
    CutJournal();
    const Bytes journal = Content(kJournal);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ(journal, Content(kJournal));
}

TEST_F(DamagedRestoreTest, NoChangesNothingAndKeepsTheListForLater) {
    BackUpAndChange();
    CutJournal();
    questions_ = &answers_;
    const auto before = Now();
    EXPECT_EQ(Failed(), Restore(1));
    EXPECT_FALSE(restore_.is_damaged);
    EXPECT_EQ(1u, answers_.asked.size());
    EXPECT_EQ(Lines(), tests::Differences(before, Now()));
    ASSERT_NE(nullptr, storage_.difference);
    answers_.yes = true;
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreAdvanced(true));
    ExpectOnlyWhatWasGoneCameBack();
}

TEST_F(DamagedRestoreTest, TheQuestionTellsHowMuchIsDamaged) {
    BackUpAndChange();
    CutJournal();
    questions_ = &answers_;
    Restore(1);
    ASSERT_EQ(1u, answers_.asked.size());
    EXPECT_EQ(0u, answers_.asked[0].find("missing ")) << answers_.asked[0];
    EXPECT_NE("missing 0 0", answers_.asked[0]);
}

TEST_F(DamagedRestoreTest, ASoundStorageAsksNothing) {
    BackUpAndChange();
    questions_ = &answers_;
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_TRUE(answers_.asked.empty());
    EXPECT_EQ("stored", Content(u"\\a.txt"));
}

TEST_F(DamagedRestoreTest, ADamagedNameOfWhatIsToComeBackTakesNothing) {
    BackUpAndChange();
    DamageSav(Units(u"\\gone.txt"), 4);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(restore_.is_damaged);
    EXPECT_EQ("changed", Content(u"\\a.txt"));
    EXPECT_FALSE(Exists(u"\\gone.txt"));
    ExpectTheRestAsItWas();
    EXPECT_TRUE(LogHas("Block damaged"));
}

TEST_F(DamagedRestoreTest, ADamagedNameOfWhatIsNotWrittenChangesNothingOfTheRestore) {
    device().PutFile(L"\\same.txt", "same");
    BackUpAndChange();
    DamageSav(Units(u"\\same.txt"), 4);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("stored", Content(u"\\a.txt"));
    EXPECT_EQ("same", Content(u"\\same.txt"));
    EXPECT_FALSE(Exists(u"\\new.txt"));
    EXPECT_TRUE(LogHas("Block damaged"));
}

TEST_F(DamagedRestoreTest, OfADamagedFileTheNewerVersionStaysAndTheRestComesBack) {
    BackUpAndChange();
    DamageSav("stored", 2);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(restore_.is_damaged);
    EXPECT_EQ("changed", Content(u"\\a.txt"));
    EXPECT_EQ("was there", Content(u"\\gone.txt"));
    EXPECT_FALSE(Exists(u"\\new.txt"));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
    EXPECT_TRUE(LogHas("Damaged in the storage, left alone: \\a.txt"));
    EXPECT_TRUE(LogHas("Not restored, damaged in the storage: \\a.txt"));
}

TEST_F(DamagedRestoreTest, ADamagedFileThatIsMissingStaysMissing) {
    BackUpAndChange();
    DamageSav("was there", 0);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_FALSE(Exists(u"\\gone.txt"));
    EXPECT_EQ("stored", Content(u"\\a.txt"));
}

TEST_F(DamagedRestoreTest, OfADamagedValueTheNewerDataStayAndItsKeyToo) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_SZ, Terminated(u"stored text"));
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_SZ, Terminated(u"newer text"));
    device().PutFile(L"\\new.txt", "new");
    DamageSav(Units(u"stored text"), 3);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("1:" + Terminated(u"newer text"), Value(HKEY_CURRENT_USER, L"Key", L"v"));
    EXPECT_FALSE(Exists(u"\\new.txt"));
    EXPECT_TRUE(LogHas("Damaged in the storage, left alone: HKCU\\Key\\v"));
}

TEST_F(DamagedRestoreTest, OfADamagedRecordTheNewerVersionStays) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann Stored", 1);
    ASSERT_EQ(Done(), Backup(1));
    WriteRecord(L"People", ann, {{kName, 0, L"Anna"}});
    DamageSav(Units(u"Ann Stored"), 2);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ((Lines{"Anna=1"}), Records(u"People"));
}

TEST_F(DamagedRestoreTest, WhatCameBackIsNotAskedForAgain) {
    BackUpAndChange();
    DamageSav("stored", 2);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    // "\\a.txt" is what is left.
    ASSERT_NE(nullptr, storage_.difference);
    EXPECT_EQ(2u, storage_.difference->CountRecords());
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD, JF_DELETE}), DifferenceFlags());
}

// The record of the last object of a backup is lost: nobody can tell whether it failed then.
class LostRecordTest : public DamagedRestoreTest {
protected:
    // "\\only.txt" changed or came between the two states. The record of what the second state
    // stored of it is lost.
    void LoseTheRecordOfState2() {
        ASSERT_EQ(Done(), Backup(2));
        Bytes journal = Content(kJournal);
        std::size_t lost = Bytes::npos;
        std::uint32_t highest = 0;
        for (std::size_t at = 0; at < journal.size(); at += 32) {
            ObjectRecord record{};
            std::memcpy(&record, journal.data() + at, sizeof record);
            if (record.type == kFile && record.flags == JF_ADD && record.propOffset > highest) {
                highest = record.propOffset;
                lost = at;
            }
        }
        journal.erase(lost, 32);
        PutJournal(journal);
    }
};

TEST_F(LostRecordTest, WhatItMayBeOfIsLeftAlone) {
    device().PutFile(L"\\only.txt", "one");
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\only.txt", "another");
    LoseTheRecordOfState2();
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    EXPECT_EQ("another", Content(u"\\only.txt"));
    EXPECT_TRUE(LogHas("Its newest version may be lost, left alone: \\only.txt"));
}

// On a device without it nothing is there to be left alone, and the state had it perhaps.
TEST_F(LostRecordTest, WhatItMayBeOfIsToldWhereItIsMissing) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\only.txt", "one");
    LoseTheRecordOfState2();
    device().Remove(L"\\only.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    EXPECT_TRUE(restore_.is_damaged);
    EXPECT_TRUE(LogHas("Its record in the list may be lost: \\only.txt"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1)) << "it is nothing to the first state";
}

// A deletion whose record is lost leaves the older version in the state.
TEST_F(DamagedRestoreTest, OfTwoVersionsOfOneFileTheNewerHolds) {
    // Of two times that come as they like the checksums may be one, and the versions with them.
    device().PutFile(L"\\a.txt", "one");
    device().Touch(L"\\a.txt", 0x01C0FFEE12345680);
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "another");
    device().Touch(L"\\a.txt", 0x01C0FFEE12345690);
    ASSERT_EQ(Done(), Backup(2));
    Bytes journal = Content(kJournal);
    for (std::size_t at = 0; at < journal.size(); at += 32) {
        if (journal[at + 22] == JF_DELETE) {
            journal.erase(at, 32);
            break;
        }
    }
    PutJournal(journal);
    device().Remove(L"\\a.txt");
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("another", Content(u"\\a.txt"));
    EXPECT_TRUE(LogHas("Two versions, the older one left alone: \\a.txt"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(2));
}

// The stored name of "\\b.txt" reads "\\c.txt".
TEST_F(DamagedRestoreTest, NothingIsDeletedByADamagedName) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\b.txt", "in two");
    ASSERT_EQ(Done(), Backup(2));
    device().PutFile(L"\\c.txt", "precious");
    DamageSav(Units(u"\\b.txt"), 2);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(ResultCode::kFailed), RestoreAdvanced(false));
    EXPECT_TRUE(restore_.is_damaged);
    EXPECT_EQ("precious", Content(u"\\c.txt"));
    EXPECT_EQ("in two", Content(u"\\b.txt"));
    EXPECT_TRUE(LogHas("Its name is damaged, left alone: "));
}

class OlderListTest : public DamagedRestoreTest {
protected:
    // The list of one state was moved aside; that of two states is damaged.
    void MakeOlderList() {
        BackUpAndChange();
        first_ = Content(kJournal);
        ASSERT_EQ(Done(), Backup(2));
        Put(Utf16(kOldList), first_);
        CutJournal();
        damaged_ = Content(kJournal);
        questions_ = &answers_;
    }
    Bytes first_;
    Bytes damaged_;
};

TEST_F(OlderListTest, AWholeOlderListIsOfferedFirstAndTaken) {
    MakeOlderList();
    answers_.takes_older = true;
    const auto before = Now();
    EXPECT_EQ(Done(ResultCode::kNotStarted), Restore(1));
    EXPECT_TRUE(restore_.took_older_list);
    EXPECT_EQ((Lines{"older 1"}), answers_.asked);
    EXPECT_EQ(Lines(), tests::Differences(before, Now()));
    EXPECT_EQ(first_, Content(kJournal));
    EXPECT_EQ(damaged_, Content(Utf16(kOldList)));
    EXPECT_EQ(1u, HighestStateNumber(storage_.journal.get()));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("stored", Content(u"\\a.txt"));
}

TEST_F(OlderListTest, ARefusedOlderListLeavesTheOtherQuestion) {
    MakeOlderList();
    answers_.yes = true;
    device().Remove(L"\\a.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    EXPECT_EQ(2u, answers_.asked.size());
    EXPECT_EQ("changed", Content(u"\\a.txt"));
    EXPECT_EQ(damaged_, Content(kJournal));
}

TEST_F(OlderListTest, ADamagedOlderListIsNotOffered) {
    MakeOlderList();
    Put(Utf16(kOldList), first_.substr(5));
    EXPECT_EQ(Failed(), Restore(1));
    ASSERT_EQ(1u, answers_.asked.size());
    EXPECT_EQ(0u, answers_.asked[0].find("missing "));
}

TEST_F(OlderListTest, AListThatCannotBeMovedStaysInUse) {
    MakeOlderList();
    answers_.takes_older = true;
    device().Fault("MoveFileW", 2, 1, ERROR_WRITE_FAULT);
    EXPECT_EQ(Failed(ResultCode::kNotStarted), Restore(1));
    EXPECT_FALSE(restore_.took_older_list);
    EXPECT_EQ(damaged_, Content(kJournal));
    EXPECT_EQ(first_, Content(Utf16(kOldList)));
}

TEST_F(OlderListTest, NobodyIsAskedInAnUnattendedRestore) {
    MakeOlderList();
    questions_ = nullptr;
    device().Remove(L"\\a.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(2));
    EXPECT_EQ("changed", Content(u"\\a.txt"));
    EXPECT_EQ(damaged_, Content(kJournal));
}

}  // namespace
}  // namespace tolvenar
