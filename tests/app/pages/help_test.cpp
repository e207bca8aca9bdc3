// Which section of the manual is asked for. No viewer is installed here.
#include "app/pages/help.h"

#include <nlohmann/json.hpp>

#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class HelpTest : public tests::DeviceTest {
protected:
    // The arguments of the viewer's starts.
    std::vector<std::string> Asked(int index) {
        device().Command("trace on");
        ShowHelp(app_, index);
        const auto calls = nlohmann::json::parse(device().Command("trace show CreateProcessW"));
        device().Command("trace off");
        std::vector<std::string> asked;
        for (const auto& call : calls) {
            asked.push_back(call["arguments"]);
        }
        return asked;
    }

    Application app_{nullptr};
};

TEST_F(HelpTest, TheGeneralHelpIsThatOfTheLastPage) {
    const auto general = Asked(kGeneralHelp);
    EXPECT_EQ(std::vector<std::string>{"\\Windows\\peghelp.exe, tolvenar.htc"}, general);
    EXPECT_EQ(general, Asked(5));
}

TEST_F(HelpTest, OtherPagesThanThereAreHaveNone) {
    for (const int index : {-2, 6, 7, 40001}) {
        EXPECT_EQ(0u, Asked(index).size()) << index;
    }
}

}  // namespace
}  // namespace tolvenar
