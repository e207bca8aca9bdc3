// What a restore would change, found out without a change.
#include "storage/operations/restore_preview.h"

#include <map>

#include "app/settings/own_values.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/engine/descriptions.h"
#include "snapshot/engine/difference_engine.h"
#include "snapshot/records/checksum.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class RestorePreviewTest : public RestoreEngineTest {
protected:
    void SetUp() override {
        RestoreEngineTest::SetUp();
        device().PutFile(L"\\a.txt", "first");
        device().Touch(L"\\a.txt", kSomeTime);
        device().PutFile(L"\\gone.txt", "first");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
        MakeDatabase(L"People");
        ann_ = AddRecord(L"People", L"Ann", 1);
        ASSERT_EQ(Done(), Backup(1));
    }
    // One of each kind is changed, one gone, some are new.
    void ChangeDevice() {
        device().PutFile(L"\\a.txt", "second, longer");
        device().Remove(L"\\gone.txt");
        device().PutFile(L"\\new.txt", "new");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(2));
        SetValue(HKEY_CURRENT_USER, L"New\\Sub", L"v", REG_DWORD, Word(3));
        WriteRecord(L"People", ann_, {{kName, 0, L"Anna"}});
        AddRecord(L"People", L"Bob", 2);
    }
    bool Preview(std::uint32_t state = 1) { return preview_.Find(storage_, state); }
    const PreviewFigures& Figures() { return preview_.figures(); }
    void ExpectCounts(std::uint32_t added, std::uint32_t changed, std::uint32_t deleted) {
        EXPECT_EQ(added, Figures().counts.added);
        EXPECT_EQ(changed, Figures().counts.changed);
        EXPECT_EQ(deleted, Figures().counts.deleted);
    }
    // The flags of the files' records by their names.
    std::map<Text, int> Files() {
        std::map<Text, int> files;
        Descriptions descriptions(preview_.engine());
        for (const ObjectList::Node& node : *preview_.engine().storage.difference) {
            InfoBlock block;
            if (node.record->type == kFile && FetchInfo(*node.record, descriptions.source, block)) {
                files[block.name()] |= node.record->flags;
            }
        }
        return files;
    }
    std::string Dump() { return device().Command("dump"); }

    CEOID ann_ = 0;
    RestorePreview preview_{databases_, progress_};
};

TEST_F(RestorePreviewTest, WhatIsNewOnTheDeviceStandsAsDeletedAndWhatIsGoneAsAdded) {
    ChangeDevice();
    ASSERT_TRUE(Preview());
    EXPECT_EQ(
        (std::map<Text, int>{
            {u"\\a.txt", JF_ADD | JF_DELETE}, {u"\\gone.txt", JF_ADD}, {u"\\new.txt", JF_DELETE}}),
        Files());
    // Bob, the new file, two keys and a value.
    ExpectCounts(1, 3, 5);
    EXPECT_EQ(1u, preview_.state_number());
}

TEST_F(RestorePreviewTest, TheCountsAreWhatARestoreThenDoes) {
    ChangeDevice();
    ASSERT_TRUE(Preview());
    const SavedCounts counts = Figures().counts;
    const tests::Contents before = Now();
    ASSERT_EQ(Done(), Restore(1));
    std::uint32_t gained = 0;
    std::uint32_t lost = 0;
    for (const std::string& line : tests::Differences(before, Now())) {
        ++(line[0] == '+' ? gained : lost);
    }
    EXPECT_EQ(gained, counts.added + counts.changed);
    EXPECT_EQ(lost, counts.deleted + counts.changed);
    ASSERT_TRUE(Preview());
    ExpectCounts(0, 0, 0);
}

TEST_F(RestorePreviewTest, NothingChangesAndNothingIsLogged) {
    ChangeDevice();
    const std::string before = Dump();
    ASSERT_TRUE(Preview());
    EXPECT_EQ(before, Dump());
}

TEST_F(RestorePreviewTest, AnEqualDeviceWouldNotBeChanged) {
    ASSERT_TRUE(Preview());
    ExpectCounts(0, 0, 0);
    EXPECT_EQ(0u, preview_.engine().storage.difference->CountRecords());
    EXPECT_EQ(0u, Figures().written_bytes);
}

// Size, time and attributes are the same: the list of differences has one record for both versions.
TEST_F(RestorePreviewTest, AFileOfWhichTheContentsAloneChangedIsChanged) {
    const auto before = device().Info(L"\\a.txt");
    device().PutFile(L"\\a.txt", "other");
    device().Touch(L"\\a.txt", before.modified);
    ASSERT_TRUE(Preview());
    ExpectCounts(0, 1, 0);
    EXPECT_EQ((std::map<Text, int>{{u"\\a.txt", JF_ADD | JF_DELETE}}), Files());
}

TEST_F(RestorePreviewTest, TheComparedStatesAndTheirRegistryObjectsStay) {
    ChangeDevice();
    ASSERT_EQ(Done(), Backup(2));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(9));
    ASSERT_EQ(1, FindDifference(engine_, 1));
    const ObjectList* const list = storage_.difference.get();
    const std::size_t count = list->CountRecords();
    const ObjectList* const journal = storage_.journal.get();
    ASSERT_TRUE(Preview(2));
    ExpectCounts(0, 1, 0);
    EXPECT_EQ(list, storage_.difference.get());
    EXPECT_EQ(count, list->CountRecords());
    EXPECT_EQ(journal, storage_.journal.get());
    EXPECT_NE(nullptr, storage_.header);
    EXPECT_EQ(1u, storage_.aimed_state);
    for (const ObjectList::Node& node : *list) {
        InfoBlock block;
        EXPECT_TRUE(node.record->propOffset != 0 ||
                    info_.GetOIDInfo(node.record->TolvOID, node.record->dwOID, block));
    }
}

TEST_F(RestorePreviewTest, TheProgramsOwnValuesAreNotInIt) {
    WriteSetting(own_value::kSuspendedOnTime, 5);
    ASSERT_TRUE(Preview());
    ExpectCounts(0, 0, 0);
}

// A reset gave the file another id.
TEST_F(RestorePreviewTest, WhatIsThereUnderAnotherIdIsNotInItAndTheJournalKeepsItsIds) {
    const CEOID stored = OidOfPath(L"\\a.txt");
    device().Remove(L"\\a.txt");
    device().Set("oid.next", "5000");
    device().PutFile(L"\\a.txt", "first");
    device().Touch(L"\\a.txt", kSomeTime);
    ASSERT_NE(stored, OidOfPath(L"\\a.txt"));
    ASSERT_TRUE(Preview());
    ExpectCounts(0, 0, 0);
    EXPECT_NE(nullptr, JournalRecord(1, stored, kFile));
}

TEST_F(RestorePreviewTest, WhatARestoreLeavesAloneIsCountedApart) {
    ResetDevice();
    sav_ = Content(kSav).substr(0, 236);
    ObjectRecord state = StoreBlock(kState, 0, 0, u"Title", "");
    state.data_offset = static_cast<std::uint32_t>(sav_.size());
    ObjectRecord on_card = StoreFile(u"\\Storage Card\\b.txt", "b");
    on_card.content_fingerprint = Checksum16("b", 1);
    SaveStorage();
    SaveJournal({state, on_card});
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    ASSERT_TRUE(Preview());
    EXPECT_EQ(1u, Figures().left_alone);
    EXPECT_FALSE(Figures().is_damaged);
    EXPECT_EQ(0u, Figures().counts.added);
    EXPECT_TRUE(Files().empty());
    EXPECT_EQ("", Bytes(LogLines().empty() ? "" : LogLines().back()));
}

TEST_F(RestorePreviewTest, WhatIsDamagedInTheStorageIsLeftAloneToo) {
    device().PutFile(L"\\b.txt", "damaged later");
    ASSERT_EQ(Done(), Backup(2));
    device().Remove(L"\\b.txt");
    Bytes sav = Content(kSav);
    sav[sav.find("damaged later")] = 'D';
    Put(kSav, sav);
    ASSERT_TRUE(Preview(2));
    EXPECT_TRUE(Figures().is_damaged);
    EXPECT_EQ(1u, Figures().left_alone);
    ExpectCounts(0, 0, 0);
}

TEST_F(RestorePreviewTest, TheRoomIsThatOfWhatIsWrittenBack) {
    device().PutFile(L"\\big.txt", Bytes(300000, 'b'));
    ASSERT_EQ(Done(), Backup(2));
    device().Remove(L"\\big.txt");
    ASSERT_TRUE(Preview(2));
    EXPECT_EQ(300000u, Figures().written_bytes);
    EXPECT_EQ(0u, Figures().missing_bytes);
    device().Set("store.free", "100000");
    device().Set("memory.free", "100000");
    ASSERT_TRUE(Preview(2));
    EXPECT_EQ(300000u, Figures().written_bytes);
    EXPECT_LT(0u, Figures().missing_bytes);
}

TEST_F(RestorePreviewTest, OfAStateThatIsNoneThereIsNoPreview) {
    EXPECT_FALSE(Preview(7));
    EXPECT_EQ(0u, preview_.state_number());
    EXPECT_EQ(nullptr, preview_.engine().storage.difference);
    EXPECT_NE(nullptr, storage_.journal);
}

TEST_F(RestorePreviewTest, WithoutTheStorageFileThereIsNoPreviewAndTheJournalStays) {
    {
        const auto lock = device().Lock(Wide(kSav));
        EXPECT_FALSE(Preview());
    }
    EXPECT_NE(nullptr, storage_.journal);
    EXPECT_TRUE(Preview());
}

}  // namespace
}  // namespace tolvenar
