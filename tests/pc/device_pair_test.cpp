// A storage that a device wrote, tests/data/three_states.
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class DevicePairTest : public PcTest {
protected:
    const std::string home_ = TOLVENAR_SOURCE_DIR "/tests/data/three_states/Home";
};

TEST_F(DevicePairTest, IsSound) {
    EXPECT_EQ(0, Run({"verify", home_}).code);
    const nlohmann::json info = RunJson({"info", home_});
    EXPECT_EQ("Handheld", info["device"]);
    EXPECT_EQ(3u, info["states"].size());
    EXPECT_EQ(0, info["unreferenced_bytes"]);
}

TEST_F(DevicePairTest, HoldsWhatTheDeviceHeld) {
    std::ostringstream expected;
    expected << std::ifstream(TOLVENAR_SOURCE_DIR "/tests/data/three_states/expected.txt").rdbuf();
    for (const char* state : {"1", "2", "3"}) {
        const nlohmann::json list = RunJson({"ls", home_ + "@" + state});
        for (const nlohmann::json& object : list["objects"]) {
            if (object["kind"] == "file") {
                const std::string line = "  16 " + object["path"].get<std::string>() + " " +
                                         object["bytes"].dump() + "\n";
                EXPECT_NE(std::string::npos, expected.str().find(line)) << line;
            }
        }
    }
}

TEST_F(DevicePairTest, AnyOfItsStatesCanBeTakenOut) {
    for (const char* kept : {"1", "2", "3", "1,2", "1,3", "2,3", "1,2,3"}) {
        const std::string to = In(std::string("New") + kept);
        EXPECT_EQ(0, Run({"trim", home_, "--keep", kept, "-o", to}).code) << kept;
        EXPECT_EQ(0, Run({"verify", to}).code) << kept;
    }
}

TEST_F(DevicePairTest, ItsFilesComeOut) {
    EXPECT_EQ(0, Run({"extract", home_, "-o", In("out")}).code);
    EXPECT_EQ(0, Run({"export", home_, "reg", "-o", In("out.reg")}).code);
    EXPECT_EQ(0, Run({"export", home_, "json", "-o", In("out.json")}).code);
}

}  // namespace
}  // namespace tolvenar::pc
