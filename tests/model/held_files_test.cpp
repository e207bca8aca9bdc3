// Random series of changes and backups during which some files are held open, and what each state
// must hold then.
#include "tests/model/advanced_fixture.h"
#include "tests/model/change_generator.h"

namespace tolvenar {
namespace {

using tests::DeviceImage;
using tests::ImageOf;

constexpr int kBackupsOfASeries = 12;
constexpr std::uint32_t kIdsOfADevice = 0x10000;

class HeldFilesTest : public AdvancedModelTest,
                      public ::testing::WithParamInterface<std::uint32_t> {
protected:
    DeviceImage Device() { return ImageOf(device().sim()); }
    std::set<std::wstring> SomeFiles(const DeviceImage& image) {
        std::set<std::wstring> files;
        for (const auto& [path, file] : image.files) {
            if (!file.is_folder && !file.bytes.empty() && changes_.Below(3) == 0) {
                files.insert(path);
            }
        }
        return files;
    }
    // A held file is as in the state before, or in no state.
    static DeviceImage WithoutHeld(DeviceImage now, const DeviceImage& last,
                                   const std::set<std::wstring>& held) {
        for (const std::wstring& path : held) {
            const auto before = last.files.find(path);
            now.files.erase(path);
            if (before != last.files.end() && !before->second.is_folder) {
                now.files.insert(*before);
            }
        }
        return now;
    }
    void BackUpWhileHeld(const std::set<std::wstring>& held) {
        const DeviceImage expected =
            WithoutHeld(Device(), states_.empty() ? DeviceImage() : states_.back(), held);
        std::vector<tests::FileLock> locks;
        for (const std::wstring& path : held) {
            locks.push_back(device().Lock(path));
        }
        const Answer answer = Backup();
        ASSERT_TRUE(answer.done);
        EXPECT_EQ(0u, FindingsInPair());
        EXPECT_EQ(held.size(), backup_.held + backup_.kept);
        if (answer.code == ResultCode::kNoDifference) {
            EXPECT_EQ(Lines(), tests::Differences(states_.back().Lines(), expected.Lines()));
        } else {
            states_.push_back(expected);
        }
    }
    // The last of these backups meets a device that did not change.
    void BackUpUntilNothingChanges() {
        if (Backup() == Done()) {
            states_.push_back(Device());
            EXPECT_EQ(Done(ResultCode::kNoDifference), Backup());
        }
    }
    void Step() {
        changed_.model() = Device();
        story_ += changes_.ChangeSome(15) + "backup\n";
        BackUpWhileHeld(SomeFiles(Device()));
        if (changes_.Below(3) == 0) {
            BackUpUntilNothingChanges();
        }
    }

    tests::TestDevice test_device_{device()};
    tests::ModelledDevice changed_{test_device_};
    tests::ChangeGenerator changes_{changed_, GetParam()};
    std::string story_;
};

TEST_P(HeldFilesTest, EveryStateHoldsWhatCouldBeReadAndOfTheRestWhatTheStateBeforeHeld) {
    for (int i = 0; i < kBackupsOfASeries && !HasFailure(); ++i) {
        Step();
    }
    BackUpUntilNothingChanges();
    for (std::size_t state = states_.size(); state-- != 0 && !HasFailure();) {
        ExchangeDevice(static_cast<std::uint32_t>(state + 2) * kIdsOfADevice);
        RestoreAndCheck(state);
    }
    EXPECT_FALSE(HasFailure()) << story_;
}

INSTANTIATE_TEST_SUITE_P(Seeds, HeldFilesTest, ::testing::Range(1u, 9u));

}  // namespace
}  // namespace tolvenar
