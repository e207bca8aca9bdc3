// Restores that are killed before a call that changes something, and killed again when they are
// begun anew: nothing is lost on the way, and the third one finishes. A sample of the calls;
// scripts/kill_restores takes all of them and prints a table.
#include <cstdio>
#include <map>

#include "simulator/gate/counters.h"
#include "tests/faults/campaign.h"
#include "tests/faults/fault_fixture.h"
#include "tests/support/child_role.h"

namespace tolvenar {
namespace {

constexpr int kKilled = 205;
constexpr long kSampleKills = 8;

// A restore in a process of its own; answers its result code.
const tests::ChildRole kRestores(L"restore", [](const wchar_t* state) {
    QuietParts parts;
    return parts.Open()
               ? static_cast<int>(parts.Restore(static_cast<std::uint32_t>(_wtoi(state))).code)
               : 0;
});

constexpr const char* kChangingCalls[] = {
    "CeCreateDatabaseEx", "CeDeleteDatabaseEx", "CeDeleteRecord", "CeWriteRecordProps",
    "CreateDirectoryW",   "CreateFileW",        "DeleteFileW",    "FlushFileBuffers",
    "MoveFileW",          "RegCreateKeyExW",    "RegDeleteKeyW",  "RegDeleteValueW",
    "RegSetValueExW",     "RemoveDirectoryW",   "SetEndOfFile",   "SetFileAttributesW",
    "SetFileTime",        "WriteFile",
};

struct Kill {
    const char* function;
    long number;
};

class KillRestoreTest : public FaultTest {
protected:
    // Two states are stored and the device changed since. The first one is restored: more of it is
    // gone.
    void SetUp() override {
        MakeDevice();
        first_ = BackUp();
        ChangeDevice(1);
        second_ = BackUp();
        ChangeDevice(2);
        device().Command("db-delete Kept");
        damaged_ = Now();
        KeepDevice();
    }

    // Every call that changes something in a restore that nothing disturbs.
    std::vector<Kill> AllKills() {
        PutBack();
        sim::ClearCounters(device().sim());
        EXPECT_EQ(static_cast<int>(ResultCode::kSuccess), RestoreInChild());
        const std::map<std::string, long> calls = sim::TotalCalls(device().sim());
        Detach();
        std::vector<Kill> kills;
        for (const char* function : kChangingCalls) {
            const auto found = calls.find(function);
            for (long n = 1; found != calls.end() && n <= found->second; ++n) {
                kills.push_back({function, n});
            }
        }
        return kills;
    }
    static int RestoreInChild() { return sim::host::Child(L"restore", L"1").Finish(); }

    // True when the restore was killed there; one that needs fewer calls ends by itself.
    bool RestoreKilledAt(const Kill& kill) {
        device().Command("faults clear");
        device().Command("crash " + std::string(kill.function) + " " + std::to_string(kill.number));
        const int code = RestoreInChild();
        device().Command("faults clear");
        EXPECT_TRUE(code == kKilled || code == static_cast<int>(ResultCode::kSuccess) ||
                    code == static_cast<int>(ResultCode::kNoDifference))
            << code;
        EXPECT_EQ(Lines(), tests::Lost(first_, damaged_, Now()));
        return code == kKilled;
    }
    void ExpectState(std::uint32_t state, const Contents& contents) {
        const ResultCode code = Restore(state);
        EXPECT_TRUE(code == ResultCode::kSuccess || code == ResultCode::kNoDifference)
            << static_cast<int>(code);
        EXPECT_EQ(Lines(), Differences(contents, Now())) << "state " << state;
    }
    void KillTwice(const Kill& one, const Kill& two) {
        SCOPED_TRACE(std::string(one.function) + " " + std::to_string(one.number) + ", then " +
                     two.function + " " + std::to_string(two.number));
        PutBack();
        EXPECT_TRUE(RestoreKilledAt(one));
        killed_again_ += RestoreKilledAt(two) ? 1 : 0;
        ExpectState(1, first_);
        ExpectState(2, second_);
        Detach();
    }
    void PrintRow(const char* function, long kills) const {
        std::printf("%-20s %8ld %12ld %8s\n", function, kills, killed_again_,
                    HasFailure() ? "failed" : "good");
    }

    Contents first_;
    Contents second_;
    Contents damaged_;
    long killed_again_ = 0;
};

TEST_F(KillRestoreTest, TheThirdRestoreFinishesAndNothingIsLostOnTheWay) {
    const std::vector<Kill> kills = AllKills();
    EXPECT_LT(60u, kills.size());
    const long tries = tests::Tries("TOLVENAR_KILLS", kSampleKills);
    const auto all = static_cast<long>(kills.size());
    const bool is_sample = tries < all;
    const std::size_t count = static_cast<std::size_t>(is_sample ? tries : all);
    // Places that are far from one another, and a second one that differs for each of them.
    constexpr std::size_t kStep = 37;
    for (std::size_t i = 0; i < count && !HasFailure(); ++i) {
        const std::size_t at = is_sample ? i * kills.size() / count : i;
        const Kill& one = kills[at];
        KillTwice(one, kills[(at * kStep + 5) % kills.size()]);
        const bool is_last = at + 1 == kills.size() || kills[at + 1].function != one.function;
        if (!is_sample && (is_last || HasFailure())) {
            PrintRow(one.function, one.number);
            killed_again_ = 0;
        }
    }
}

}  // namespace
}  // namespace tolvenar
