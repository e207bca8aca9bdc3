// The pages of serve as a browser shows them.
#include "pc/serve/server.h"
#include "pc/serve/site.h"
#include "pc/storage/pair_files.h"
#include "pc/text/utf.h"
#include "tests/pc/hostile_pair.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class BrowserTest : public ThreeStatesTest {
protected:
    // What tests/pc/browse.py saw.
    nlohmann::json Browse() const {
        StoredPair opened(FindPair(In("Home.sav")));
        TextOutput nothing;
        Console console{nothing, nothing};
        Site site(opened, GatherReport(opened, console));
        const Server server(0, [&site](const Request& request) { return site.Answer(request); });
        const std::string command = "python3 " TOLVENAR_SOURCE_DIR "/tests/pc/browse.py " +
                                    server.address() + " " + In("") + " > " + In("seen.json");
        EXPECT_EQ(0, std::system(command.c_str()));
        nlohmann::json seen = nlohmann::json::parse(Read("seen.json"), nullptr, false);
        seen["address"] = server.address();
        return seen;
    }
};

// One walk: a browser takes seconds to start.
TEST_F(BrowserTest, ThePagesWorkAndNamesAreText) {
    AddHostileState(pair);
    Save();
    const nlohmann::json seen = Browse();
    ASSERT_TRUE(seen.contains("requests")) << seen;

    EXPECT_EQ("Home.sav", seen["title"]);
    EXPECT_EQ("grid", seen["style"]);
    EXPECT_EQ(false, seen["too_wide_on_desk"]);
    EXPECT_EQ(false, seen["too_wide_on_telephone"]);

    const auto opens = nlohmann::json::array({false, true});
    EXPECT_EQ(opens, seen["tree"]);
    EXPECT_EQ("State 3 against 1", seen["compared"]);
    EXPECT_EQ(opens, seen["differences"]);

    EXPECT_EQ("letter.txt", seen["saved"]);
    EXPECT_EQ("Dear Ann, bye", Read("letter.txt"));

    EXPECT_EQ(0, seen["images"]);
    EXPECT_EQ(0, seen["hostile_images"]);
    EXPECT_EQ("State 4", seen["hostile_title"]);
    const auto& names = seen["hostile_names"];
    EXPECT_NE(names.end(), std::find(names.begin(), names.end(), ToUtf8(kHostileName)));
    EXPECT_NE(names.end(), std::find(names.begin(), names.end(), "lone<U+D800>"));

    const std::string host = seen["address"].get<std::string>().substr(0, 22);
    for (const auto& asked : seen["requests"]) {
        EXPECT_EQ(0u, asked.get<std::string>().find(host)) << asked;
    }
}

}  // namespace
}  // namespace tolvenar::pc
