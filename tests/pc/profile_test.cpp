// export profile.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class ProfileTest : public ThreeStatesTest {
protected:
    nlohmann::json Part(const std::string& name) const {
        return nlohmann::json::parse(Read("out/" + name), nullptr, false);
    }
    Result Export(std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments = {"export", "HOME@2", "profile", "-o", In("out")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
};

TEST_F(ProfileTest, HasFilesAndWhatAFileOfThisMachineCannotSay) {
    EXPECT_EQ(0, Export().code);
    EXPECT_EQ("Dear Ann, bye", Read("out/files/My Documents/letter.txt"));
    const nlohmann::json rows = Part("files.json");
    EXPECT_EQ(0x10, rows["\\My Documents"]["attributes"]);
    EXPECT_FALSE(rows["\\My Documents"].contains("modified"));
    EXPECT_EQ(0x20, rows["\\My Documents\\letter.txt"]["attributes"]);
    EXPECT_EQ(kTime + kHour, rows["\\My Documents\\letter.txt"]["modified"]);
}

TEST_F(ProfileTest, HasRegistryDatabasesAndDevice) {
    EXPECT_EQ(0, Export().code);
    EXPECT_EQ(Run({"export", "HOME@2", "reg"}).out, Read("out/registry.reg"));
    EXPECT_EQ(Run({"export", "HOME@2", "json"}).out, Read("out/databases/all.json"));
    EXPECT_EQ("processor = 4000\nos.version = 2.11\n", Read("out/device.ini"));
}

TEST_F(ProfileTest, HasObjectIdsWhenTheyAreAskedFor) {
    EXPECT_EQ(0, Export().code);
    EXPECT_FALSE(std::filesystem::exists(In("out/ids.json")));
    std::filesystem::remove_all(In("out"));
    EXPECT_EQ(0, Export({"--ids"}).code);
    EXPECT_EQ(0x22, Part("ids.json")["next"]);
    EXPECT_EQ(0x11, Part("ids.json")["files"]["\\My Documents\\letter.txt"]);
}

TEST_F(ProfileTest, ANameThatNotEveryMachineTakesIsLeftOutAndTold) {
    pair.AddFile(u"\\CON", "console", 0x30);
    Save();
    const Result result = Run({"export", "HOME", "profile", "-o", In("out")});
    EXPECT_EQ(3, result.code);
    EXPECT_NE(std::string::npos, result.err.find("not exported: \\CON"));
    EXPECT_FALSE(std::filesystem::exists(In("out/files/_CON")));
    EXPECT_FALSE(Part("files.json").contains("\\CON"));
}

TEST_F(ProfileTest, NothingIsWrittenWhereSomethingIs) {
    EXPECT_EQ(0, Export().code);
    std::filesystem::remove_all(In("out/files"));
    EXPECT_EQ(1, Export().code);
    EXPECT_FALSE(std::filesystem::exists(In("out/files")));
}

TEST_F(ProfileTest, AProfileIsAFolder) { EXPECT_EQ(2, Run({"export", "HOME", "profile"}).code); }

}  // namespace
}  // namespace tolvenar::pc
