// A storage that an earlier program wrote on a device of that name: tests/data/three_states.
#include <fstream>

#include "snapshot/engine/difference_engine.h"
#include "test_folders.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

Bytes DataFile(const char* name) {
    std::ifstream file(std::string(TOLVENAR_SOURCE_DIR) + "/tests/data/three_states/" + name,
                       std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

class EarlierStorageTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        LetTimePass();
        device().Set("processor", "4000");
        Put(kSav, DataFile("Home.sav"));
        Put(kJournal, DataFile("Home.jrn"));
        ASSERT_TRUE(Open());
    }
    void ExpectFirstState() {
        EXPECT_EQ("first note", device().FileBytes(L"\\My Documents\\a.txt"));
        EXPECT_EQ("", device().FileBytes(L"\\My Documents\\empty.txt"));
        EXPECT_EQ(6000u, device().FileBytes(L"\\My Documents\\big.txt").size());
        EXPECT_EQ("1:" + Units(u"Ada") + Units(std::u16string(1, 0)), OwnerName());
        EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L".txt"));
        EXPECT_TRUE(DatabaseExists(u"Contacts Database"));
    }
    void ExpectThirdState() {
        EXPECT_EQ("first note, changed", device().FileBytes(L"\\My Documents\\a.txt"));
        EXPECT_FALSE(device().Exists(L"\\My Documents\\empty.txt"));
        EXPECT_EQ(10u, device().FileBytes(L"\\My Documents\\New\\b.txt").size());
        EXPECT_EQ("1:" + Units(u"Grace") + Units(std::u16string(1, 0)), OwnerName());
        EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L".txt"));
        EXPECT_FALSE(DatabaseExists(u"Contacts Database"));
    }
    static Bytes OwnerName() { return Value(HKEY_CURRENT_USER, L"Control Panel\\Owner", L"Name"); }
};

// Ids of the device that wrote it mean nothing here: an answer that tells of objects left over is
// none of a loss.
TEST_F(EarlierStorageTest, ItsStatesComeBackAndGoOn) {
    EXPECT_EQ(0u, FindingsInPair());
    Restore(3);
    ExpectThirdState();
    EXPECT_EQ(Done(), Restore(1));
    ExpectFirstState();
    EXPECT_EQ(1, FindDifferenceEx(engine_, 2, 3));
    EXPECT_NE(0u, storage_.difference->CountRecords());

    device().PutFile(L"\\My Documents\\a.txt", "fourth");
    EXPECT_EQ(Done(), Backup());
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup());
    EXPECT_EQ(4u, HighestStateNumber(storage_.journal.get()));
    EXPECT_EQ(Done(), Restore(3));
    ExpectThirdState();
    EXPECT_EQ(Done(), Restore(4));
    EXPECT_EQ("fourth", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_EQ(Content(kSav).substr(0, DataFile("Home.sav").size()), DataFile("Home.sav"));
}

}  // namespace
}  // namespace tolvenar
