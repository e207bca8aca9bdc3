// Random series of changes, backups and restores of the differences between two states, checked
// against a model after every step.
#include "tests/model/advanced_fixture.h"
#include "tests/model/change_generator.h"

namespace tolvenar {
namespace {

using tests::DeviceImage;
using tests::ImageOf;

constexpr int kStepsOfASeries = 30;

struct Series {
    std::uint32_t seed;
    const char* order;                // in which the device lists things
    std::uint32_t other_device_from;  // the first id of the device that gets the card, 0: none does
};

class AdvancedSeriesTest : public AdvancedModelTest, public ::testing::WithParamInterface<Series> {
protected:
    void SetUp() override {
        AdvancedModelTest::SetUp();
        device().Set("order", GetParam().order);
    }
    std::string ChangeSome(std::size_t most) {
        changed_.model() = ImageOf(device().sim());
        return changes_.ChangeSome(most);
    }
    std::set<std::wstring> SomeFiles(std::uint32_t most) {
        std::set<std::wstring> files;
        const DeviceImage image = ImageOf(device().sim());
        for (const auto& [path, file] : image.files) {
            if (!file.is_folder && files.size() < most && changes_.Below(3) == 0) {
                files.insert(path);
            }
        }
        return files;
    }
    std::string PressSome() {
        const std::size_t state = 1 + changes_.Below(states_.size() - 1);
        const Button button = changes_.Below(2) == 0 ? Button::kApply : Button::kTakeBack;
        RestoreDatabases(changes_.Below(4) != 0);
        const std::set<std::wstring> locked =
            SomeFiles(changes_.Below(3) == 0 ? changes_.Below(5) : 0);
        PressAndCheck(state, button, locked);
        return (button == Button::kApply ? "+ " : "-- ") + std::to_string(state + 1) +
               (with_databases_ ? "" : " without databases") + ", locked " +
               std::to_string(locked.size());
    }
    std::string Step() {
        const std::uint32_t kind = changes_.Below(100);
        if (states_.size() < 2 || kind < 25) {
            const std::string told = ChangeSome(states_.empty() ? 40 : 12);
            BackUp();
            return told + "backup";
        }
        if (kind < 35) {
            const std::size_t state = changes_.Below(states_.size());
            RestoreAndCheck(state);
            return "restore " + std::to_string(state + 1);
        }
        return (kind < 50 ? ChangeSome(6) : "") + PressSome();
    }
    void RunSteps(int steps) {
        for (int i = 0; i < steps && !HasFailure(); ++i) {
            story_ += Step() + "\n";
        }
        EXPECT_FALSE(HasFailure()) << story_;
    }

    tests::TestDevice test_device_{device()};
    tests::ModelledDevice changed_{test_device_};
    tests::ChangeGenerator changes_{changed_, GetParam().seed};
    std::string story_;
};

TEST_P(AdvancedSeriesTest, TheDeviceIsWhatTheModelSaysAndEveryStateStillComesBack) {
    RunSteps(kStepsOfASeries);
    if (GetParam().other_device_from != 0) {
        ExchangeDevice(GetParam().other_device_from);
        ChangeSome(20);
        RunSteps(kStepsOfASeries / 2);
    }
    for (std::size_t state = states_.size(); state-- != 0 && !HasFailure();) {
        RestoreAndCheck(state);
    }
    EXPECT_FALSE(HasFailure()) << story_;
}

// Two of the devices that get the card give ids that the states do not know; the last gives them
// out again.
INSTANTIATE_TEST_SUITE_P(Seeds, AdvancedSeriesTest,
                         ::testing::Values(Series{1, "stored", 0}, Series{2, "reversed", 0},
                                           Series{3, "shuffled:3", 0},
                                           Series{4, "stored", 0x100000},
                                           Series{5, "shuffled:5", 0x100000},
                                           Series{1006, "shuffled:6", 0x1000100}));

}  // namespace
}  // namespace tolvenar
