#include "storage/opened/old_journals.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class OldJournalsTest : public EngineTest {
protected:
    static constexpr std::uint64_t kTime = 0x01C2'8000'0000'0000;
    static constexpr std::uint64_t kHour = 36000000000;

    void PutOld(const std::wstring& number, const Bytes& bytes, std::uint64_t hours) {
        const std::wstring path = L"\\Storage Card\\Backup\\Home.jrn_old" + number;
        device().PutFile(path, bytes);
        device().Touch(path, kTime + hours * kHour);
    }
    Text Newest() {
        char16_t path[kStorageNameUnits];
        return FindNewestOldJournal(storage_.names, path) ? Text(path) : Text();
    }
};

TEST_F(OldJournalsTest, WithoutOneThereIsNoNewest) { EXPECT_EQ(u"", Newest()); }

TEST_F(OldJournalsTest, TheOneThatWasWrittenLastIsTheNewest) {
    PutOld(L"", "a", 1);
    PutOld(L"2", "b", 3);
    PutOld(L"3", "c", 2);
    EXPECT_EQ(u"\\Storage Card\\Backup\\Home.jrn_old2", Newest());
}

TEST_F(OldJournalsTest, OfOneTimeTheGreaterNumberIsTheNewest) {
    PutOld(L"9", "a", 1);
    PutOld(L"10", "b", 1);
    PutOld(L"", "c", 1);
    EXPECT_EQ(u"\\Storage Card\\Backup\\Home.jrn_old10", Newest());
}

TEST_F(OldJournalsTest, OtherNamesAreNone) {
    PutOld(L"x", "a", 1);
    PutOld(L"01", "b", 2);
    PutOld(L"12345", "c", 3);
    EXPECT_EQ(u"", Newest());
}

TEST_F(OldJournalsTest, TheTwoFilesAreExchanged) {
    Put(kJournal, "now");
    PutOld(L"2", "then", 1);
    EXPECT_TRUE(ExchangeJournals(storage_.names, u"\\Storage Card\\Backup\\Home.jrn_old2"));
    EXPECT_EQ("then", Content(kJournal));
    EXPECT_EQ("now", device().FileBytes(L"\\Storage Card\\Backup\\Home.jrn_old2"));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Backup\\Home.jrn_old"));
}

TEST_F(OldJournalsTest, WhicheverRenamingFailsBothFilesAreThere) {
    for (int n = 1; n <= 3; ++n) {
        Put(kJournal, "now");
        PutOld(L"2", "then", 1);
        device().Fault("MoveFileW", n, 1, ERROR_WRITE_FAULT);
        const bool exchanged =
            ExchangeJournals(storage_.names, u"\\Storage Card\\Backup\\Home.jrn_old2");
        device().EndFaults();
        EXPECT_EQ(n == 3, exchanged);
        EXPECT_EQ(exchanged ? "then" : "now", Content(kJournal));
        const wchar_t* const kept = exchanged ? L"\\Storage Card\\Backup\\Home.jrn_old"
                                              : L"\\Storage Card\\Backup\\Home.jrn_old2";
        EXPECT_EQ(exchanged ? "now" : "then", device().FileBytes(kept));
    }
}

}  // namespace
}  // namespace tolvenar
