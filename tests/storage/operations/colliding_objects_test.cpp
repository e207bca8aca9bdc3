// Backups and restores of registries whose objects share checksums.
#include <random>

#include "snapshot/engine/difference_engine.h"
#include "snapshot/records/checksum.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

// Texts with one checksum, so that keys and values that are called so have one identifier.
const std::wstring kTexts[] = {L"exbb", L"tqqc", L"aaad"};
// Numbers whose checksums differ and have one low byte: the identifier shows no change.
constexpr std::uint32_t kNumbers[] = {1, 300, 603};

class CollidingObjectsTest : public RestoreEngineTest {
protected:
    static void SetNumber(const std::wstring& name, std::uint32_t number) {
        SetValue(HKEY_CURRENT_USER, L"Key", name, REG_DWORD, Word(number));
    }
    static Bytes Number(const std::wstring& name) { return Value(HKEY_CURRENT_USER, L"Key", name); }
    static void DeleteNumber(const std::wstring& name) {
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(HKEY_CURRENT_USER, L"Key", 0, 0, &key));
        ::RegDeleteValueW(key, name.c_str());
        ::RegCloseKey(key);
    }
    static void MakeKey(const std::wstring& path) {
        SetValue(HKEY_CURRENT_USER, path, L"v", REG_DWORD, Word(1));
    }
    // Restores a state and sees that the device is as it was then.
    void ExpectRestored(std::uint32_t state, const tests::Contents& then) {
        const Answer answer = Restore(state);
        EXPECT_TRUE(answer == Done() || answer == Done(ResultCode::kNoDifference)) << state;
        EXPECT_EQ(std::vector<std::string>{}, tests::Differences(then, Now())) << state;
        EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(state)) << state;
    }
};

TEST_F(CollidingObjectsTest, AKeyAndAValueThatTakeTheIdentifiersOfDeletedOnesAreStored) {
    MakeKey(kTexts[0]);
    SetNumber(kTexts[0], 1);
    const tests::Contents first = Now();
    ASSERT_EQ(Done(), Backup(1));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, kTexts[0].c_str());
    DeleteNumber(kTexts[0]);
    MakeKey(kTexts[1]);
    SetNumber(kTexts[1], 1);
    const tests::Contents second = Now();
    ASSERT_EQ(Done(), Backup(2));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
    ExpectRestored(1, first);
    ExpectRestored(2, second);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
}

TEST_F(CollidingObjectsTest, RegistriesOfSuchObjectsComeBackFromEveryState) {
    std::mt19937 random(8);
    MakeKey(L"Key");
    std::vector<tests::Contents> states;
    for (std::uint32_t state = 1; state <= 6; ++state) {
        for (const std::wstring& text : kTexts) {
            ::RegDeleteKeyW(HKEY_CURRENT_USER, text.c_str());
            if (random() % 2 == 0) {
                MakeKey(text);
            }
            if (random() % 3 == 0) {
                DeleteNumber(text);
            } else {
                SetNumber(text, kNumbers[random() % 3]);
            }
        }
        states.push_back(Now());
        ASSERT_EQ(Done(), Backup(state));
        ASSERT_EQ(Done(ResultCode::kNoDifference), Backup(state + 1));
    }
    for (std::uint32_t i = 0; i < 12; ++i) {
        const std::uint32_t state = 1 + i * 5 % 6;
        ExpectRestored(state, states[state - 1]);
    }
    ExpectRestored(6, states[5]);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(7));
}

TEST_F(CollidingObjectsTest, AChangeThatTheIdentifierDoesNotShowIsStored) {
    SetNumber(L"v", kNumbers[0]);
    ASSERT_EQ(Done(), Backup(1));
    SetNumber(L"v", kNumbers[1]);
    ASSERT_EQ(Done(), Backup(2));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("4:" + Word(kNumbers[0]), Number(L"v"));
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("4:" + Word(kNumbers[1]), Number(L"v"));
    // The differences of the two states show it too.
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ("4:" + Word(kNumbers[0]), Number(L"v"));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("4:" + Word(kNumbers[1]), Number(L"v"));
}

TEST_F(CollidingObjectsTest, AChangeOfTheTypeAloneIsStored) {
    SetNumber(L"v", 1);
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_BINARY, Word(1));
    ASSERT_EQ(Done(), Backup(2));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("4:" + Word(1), Number(L"v"));
}

// It is written over; deleted first, it would be gone.
TEST_F(CollidingObjectsTest, AValueThatCannotBeWrittenBackKeepsItsNewData) {
    SetNumber(L"v", kNumbers[0]);
    ASSERT_EQ(Done(), Backup(1));
    SetNumber(L"v", kNumbers[1]);
    device().Fault("RegSetValueExW", 1, 1000, ERROR_DISK_FULL);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_EQ("4:" + Word(kNumbers[1]), Number(L"v"));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ("4:" + Word(kNumbers[0]), Number(L"v"));
}

TEST_F(CollidingObjectsTest, AChangeThatTheIdentifierDoesNotShowIsPrunedLikeAnyOther) {
    SetValue(HKEY_CURRENT_USER, L"Software\\Kestrin", L"LQN", REG_DWORD, Word(kNumbers[0]));
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Software\\Kestrin", L"LQN", REG_DWORD, Word(kNumbers[1]));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

TEST_F(CollidingObjectsTest, NamesWithTheSeparatorComeBackAsTheyWere) {
    MakeKey(L"Key");
    SetValue(HKEY_CURRENT_USER, L"Key\u00FFa", L"v\u00FFw", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"Key\u00FFa", L"v", REG_DWORD, Word(2));
    SetValue(HKEY_CURRENT_USER, L"Key", L"x\u00FFy\u00FFz", REG_DWORD, Word(3));
    const tests::Contents then = Now();
    ASSERT_EQ(Done(), Backup(1));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key\u00FFa");
    DeleteNumber(L"x\u00FFy\u00FFz");
    ExpectRestored(1, then);
    // The changes of two states go to the same places.
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key\u00FFa");
    const tests::Contents without = Now();
    ASSERT_EQ(Done(), Backup(2));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_TRUE(RestoreAdvanced(false).done);
    EXPECT_EQ(std::vector<std::string>{}, tests::Differences(then, Now()));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_TRUE(RestoreAdvanced(true).done);
    EXPECT_EQ(std::vector<std::string>{}, tests::Differences(without, Now()));
}

// A damaged block: the device's value is stored anew under an identifier of its own.
TEST_F(CollidingObjectsTest, AValueWhoseBlockIsDamagedIsInTheNextState) {
    SetNumber(L"v", 1);
    ASSERT_EQ(Done(), Backup(1));
    Bytes sav = Content(kSav);
    const Bytes block = Block(0x80000001, REG_DWORD, 0, 4, kValue, u"Key\u00FFv");
    const std::size_t place = sav.find(block);
    ASSERT_NE(sav.npos, place);
    sav[place + 22] = 1;  // a name of odd length
    Put(kSav, sav);
    ASSERT_EQ(Done(), Backup(2));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
    SetNumber(L"v", 2);
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("4:" + Word(1), Number(L"v"));
}

// The user changed a record after the second state; neither button takes it away.
TEST_F(CollidingObjectsTest, ARecordThatWasChangedSinceIsKeptByTheChangesOfTwoStates) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    const CEOID bob = AddRecord(L"People", L"Bob", 2);
    ASSERT_EQ(Done(), Backup(2));
    WriteRecord(L"People", bob, {{kNumber, 3}});
    SetAdvancedDatabaseRestoring(1);
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(false));
    EXPECT_EQ((Lines{"Ann=1", "Bob=3"}), Records(u"People"));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), RestoreAdvanced(true));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2", "Bob=3"}), Records(u"People"));
}

// Contents that change under one description: a reset and a restore leave one file in every state.
TEST_F(CollidingObjectsTest, AFileThatChangedUnderItsDescriptionHasOneIdInEveryState) {
    const auto store_state = [this](std::uint16_t number) {
        ObjectRecord state = StoreBlock(kState, 0, 0, u"Title", "");
        state.data_offset = static_cast<std::uint32_t>(sav_.size());
        state.state_number = number;
        return state;
    };
    const auto store_version = [this](std::uint16_t number, const Bytes& contents) {
        ObjectRecord version = StoreFile(u"\\a.txt", contents);
        version.content_fingerprint = Checksum16(contents.data(), contents.size());
        version.state_number = number;
        return version;
    };
    std::vector<ObjectRecord> journal{store_state(1), store_version(1, "first"), store_state(2),
                                      store_version(2, "other"), store_state(3)};
    journal.push_back(journal[3]);
    journal.back().state_number = 3;
    journal.back().flags = JF_DELETE;
    SaveStorage();
    SaveJournal(journal);
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("other", device().FileBytes(L"\\a.txt"));
    ASSERT_EQ(1, FindDifferenceEx(engine_, 0, 2));
    EXPECT_EQ(1u, storage_.difference->CountRecords());
    ASSERT_EQ(1, FindDifferenceEx(engine_, 0, 3));
    EXPECT_EQ(0u, storage_.difference->CountRecords());
    EXPECT_EQ(Done(), Restore(3));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
