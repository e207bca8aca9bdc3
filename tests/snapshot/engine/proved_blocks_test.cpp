#include "snapshot/engine/proved_blocks.h"

#include "snapshot/engine/descriptions.h"
#include "storage/operations/pair_proof.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class ProvedBlocksTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        for (const wchar_t* path : {L"\\a.txt", L"\\b.txt", L"\\c.txt"}) {
            device().PutFile(path, std::string(5000, 'x'));
        }
        ASSERT_EQ(Done(), Backup(1));
    }
    std::uint32_t OffsetOf(const wchar_t* path) {
        const ObjectRecord* const record = JournalRecord(1, OidOfPath(path), kFile);
        return record == nullptr ? 0 : record->propOffset;
    }
    Text NameAt(Descriptions& descriptions, std::uint32_t offset) {
        InfoBlock block;
        return descriptions.blocks.GetInfoFromStorage(offset, block) ? block.name() : u"none";
    }
};

TEST_F(ProvedBlocksTest, BlocksAreReadByCallsUntilTheyAreProvedAndFromAWindowThen) {
    Descriptions descriptions(engine_);
    PairCheck check(*storage_.journal, descriptions.stored);
    ASSERT_TRUE(CheckOpenPair(engine_, descriptions, check));
    const long views = device().Calls("MapViewOfFile");
    EXPECT_EQ(u"\\a.txt", NameAt(descriptions, OffsetOf(L"\\a.txt")));
    EXPECT_EQ(views, device().Calls("MapViewOfFile"));
    descriptions.blocks.Prove(check, storage_.names.sav);
    const long reads = device().Calls("ReadFile");
    for (const wchar_t* path : {L"\\a.txt", L"\\b.txt", L"\\c.txt"}) {
        EXPECT_EQ(Text(Utf16(path)), NameAt(descriptions, OffsetOf(path)));
    }
    EXPECT_EQ(reads, device().Calls("ReadFile"));
    EXPECT_EQ(1, device().Calls("MapViewOfFile") - views);
}

// A mapped sector that is bad would end the program.
TEST_F(ProvedBlocksTest, ABlockThatTheCheckFoundDamagedIsReadByACall) {
    const std::uint32_t damaged = OffsetOf(L"\\b.txt");
    Bytes sav = Content(kSav);
    sav[damaged + 8] = static_cast<char>(~sav[damaged + 8]);
    Put(kSav, sav);
    Descriptions descriptions(engine_);
    PairCheck check(*storage_.journal, descriptions.stored);
    ASSERT_TRUE(CheckOpenPair(engine_, descriptions, check));
    descriptions.blocks.Prove(check, storage_.names.sav);
    const long views = device().Calls("MapViewOfFile");
    EXPECT_EQ(u"\\b.txt", NameAt(descriptions, damaged));
    NameAt(descriptions, damaged + 1);  // no block of the list
    EXPECT_EQ(views, device().Calls("MapViewOfFile"));
    EXPECT_EQ(u"\\c.txt", NameAt(descriptions, OffsetOf(L"\\c.txt")));
    EXPECT_EQ(1, device().Calls("MapViewOfFile") - views);
}

TEST_F(ProvedBlocksTest, WhatCannotBeMappedIsReadByCalls) {
    Descriptions descriptions(engine_);
    PairCheck check(*storage_.journal, descriptions.stored);
    ASSERT_TRUE(CheckOpenPair(engine_, descriptions, check));
    Fail("CreateFileForMappingW", 1, ERROR_SHARING_VIOLATION);
    descriptions.blocks.Prove(check, storage_.names.sav);
    EXPECT_EQ(u"\\a.txt", NameAt(descriptions, OffsetOf(L"\\a.txt")));
    device().EndFaults();
    descriptions.blocks.Prove(check, storage_.names.sav);
    device().Fault("MapViewOfFile", 1, 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(u"\\a.txt", NameAt(descriptions, OffsetOf(L"\\a.txt")));
}

}  // namespace
}  // namespace tolvenar
