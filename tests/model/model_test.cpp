// Random series of changes, backups and restores, checked after every step against a model of what
// the device should hold.
#include <gtest/gtest.h>

#include "simulator/files/files.h"
#include "simulator/host/host_files.h"
#include "simulator/store/utf8.h"
#include "snapshot/records/checksum.h"
#include "storage/opened/journal.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/restore_engine.h"
#include "tests/model/change_generator.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

using tests::Contents;
using tests::ContentsOf;
using tests::Differences;
using Lines = std::vector<std::string>;

constexpr int kStepsOfASeries = 70;

struct Series {
    std::uint32_t seed;
    const char* order;  // in which the device lists things
};

class ModelTest : public EngineTest, public ::testing::WithParamInterface<Series> {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        Prepare();
        first_id_ = device().sim().TakeObjectId();
        device_model_.model().keys[u"HKCU\\Software"];  // of the program's own settings
    }

    // Time moves at every write; a restore does not wait for the store to settle.
    void Prepare() {
        device().Set("clock", "2002-05-06T07:08:09");
        device().Set("clock.step", "2000");
        device().Set("order", GetParam().order);
        device().Fault("Sleep", 1, 1000000000, 1);
    }

    ResultCode Backup() {
        ResultCode code{};
        std::uint32_t needed = 0;
        const std::uint32_t number = NextStateNumber(storage_.journal.get());
        const bool done = DoBackup(engine_, number, u"", false, code, needed);
        EXPECT_TRUE(done);
        return code;
    }
    ResultCode Restore(std::size_t number) {
        ResultCode code{};
        EXPECT_TRUE(DoRestore(engine_, static_cast<std::uint32_t>(number), code));
        return code;
    }

    void ExpectDeviceIsAsTheModel() {
        EXPECT_EQ(Lines(),
                  Differences(device_model_.model().Expected(), ContentsOf(device().sim())));
    }

    std::string ChangeSome(std::size_t most) {
        std::string told;
        for (std::uint32_t count = 1 + changes_.Below(most); count != 0; --count) {
            told += changes_.Change() + "; ";
        }
        return told;
    }

    // States are numbered from 1; the model of state n stands at n - 1.
    std::string BackUpAndCheck() {
        const ResultCode code = Backup();
        if (code == ResultCode::kNoDifference) {
            EXPECT_FALSE(states_.empty());
            EXPECT_EQ(Lines(),
                      Differences(states_.back().Expected(), device_model_.model().Expected()));
            return "no backup";
        }
        EXPECT_EQ(ResultCode::kSuccess, code);
        states_.push_back(device_model_.model());
        EXPECT_EQ(ResultCode::kNoDifference, Backup()) << "a second backup";
        return "backup " + std::to_string(states_.size());
    }

    std::string RestoreAndCheck(std::size_t number) {
        const ResultCode code = Restore(number);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference)
            << static_cast<int>(code);
        device_model_.model() = states_[number - 1];
        ExpectDeviceIsAsTheModel();
        EXPECT_EQ(ResultCode::kNoDifference, Restore(number)) << "a second restore";
        if (number == states_.size()) {
            EXPECT_EQ(ResultCode::kNoDifference, Backup()) << "a backup of the last state";
        }
        return "restore " + std::to_string(number);
    }

    // The device as it comes from a reset: empty, with the card still in it.
    std::string Reset() {
        const std::wstring empty = folder() + L"\\empty";
        sim::host::MakeFolder(empty);
        device().Command("create \"" + sim::Utf8(empty) + "\"");
        device().Command("faults clear");
        Prepare();
        // The ids that it gives out are new ones, or those of objects that were stored.
        const std::uint32_t first_id = changes_.Below(2) == 0 ? 100 : first_id_;
        device().Set("oid.next", std::to_string(first_id + changes_.Below(100)));
        return "reset, ";
    }

    std::string Step() {
        const std::uint32_t kind = changes_.Below(100);
        if (states_.empty() || kind < 45) {
            const std::string changes = ChangeSome(states_.empty() ? 40 : 10);
            return changes + BackUpAndCheck();
        }
        const std::size_t number = 1 + changes_.Below(states_.size());
        const std::string before = kind < 55 ? Reset() : kind < 90 ? ChangeSome(10) : "";
        return before + RestoreAndCheck(number);
    }

    tests::TestDevice test_device_{device()};
    tests::ModelledDevice device_model_{test_device_};
    tests::ChangeGenerator changes_{device_model_, GetParam().seed};
    std::vector<tests::DeviceModel> states_;
    std::uint32_t first_id_ = 0;
};

TEST_P(ModelTest, EveryStateComesBackWhateverHappenedBefore) {
    std::string story;
    for (int i = 0; i < kStepsOfASeries && !HasFailure(); ++i) {
        story += Step() + "\n";
        ExpectDeviceIsAsTheModel();
    }
    EXPECT_FALSE(HasFailure()) << story;
    for (std::size_t number = 1; number <= states_.size() && !HasFailure(); ++number) {
        RestoreAndCheck(number);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest,
                         ::testing::Values(Series{1, "stored"}, Series{2, "reversed"},
                                           Series{3, "shuffled:3"}, Series{4, "shuffled:4"},
                                           Series{5, "shuffled:5"}, Series{6, "shuffled:6"},
                                           Series{7, "shuffled:7"}, Series{8, "shuffled:8"},
                                           Series{306, "shuffled:4"}, Series{346, "shuffled:8"}));

TEST(ValuePaletteTest, NoTwoDataHaveTheSameLowByteOfTheirChecksum) {
    std::set<int> low_bytes;
    for (const tests::ModelValue& value : tests::ValuePalette()) {
        low_bytes.insert(Checksum16(value.second.data(), value.second.size()) & 0xFF);
    }
    EXPECT_EQ(tests::kValueKinds, low_bytes.size());
}

}  // namespace
}  // namespace tolvenar
