// info.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class InfoTest : public ThreeStatesTest {};

TEST_F(InfoTest, TellsDeviceAndStates) {
    const Result result = Run({"info", "HOME"});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("", result.err);
    EXPECT_NE(std::string::npos, result.out.find("Device       Handheld\n"));
    EXPECT_NE(std::string::npos, result.out.find("Processor    MIPS (4000)\n"));
    EXPECT_NE(std::string::npos, result.out.find("System       Windows CE 2.11\n"));
    EXPECT_NE(std::string::npos, result.out.find("    2  2026-11-16 05:33:10         2        2"));
    EXPECT_NE(std::string::npos, result.out.find("second"));
}

TEST_F(InfoTest, JsonHasTheSame) {
    const nlohmann::json info = RunJson({"info", "HOME"});
    EXPECT_EQ("Handheld", info["device"]);
    EXPECT_EQ("2.11", info["system"]);
    EXPECT_EQ(4000, info["processor_type"]);
    EXPECT_EQ(pair.sav.size(), info["storage_bytes"]);
    ASSERT_EQ(3u, info["states"].size());
    EXPECT_EQ("2026-11-16T04:33:10Z", info["states"][0]["made"]);
    EXPECT_EQ("first", info["states"][0]["description"]);
    EXPECT_EQ(7, info["states"][0]["added"]);
    EXPECT_EQ(1, info["states"][2]["added"]);
    EXPECT_EQ(2, info["states"][2]["deleted"]);
    EXPECT_EQ(0, info["unreferenced_bytes"]);
    // Together the states take all but the head.
    std::size_t bytes = 236;
    for (const nlohmann::json& state : info["states"]) {
        bytes += state["bytes"].get<std::size_t>();
    }
    EXPECT_EQ(pair.sav.size(), bytes);
}

TEST_F(InfoTest, WhatAnEndedBackupLeftIsCounted) {
    const Bytes block = Block(0, 0, kTime, 0, kState, u"Title");
    pair.sav += block;
    Save();
    EXPECT_EQ(block.size(), RunJson({"info", "HOME"})["unreferenced_bytes"]);
    EXPECT_NE(std::string::npos, Run({"info", "HOME"}).out.find("Nothing refers to 38 bytes"));
}

TEST_F(InfoTest, AHostileDescriptionStaysOnItsLine) {
    pair.BeginState(Terminated(u"a\x1b[2J\r\nb"));
    Save();
    EXPECT_NE(std::string::npos, Run({"info", "HOME"}).out.find("a<U+001B>[2J  b\n"));
}

TEST_F(InfoTest, ADamagedStateBlockHasNoTime) {
    pair.sav[236 + 8] ^= 1;
    Save();
    const nlohmann::json info = RunJson({"info", "HOME"}, 4);
    EXPECT_EQ("", info["states"][0]["made"]);
    EXPECT_EQ(true, info["states"][0]["damaged"]);
    EXPECT_EQ(1, info["damaged_blocks"]);
}

TEST_F(InfoTest, ADamagedJournalIsTold) {
    Bytes journal = pair.JournalBytes();
    journal[24] = 3;  // a type that there is not
    Write("Home.jrn", journal);
    const Result result = Run({"info", "HOME"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.err.find("journal is damaged"));
}

TEST_F(InfoTest, TakesNoState) { EXPECT_EQ(2, Run({"info", "HOME@1"}).code); }

}  // namespace
}  // namespace tolvenar::pc
