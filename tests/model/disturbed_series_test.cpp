// Random series in which backups and restores are disturbed: files are held, calls fail, the card
// is write-protected, the device is reset, the journal is cut. Whatever happened, no state of
// before changes, what was there before and still is stays in the new state, and the program comes
// to rest.
#include <algorithm>
#include <optional>

#include "snapshot/compare/states.h"
#include "tests/model/change_generator.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

using tests::Contents;
using tests::ContentsOf;
using tests::DeviceImage;
using tests::Differences;

constexpr int kStepsOfASeries = 40;
constexpr Answer kNothing = Done(ResultCode::kNoDifference);
constexpr wchar_t kOldJournal[] = L"\\Storage Card\\Backup\\Home.jrn_old";

// What a state must bring back: `exactly` this, or of each thing the version of one of two devices.
struct State {
    std::optional<DeviceImage> exactly;
    DeviceImage before;
    DeviceImage now;
    bool has_ids_of_before = false;  // nothing was restored since the state before
};

struct Disturbance {
    const char* function;
    int most;  // the call that fails is one of the first so many
    std::uint32_t error;
};
constexpr Disturbance kDisturbances[] = {
    {"WriteFile", 2, ERROR_WRITE_FAULT},
    {"WriteFile", 12, ERROR_DISK_FULL},
    {"SetEndOfFile", 1, ERROR_DISK_FULL},
    {"FlushFileBuffers", 2, ERROR_WRITE_FAULT},
    {"CreateFileForMappingW", 8, ERROR_SHARING_VIOLATION},
    {"MapViewOfFile", 8, ERROR_NOT_ENOUGH_MEMORY},
    {"FindFirstFileW", 4, ERROR_NOT_ENOUGH_MEMORY},
    {"FindNextFileW", 8, ERROR_NOT_ENOUGH_MEMORY},
    {"RegOpenKeyExW", 12, ERROR_NOT_ENOUGH_MEMORY},
    {"RegEnumValueW", 6, ERROR_NOT_ENOUGH_MEMORY},
    {"RegQueryValueExW", 3, ERROR_NOT_ENOUGH_MEMORY},
    {"CeFindFirstDatabaseEx", 1, ERROR_NOT_ENOUGH_MEMORY},
    {"CeOpenDatabaseEx", 6, ERROR_NOT_ENOUGH_MEMORY},
    {"CeReadRecordPropsEx", 8, ERROR_NOT_ENOUGH_MEMORY},
};

constexpr Disturbance kDisturbedRestores[] = {
    {"MapViewOfFile", 6, ERROR_NOT_ENOUGH_MEMORY},
    {"WriteFile", 6, ERROR_DISK_FULL},
    {"SetEndOfFile", 1, ERROR_DISK_FULL},
    {"FlushFileBuffers", 2, ERROR_WRITE_FAULT},
    {"CreateFileW", 8, ERROR_SHARING_VIOLATION},
    {"DeleteFileW", 2, ERROR_SHARING_VIOLATION},
    {"RemoveDirectoryW", 1, ERROR_SHARING_VIOLATION},
    {"RegOpenKeyExW", 30, ERROR_NOT_ENOUGH_MEMORY},
    {"RegSetValueExW", 3, ERROR_NOT_ENOUGH_MEMORY},
    {"CeOpenDatabaseEx", 8, ERROR_NOT_ENOUGH_MEMORY},
    {"CeWriteRecordProps", 2, ERROR_NOT_ENOUGH_MEMORY},
    {"CeDeleteRecord", 2, ERROR_NOT_ENOUGH_MEMORY},
};

// Takes the list that was moved aside when it is offered.
class TakesOlderList final : public RestoreQuestions {
public:
    bool MayWriteBackMissing(const DamageCount&) override { return false; }
    bool MayTakeOlderList(std::uint32_t) override { return true; }
    bool MayGoOnWithoutRoom(std::uint64_t) override { return false; }
};

class DisturbedSeriesTest : public EngineTest, public ::testing::WithParamInterface<std::uint32_t> {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        LetTimePass();
        device_model_.model().keys[u"HKCU\\Software"];  // of the program's own settings
        changes_.ChangeSome(40);
        ASSERT_EQ(Done(), Backup());
        states_.push_back({model(), {}, {}});
    }

    DeviceImage& model() { return device_model_.model(); }

    // The device is whole and nothing disturbs: at most one backup, then there is nothing to do.
    std::string BackUpUndisturbed() {
        const Answer backup = Backup();
        EXPECT_TRUE(backup == Done() || backup == kNothing) << backup;
        if (backup == Done()) {
            states_.push_back({model(), {}, {}});
        } else {
            states_.back().exactly = model();
        }
        EXPECT_EQ(kNothing, Backup()) << "a second backup";
        has_restored_ = false;
        return backup == Done() ? "backup " + std::to_string(states_.size()) : "no backup";
    }

    // Some files are held; the state has the versions of the state before of them.
    std::string BackUpWithHeldFiles() {
        DeviceImage wanted = model();
        std::string told = "held:";
        std::vector<tests::FileLock> locks;
        for (const auto& [path, file] : model().files) {
            if (file.is_folder || file.bytes.empty() || changes_.Below(4) != 0) {
                continue;
            }
            locks.push_back(device().Lock(path));
            told += " " + std::string(path.begin(), path.end());
            const auto& before = states_.back().exactly->files;
            const auto kept = before.find(path);
            if (kept == before.end()) {
                wanted.files.erase(path);
            } else {
                wanted.files[path] = kept->second;
            }
        }
        const Answer backup = Backup();
        EXPECT_TRUE(backup == Done() || backup == kNothing) << backup;
        if (backup == Done()) {
            states_.push_back({wanted, {}, {}});
        } else {
            EXPECT_EQ(Lines(), Differences(states_.back().exactly->Lines(), wanted.Lines()));
        }
        EXPECT_EQ(kNothing, Backup()) << "a second backup with the same files held";
        return told;
    }

    // A backup of which one call fails, and one that makes it good.
    std::string BackUpDisturbed() {
        const Disturbance& row = kDisturbances[changes_.Below(std::size(kDisturbances))];
        const int n = 1 + static_cast<int>(changes_.Below(static_cast<std::size_t>(row.most)));
        const Bytes journal = Content(kJournal);
        device().Fault(row.function, n, 1, row.error);
        const Answer backup = Backup();
        device().DropFaults();
        if (backup == Done()) {
            states_.push_back({std::nullopt, *states_.back().exactly, model(), !has_restored_});
        } else if (device().Exists(kOldJournal)) {
            TakeOlderList(journal);
        } else if (!(backup == kNothing)) {
            EXPECT_EQ(journal, Content(kJournal)) << "a backup that failed";
        }
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        EXPECT_EQ(states_.size(), HighestStateNumber(storage_.journal.get()));
        return std::string(row.function) + " " + std::to_string(n) + ", then " +
               BackUpUndisturbed();
    }

    // The card failed while the new list was written: the old one is there, and a restore offers
    // it.
    void TakeOlderList(const Bytes& journal) {
        EXPECT_EQ(journal, device().FileBytes(kOldJournal));
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        const DeviceImage before = tests::ImageOf(device().sim());
        if (LastStoredState(storage_.journal.get()) == 0) {
            // Too little was written: no state is listed that could be restored.
            Put(kJournal, journal);
        } else {
            TakesOlderList takes;
            questions_ = &takes;
            EXPECT_EQ(Done(ResultCode::kNotStarted),
                      Restore(LastStoredState(storage_.journal.get())));
            questions_ = nullptr;
        }
        EXPECT_EQ(Lines(), Differences(before.Lines(), ContentsOf(device().sim())));
        EXPECT_EQ(journal, Content(kJournal));
        device().Remove(kOldJournal);
    }

    // The device is empty; its ids are given out anew.
    std::string ResetAndRestore() {
        ResetDevice();
        model() = tests::ImageOf(device().sim());
        return "reset, " + RestoreAndCheck(1 + changes_.Below(states_.size()));
    }

    // A restore of which one call fails, and one that makes it good.
    std::string RestoreDisturbed() {
        const Disturbance& row = kDisturbedRestores[changes_.Below(std::size(kDisturbedRestores))];
        const int n = 1 + static_cast<int>(changes_.Below(static_cast<std::size_t>(row.most)));
        const std::uint32_t number = 1 + changes_.Below(states_.size());
        const Bytes journal = Content(kJournal);
        device().Fault(row.function, n, 1, row.error);
        Restore(number);
        device().DropFaults();
        if (device().Exists(kOldJournal)) {
            TakeOlderList(journal);
        }
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        return std::string(row.function) + " " + std::to_string(n) + ", then " +
               RestoreAndCheck(number);
    }

    // A journal that lost its end takes nothing from the device.
    std::string RestoreFromACutJournal() {
        const Bytes journal = Content(kJournal);
        const std::size_t bytes = 32 + changes_.Below(journal.size() - 32);
        Put(kJournal, journal.substr(0, bytes));
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        const std::uint32_t last = LastStoredState(storage_.journal.get());
        const Contents before = ContentsOf(device().sim());
        if (FindingsInPair() != 0 && last != 0) {
            Restore(last);
            EXPECT_EQ(Lines(), tests::Lost(before, before, ContentsOf(device().sim())));
        }
        Put(kJournal, journal);
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        return "a journal of " + std::to_string(bytes) + " bytes, " +
               RestoreAndCheck(1 + changes_.Below(states_.size()));
    }

    std::string BackUpOntoAProtectedCard() {
        const Bytes journal = Content(kJournal);
        const Bytes sav = Content(kSav);
        device().Set("card.protected", "yes");
        const Answer backup = Backup();
        EXPECT_TRUE(backup == Failed() || backup == kNothing) << backup;
        CloseStorage(storage_);
        EXPECT_TRUE(Open());
        // The ids of what comes back cannot be kept: it is met as another object until they can.
        const std::uint32_t number = 1 + changes_.Below(states_.size());
        EXPECT_TRUE(Restore(number).done);
        if (states_[number - 1].exactly) {
            EXPECT_EQ(Lines(), Differences(states_[number - 1].exactly->Lines(),
                                           ContentsOf(device().sim())));
        }
        device().Set("card.protected", "no");
        EXPECT_EQ(journal, Content(kJournal));
        EXPECT_EQ(sav, Content(kSav));
        return "write-protected, " + RestoreAndCheck(number);
    }

    // The state comes back, and a second restore finds nothing to do.
    std::string RestoreAndCheck(std::uint32_t number) {
        const Answer restore = Restore(number);
        has_restored_ = true;
        EXPECT_TRUE(restore == Done() || restore == kNothing) << restore;
        EXPECT_EQ(kNothing, Restore(number)) << "a second restore of " << number;
        const State& state = states_[number - 1];
        if (state.exactly) {
            EXPECT_EQ(Lines(), Differences(state.exactly->Lines(), ContentsOf(device().sim())));
            model() = *state.exactly;
        } else {
            model() = tests::ImageOf(device().sim());
            ExpectOneOrTheOther(state);
        }
        return "restore " + std::to_string(number);
    }

    // Whatever both had is there, in one version or the other, and nothing else is.
    void ExpectOneOrTheOther(const State& state) {
        Contents either = state.before.Lines();
        either.merge(state.now.Lines());
        for (const std::string& line : model().Lines()) {
            EXPECT_NE(either.end(), either.find(line)) << "came from nowhere: " << line;
        }
        for (const auto& [path, file] : state.before.files) {
            const auto now = state.now.files.find(path);
            const bool is_there =
                now != state.now.files.end() && now->second.is_folder == file.is_folder;
            EXPECT_GE(model().files.count(path), is_there ? 1u : 0u)
                << "lost " << std::string(path.begin(), path.end());
        }
        for (const auto& [path, values] : state.before.keys) {
            const auto now = state.now.keys.find(path);
            if (now == state.now.keys.end()) {
                continue;
            }
            for (const auto& [name, value] : values) {
                EXPECT_GE(model().keys[path].count(name), now->second.count(name))
                    << "lost a value of " << std::string(path.begin(), path.end());
            }
        }
        // A record that a restore made anew is another one than its equal in the state before.
        Lines lost = tests::Lost(state.before.Lines(), state.now.Lines(), model().Lines());
        if (!state.has_ids_of_before) {
            lost.erase(std::remove_if(lost.begin(), lost.end(),
                                      [](const std::string& line) {
                                          return line.compare(0, 7, "record ") == 0;
                                      }),
                       lost.end());
        }
        EXPECT_EQ(Lines(), lost);
    }

    std::string Step() {
        const std::uint32_t kind = changes_.Below(100);
        std::string told = kind < 80 ? changes_.ChangeSome(10) : "";
        if (kind < 20) {
            return told + BackUpWithHeldFiles() + ", then " + BackUpUndisturbed();
        }
        if (kind < 43) {
            return told + BackUpDisturbed();
        }
        if (kind < 58) {
            return told + RestoreDisturbed();
        }
        if (kind < 63) {
            return told + RestoreFromACutJournal();
        }
        if (kind < 68) {
            return told + BackUpOntoAProtectedCard();
        }
        if (kind < 75) {
            return told + BackUpUndisturbed();
        }
        if (kind > 94) {
            return told + ResetAndRestore();
        }
        told += RestoreAndCheck(1 + changes_.Below(states_.size()));
        return told;
    }

    tests::TestDevice test_device_{device()};
    tests::ModelledDevice device_model_{test_device_};
    tests::ChangeGenerator changes_{device_model_, GetParam()};
    std::vector<State> states_;
    bool has_restored_ = false;  // since the last backup
};

TEST_P(DisturbedSeriesTest, NothingThatWasThereAndIsThereIsLost) {
    std::string story;
    for (int i = 0; i < kStepsOfASeries && !HasFailure(); ++i) {
        story += Step() + "\n";
        EXPECT_EQ(0u, FindingsInPair());
    }
    EXPECT_FALSE(HasFailure()) << story;
    for (std::uint32_t number = 1; number <= states_.size() && !HasFailure(); ++number) {
        RestoreAndCheck(number);
    }
    if (!HasFailure() && states_.back().exactly) {
        RestoreAndCheck(static_cast<std::uint32_t>(states_.size()));
        EXPECT_EQ(kNothing, Backup()) << "a backup of the last state";
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DisturbedSeriesTest,
                         ::testing::Values(1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 11u, 12u, 35u));

}  // namespace
}  // namespace tolvenar
