// extract over links that are there already.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

class ExtractLinksTest : public ThreeStatesTest {
protected:
    Result Extract() const { return Run({"extract", "HOME", "-o", In("out")}); }
};

TEST_F(ExtractLinksTest, ALinkInTheFolderIsNotFollowed) {
    fs::create_directory(In("out"));
    fs::create_directory(In("outside"));
    fs::create_symlink(In("outside"), In("out/My Documents"));
    EXPECT_EQ(3, Extract().code);
    EXPECT_TRUE(fs::is_empty(In("outside")));
}

TEST_F(ExtractLinksTest, ALinkUnderAFilesNameIsNotWrittenThrough) {
    fs::create_directories(In("out/My Documents"));
    Write("precious", "mine");
    fs::create_symlink(In("precious"), In("out/My Documents/letter.txt"));
    EXPECT_EQ(3, Extract().code);
    EXPECT_EQ("mine", Read("precious"));
}

}  // namespace
}  // namespace tolvenar::pc
