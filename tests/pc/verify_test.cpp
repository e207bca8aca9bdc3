// verify.
#include "pc/command/progress_line.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class VerifyTest : public ThreeStatesTest {};

TEST_F(VerifyTest, ASoundStorageHasNoErrors) {
    const Result result = Run({"verify", "HOME"});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ(
        "State   Objects   Damaged\n    1         7         0\n    2         7         0\n"
        "    3         6         0\nNo errors were found.\n",
        result.out);
}

TEST_F(VerifyTest, AllTellsOfEveryObject) {
    const Result result = Run({"verify", "HOME", "--all"});
    EXPECT_NE(std::string::npos,
              result.out.find("whole: \\My Documents\\letter.txt, in states: 2 to 3\n"));
    EXPECT_EQ(10u, RunJson({"verify", "HOME", "--all"})["objects"].size());
}

TEST_F(VerifyTest, DamagedContentsAreToldWithWhatIsWholeElsewhere) {
    pair.sav[pair.sav.find("Dear Ann, bye") + 4] ^= 0x40;
    Save();
    const Result result = Run({"verify", "HOME"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos,
              result.out.find("damaged contents: \\My Documents\\letter.txt, stored by state 2, in "
                              "states: 2 to 3\n    a whole version is in states: 1\n"));
    EXPECT_NE(std::string::npos, result.out.find("    3         6         1\n"));
    EXPECT_EQ(std::string::npos, result.out.find("No errors"));
}

TEST_F(VerifyTest, JsonTellsStatesAndDamage) {
    pair.sav[pair.sav.find(Units(u"notes.txt"))] ^= 1;
    Save();
    const nlohmann::json verdict = RunJson({"verify", "HOME"}, 4);
    ASSERT_EQ(1u, verdict["objects"].size());
    EXPECT_EQ("block", verdict["objects"][0]["damage"]);
    EXPECT_EQ((std::vector<int>{1, 2}), verdict["objects"][0]["states"].get<std::vector<int>>());
    EXPECT_EQ(1, verdict["states"][0]["damaged"]);
    EXPECT_EQ(0, verdict["states"][2]["damaged"]);
    EXPECT_EQ(1u, verdict["findings"].size());
}

TEST_F(VerifyTest, ALostRecordIsAFindingOfTheJournal) {
    Bytes journal;
    for (const ObjectRecord& record : pair.Journal()) {
        journal += record.dwOID == 0x12 && record.flags == JF_ADD ? "" : BytesOf(record);
    }
    Write("Home.jrn", journal);
    const Result result = Run({"verify", "HOME"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("List damaged: "));
}

// The last block of its backup may be a failed item's as well.
TEST_F(VerifyTest, AWholeBlockThatNoRecordPointsToIsTold) {
    Bytes journal;
    std::size_t offset = 0;
    for (const ObjectRecord& record : pair.Journal()) {
        const bool is_lost = record.dwOID == 0x13;
        journal += is_lost ? "" : BytesOf(record);
        offset = is_lost ? record.propOffset : offset;
    }
    Write("Home.jrn", journal);
    const nlohmann::json verdict = RunJson({"verify", "HOME"}, 4);
    EXPECT_EQ((std::vector<std::size_t>{offset}),
              verdict["unclaimed_blocks"].get<std::vector<std::size_t>>());
    EXPECT_NE(std::string::npos, Run({"verify", "HOME"}).out.find("a whole block of no state"));
}

TEST_F(VerifyTest, AStatesOwnBlockIsProvedToo) {
    pair.sav[236 + 8] ^= 1;
    Save();
    const Result result = Run({"verify", "HOME"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("damaged: time and description of state 1\n"));
}

TEST(ProgressLine, TellsRateAndTimeLeftToWhoWatches) {
    TextOutput out;
    TextOutput err;
    Console console{out, err, true};
    const ProgressLine::Clock::time_point begin{};
    {
        ProgressLine progress(console, "verify", 10000000, begin);
        progress.Add(1000000, begin + std::chrono::milliseconds(100));
        EXPECT_EQ("", err.text);
        progress.Add(1500000, begin + std::chrono::milliseconds(500));
        EXPECT_EQ("\rverify: 25 %, 5.0 MB/s, 2 s left\x1b[K", err.text);
        err.text.clear();
    }
    EXPECT_EQ("\r\x1b[K", err.text);
}

TEST(ProgressLine, NothingGoesIntoAPipe) {
    TextOutput out;
    TextOutput err;
    Console console{out, err, false};
    ProgressLine(console, "verify", 10, {}).Add(5, ProgressLine::Clock::time_point::max());
    EXPECT_EQ("", err.text);
}

}  // namespace
}  // namespace tolvenar::pc
