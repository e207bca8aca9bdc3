// Random series of changes, backups and restores, checked after every step against a model of what
// the device should hold.
#include "simulator/files/files.h"
#include "snapshot/records/checksum.h"
#include "tests/model/change_generator.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

using tests::Contents;
using tests::ContentsOf;
using tests::Differences;

constexpr int kStepsOfASeries = 70;
constexpr Answer kNothing = Done(ResultCode::kNoDifference);

struct Series {
    std::uint32_t seed;
    const char* order;  // in which the device lists things
};

class ModelTest : public EngineTest, public ::testing::WithParamInterface<Series> {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        LetTimePass();
        device().Set("order", GetParam().order);
        first_id_ = device().sim().TakeObjectId();
        device_model_.model().keys[u"HKCU\\Software"];  // of the program's own settings
    }

    void ExpectDeviceIsAsTheModel() {
        EXPECT_EQ(Lines(), Differences(device_model_.model().Lines(), ContentsOf(device().sim())));
    }

    // States are numbered from 1; the model of state n stands at n - 1.
    std::string BackUpAndCheck() {
        const Answer backup = Backup();
        if (backup == kNothing) {
            EXPECT_FALSE(states_.empty());
            EXPECT_EQ(Lines(), Differences(states_.back().Lines(), device_model_.model().Lines()));
            return "no backup";
        }
        EXPECT_EQ(Done(), backup);
        states_.push_back(device_model_.model());
        EXPECT_EQ(kNothing, Backup()) << "a second backup";
        return "backup " + std::to_string(states_.size());
    }

    std::string RestoreAndCheck(std::uint32_t number) {
        const Answer restore = Restore(number);
        EXPECT_TRUE(restore == Done() || restore == kNothing) << restore;
        device_model_.model() = states_[number - 1];
        ExpectDeviceIsAsTheModel();
        EXPECT_EQ(kNothing, Restore(number)) << "a second restore";
        if (number == states_.size()) {
            EXPECT_EQ(kNothing, Backup()) << "a backup of the last state";
        }
        return "restore " + std::to_string(number);
    }

    std::string Reset() {
        ResetDevice();
        device().Set("order", GetParam().order);
        // The ids that it gives out are new ones, or those of objects that were stored.
        const std::uint32_t first_id = changes_.Below(2) == 0 ? 100 : first_id_;
        device().Set("oid.next", std::to_string(first_id + changes_.Below(100)));
        return "reset, ";
    }

    std::string Step() {
        const std::uint32_t kind = changes_.Below(100);
        if (states_.empty() || kind < 45) {
            const std::string changes = changes_.ChangeSome(states_.empty() ? 40 : 10);
            return changes + BackUpAndCheck();
        }
        const std::uint32_t number = 1 + changes_.Below(states_.size());
        const std::string before = kind < 55 ? Reset() : kind < 90 ? changes_.ChangeSome(10) : "";
        return before + RestoreAndCheck(number);
    }

    tests::TestDevice test_device_{device()};
    tests::ModelledDevice device_model_{test_device_};
    tests::ChangeGenerator changes_{device_model_, GetParam().seed};
    std::vector<tests::DeviceImage> states_;
    std::uint32_t first_id_ = 0;
};

TEST_P(ModelTest, EveryStateComesBackWhateverHappenedBefore) {
    std::string story;
    for (int i = 0; i < kStepsOfASeries && !HasFailure(); ++i) {
        story += Step() + "\n";
        ExpectDeviceIsAsTheModel();
        EXPECT_EQ(0u, FindingsInPair());
    }
    EXPECT_FALSE(HasFailure()) << story;
    for (std::uint32_t number = 1; number <= states_.size() && !HasFailure(); ++number) {
        RestoreAndCheck(number);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest,
                         ::testing::Values(Series{1, "stored"}, Series{2, "reversed"},
                                           Series{3, "shuffled:3"}, Series{4, "shuffled:4"},
                                           Series{5, "shuffled:5"}, Series{6, "shuffled:6"},
                                           Series{7, "shuffled:7"}, Series{8, "shuffled:8"},
                                           Series{306, "shuffled:4"}, Series{346, "shuffled:8"}));

// So an identifier does not tell all of them apart, and the fingerprint does but for the types.
TEST(ValuePaletteTest, SomeDataHaveTheSameLowByteOfTheirChecksumAndNoTwoTheSameChecksum) {
    std::set<int> low_bytes;
    std::set<int> checksums;
    std::set<std::string> data;
    for (const tests::ImageValue& value : tests::ValuePalette()) {
        const int checksum = Checksum16(value.second.data(), value.second.size());
        low_bytes.insert(checksum & 0xFF);
        checksums.insert(checksum);
        data.insert(value.second);
    }
    EXPECT_EQ(tests::kValueKinds - 1, data.size());
    EXPECT_EQ(data.size(), checksums.size());
    EXPECT_EQ(data.size() - 3, low_bytes.size());
}

}  // namespace
}  // namespace tolvenar
