#include "storage/opened/state_details.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class StateDetailsTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        record_.propOffset = 236;
        record_.data_offset = 274;
        record_.state_number = 1;
        record_.type = kState;
    }
    // 236 bytes of head, the block of a state made at 16.11.2026 04:33:10, and its description.
    static Bytes File(const Text& description, std::uint32_t claimed_bytes) {
        return Bytes(236, '\0') + Block(0, 0, 0x01DD7583957AC700, claimed_bytes, kState, u"Title") +
               Units(description);
    }
    bool Read() { return ReadStateDetails(storage_.names, record_, details_); }

    ObjectRecord record_{};
    StateDetails details_{};
};

TEST_F(StateDetailsTest, AStateHasItsLocalTimeAndDescription) {
    device().Command("set zone UTC-5");
    Put(kSav, File(u"before the journey", 36));
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(u"11/16/26, 9:33:10 AM"), details_.time);
    EXPECT_EQ(Text(u"before the journey"), details_.description);
    EXPECT_TRUE(IsFree(kSav));
}

TEST_F(StateDetailsTest, TheDescriptionEndsWhereTheBlockSays) {
    Put(kSav, File(u"before the journey", 12));
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(u"before"), details_.description);
}

TEST_F(StateDetailsTest, AStateWithoutDescriptionHasAnEmptyOne) {
    Put(kSav, File(u"xyz", 6));
    record_.data_offset = kNoData;
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(), details_.description);
}

TEST_F(StateDetailsTest, ADescriptionOf199UnitsIsWhole) {
    Put(kSav, File(Text(199, u'd'), 398));
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(199, u'd'), details_.description);
}

TEST_F(StateDetailsTest, ALongerDescriptionIsCut) {
    for (const std::uint32_t claim : {400u, 2000u, 0xFFFFFFFFu}) {
        Put(kSav, File(Text(1000, u'd'), claim));
        ASSERT_TRUE(Read());
        EXPECT_EQ(Text(199, u'd'), details_.description) << claim;
    }
}

TEST_F(StateDetailsTest, ADescriptionBehindTheFilesEndIsWhatIsThere) {
    Put(kSav, File(u"abc", 100));
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(u"abc"), details_.description);
    record_.data_offset = 0x10000;
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(), details_.description);
}

TEST_F(StateDetailsTest, ABlockBehindTheFilesEndShowsNothing) {
    Put(kSav, File(u"abc", 6));
    for (const std::uint32_t offset : {260u, 0x10000u, 0x80000000u, 0xFFFFFFFFu}) {
        record_.propOffset = offset;
        details_.time[0] = u'x';
        EXPECT_FALSE(Read()) << offset;
        EXPECT_EQ(Text(), details_.time);
        EXPECT_EQ(Text(), details_.description);
    }
}

TEST_F(StateDetailsTest, ATimeThatIsNoDateIsEmpty) {
    Bytes bytes = File(u"abc", 6);
    Patch(bytes, 244, ~std::uint64_t{0});
    Put(kSav, bytes);
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(), details_.time);
    EXPECT_EQ(Text(u"abc"), details_.description);
}

TEST_F(StateDetailsTest, WithoutTheStorageFileNothingIsShown) {
    EXPECT_FALSE(Read());
    Put(kSav, File(u"abc", 6));
    const UniqueHandle held = Hold(kSav);
    EXPECT_FALSE(Read());
}

TEST_F(StateDetailsTest, ADescriptionThatCannotBeReadIsEmpty) {
    Bytes bytes = File(u"", 6);
    bytes.resize(5000);
    Put(kSav, bytes + Units(u"abc"));
    record_.data_offset = 5000;
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(u"abc"), details_.description);
    // Its page, then the description alone.
    device().Fault("ReadFile", 2, 2, ERROR_READ_FAULT);
    ASSERT_TRUE(Read());
    EXPECT_EQ(Text(), details_.description);
}

}  // namespace
}  // namespace tolvenar
