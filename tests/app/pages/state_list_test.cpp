// The list of a great many states, such as a device has that backs up every day for years.
#include "app/pages/state_list.h"

#include <numeric>
#include <vector>

#include "simulator/gate/counters.h"
#include "tests/support/device_test.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

using Numbers = std::vector<int>;
constexpr int kStates = 1000;

class StateListTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        window_ = ::CreateWindowExW(0, L"LISTBOX", L"", WS_POPUP | LBS_NOTIFY, 0, 0, 80, 80,
                                    nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, window_);
        states_.Attach(window_);
    }
    void TearDown() override {
        states_.Clear();
        ::DestroyWindow(window_);
        DeviceTest::TearDown();
    }
    // Fills the list with these states as the journal has them; how many messages that takes.
    long Fill(const Numbers& numbers) {
        const auto journal = ObjectList::CreateList();
        std::uint32_t oid = 0;
        // The last to be entered is the first to be met.
        for (auto number = numbers.rbegin(); number != numbers.rend(); ++number) {
            journal->AddObject(JournalRecord(MakeRecord(ObjectType::kState, 0, ++oid),
                                             static_cast<std::uint16_t>(*number), JF_PRESENT, 1));
        }
        sim::ClearCounters(device().sim());
        states_.Fill(journal.get());
        return sim::CountersByProcess(device().sim()).back().calls["SendMessageW"];
    }
    Numbers Shown() {
        Numbers shown;
        for (int i = 0; i < states_.Count(); ++i) {
            shown.push_back(states_.At(i)->state_number);
        }
        return shown;
    }

    HWND window_ = nullptr;
    StateList states_;
};

TEST_F(StateListTest, FillingItTakesAFewStepsForEachState) {
    Numbers ascending(kStates);
    std::iota(ascending.begin(), ascending.end(), 1);
    const Numbers descending(ascending.rbegin(), ascending.rend());
    for (const Numbers& journal : {ascending, descending}) {
        EXPECT_GT(30 * kStates, Fill(journal));
        EXPECT_EQ(descending, Shown());
    }
}

TEST_F(StateListTest, AnyOrderBecomesTheDescendingOne) {
    Fill({3, 1, 5, 2, 4, 2});
    EXPECT_EQ((Numbers{5, 4, 3, 2, 2, 1}), Shown());
}

}  // namespace
}  // namespace tolvenar
