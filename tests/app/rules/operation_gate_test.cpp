#include "app/rules/operation_gate.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace tolvenar {
namespace {

// Notes how the gate looks from outside whenever one of its flags was written.
struct WatchedFlag {
    WatchedFlag(bool first) : value(first) {}
    WatchedFlag& operator=(bool next);
    operator bool() const { return value; }
    bool value;
};
using WatchedGate = OperationGateOf<WatchedFlag>;

struct Look {
    bool is_occupied;
    bool lists_are_free;
};
std::unique_ptr<WatchedGate> watched;
std::vector<Look> looks;

WatchedFlag& WatchedFlag::operator=(bool next) {
    value = next;
    looks.push_back({watched->IsOccupied(), watched->ListsAreFree()});
    return *this;
}

WatchedGate& NewWatchedGate() {
    watched = std::make_unique<WatchedGate>();
    looks.clear();
    return *watched;
}

constexpr int kRestoreButton = 1002, kApplyButton = 1037;

OperationRequest Backup(const char16_t* description) {
    OperationRequest request;
    request.kind = OperationKind::kBackup;
    std::u16string(description).copy(request.description, kDescriptionUnits - 1);
    return request;
}

OperationRequest Restore(int button, std::int32_t state_number = kNoState) {
    OperationRequest request;
    request.kind = OperationKind::kRestore;
    request.button = button;
    request.state_number = state_number;
    return request;
}

TEST(OperationGateTest, ARequestArrivesAsItWasPut) {
    OperationGate gate;
    ASSERT_TRUE(gate.Put(Restore(kRestoreButton, 7)));
    OperationRequest taken = Restore(kRestoreButton);
    EXPECT_EQ(Taking::kTaken, gate.Take(taken));
    EXPECT_EQ(7, taken.state_number);
    gate.End();

    ASSERT_TRUE(gate.Put(Backup(u"Before the holidays")));
    taken = Backup(u"");
    EXPECT_EQ(Taking::kTaken, gate.Take(taken));
    EXPECT_EQ(std::u16string(u"Before the holidays"), taken.description);
}

TEST(OperationGateTest, ARequestIsTakenOnce) {
    OperationGate gate;
    ASSERT_TRUE(gate.Put(Backup(u"first")));
    OperationRequest taken = Backup(u"");
    ASSERT_EQ(Taking::kTaken, gate.Take(taken));
    gate.End();
    taken = Backup(u"");
    EXPECT_EQ(Taking::kOnlyAMessage, gate.Take(taken));
    EXPECT_EQ(std::u16string(), taken.description);
}

TEST(OperationGateTest, AMessageWithoutARequestBeginsAnOperationToo) {
    OperationGate gate;
    OperationRequest taken = Restore(kApplyButton);
    EXPECT_EQ(Taking::kOnlyAMessage, gate.Take(taken));
    EXPECT_EQ(kApplyButton, taken.button);
    EXPECT_EQ(kNoState, taken.state_number);
    EXPECT_TRUE(gate.IsBusy());
    EXPECT_TRUE(gate.IsOccupied());
    EXPECT_FALSE(gate.ListsAreFree());
}

TEST(OperationGateTest, WhatIsOccupiedFromThePostingToTheEnd) {
    OperationGate gate;
    EXPECT_FALSE(gate.IsOccupied());
    EXPECT_TRUE(gate.ListsAreFree());
    ASSERT_TRUE(gate.Put(Backup(u"")));
    EXPECT_TRUE(gate.IsOccupied());
    EXPECT_FALSE(gate.IsBusy());
    EXPECT_FALSE(gate.ListsAreFree());
    OperationRequest taken = Backup(u"");
    gate.Take(taken);
    EXPECT_TRUE(gate.IsOccupied());
    EXPECT_TRUE(gate.IsBusy());
    EXPECT_FALSE(gate.ListsAreFree());
    gate.ReleaseLists();
    EXPECT_TRUE(gate.IsOccupied());
    EXPECT_TRUE(gate.IsBusy());
    EXPECT_TRUE(gate.ListsAreFree());
    gate.End();
    EXPECT_FALSE(gate.IsOccupied());
    EXPECT_FALSE(gate.IsBusy());
    EXPECT_TRUE(gate.ListsAreFree());
}

TEST(OperationGateTest, AnOperationThatNeverReleasedItsListsDoesSoAtItsEnd) {
    OperationGate gate;
    OperationRequest taken = Backup(u"");
    gate.Take(taken);
    gate.End();
    EXPECT_TRUE(gate.ListsAreFree());
}

TEST(OperationGateTest, ARequestThatCouldNotBePostedIsGone) {
    OperationGate gate;
    ASSERT_TRUE(gate.Put(Backup(u"lost")));
    gate.Withdraw();
    EXPECT_FALSE(gate.IsOccupied());
    EXPECT_TRUE(gate.ListsAreFree());
    OperationRequest taken = Backup(u"");
    EXPECT_EQ(Taking::kOnlyAMessage, gate.Take(taken));
    EXPECT_EQ(std::u16string(), taken.description);
}

TEST(OperationGateTest, ASecondRequestDoesNotReplaceTheOneOnItsWay) {
    OperationGate gate;
    ASSERT_TRUE(gate.Put(Backup(u"first")));
    EXPECT_FALSE(gate.Put(Backup(u"second")));
    OperationRequest taken = Backup(u"");
    EXPECT_EQ(Taking::kTaken, gate.Take(taken));
    EXPECT_EQ(std::u16string(u"first"), taken.description);
}

TEST(OperationGateTest, UnderAnOperationARequestIsDroppedAndNoLongerPending) {
    OperationGate gate;
    OperationRequest running = Backup(u"");
    gate.Take(running);
    ASSERT_TRUE(gate.Put(Backup(u"second")));
    OperationRequest taken = Backup(u"");
    EXPECT_EQ(Taking::kDropped, gate.Take(taken));
    EXPECT_EQ(std::u16string(), taken.description);
    EXPECT_TRUE(gate.IsBusy());
    gate.End();
    EXPECT_FALSE(gate.IsOccupied());
    EXPECT_EQ(Taking::kOnlyAMessage, gate.Take(taken));
}

// The other program's message is done or dropped; the page's comes behind it.
TEST(OperationGateTest, AMessageOfAnotherKindOrButtonLeavesTheRequestAlone) {
    for (const OperationRequest& foreign : {Backup(u""), Restore(kRestoreButton)}) {
        OperationGate gate;
        ASSERT_TRUE(gate.Put(Restore(kApplyButton, 3)));
        OperationRequest taken = foreign;
        EXPECT_EQ(Taking::kOnlyAMessage, gate.Take(taken));
        EXPECT_EQ(Taking::kDropped, gate.Take(taken));
        EXPECT_EQ(kNoState, taken.state_number);
        gate.ReleaseLists();
        EXPECT_FALSE(gate.ListsAreFree());
        gate.End();
        EXPECT_TRUE(gate.IsOccupied());
        taken = Restore(kApplyButton);
        EXPECT_EQ(Taking::kTaken, gate.Take(taken));
        EXPECT_EQ(3, taken.state_number);
    }
}

// The other thread may look between any two writes.
TEST(OperationGateTest, NoMomentIsLeftInWhichNeitherRequestNorOperationIsSeen) {
    WatchedGate& gate = NewWatchedGate();
    for (const bool is_put : {true, false}) {
        looks.clear();
        if (is_put) {
            gate.Put(Backup(u""));
        }
        OperationRequest taken = Backup(u"");
        gate.Take(taken);
        for (std::size_t i = is_put ? 0 : 1; i < looks.size(); ++i) {
            EXPECT_TRUE(looks[i].is_occupied) << i;
        }
        for (const Look& look : looks) {
            EXPECT_FALSE(look.lists_are_free);
        }
        looks.clear();
        gate.ReleaseLists();
        gate.End();
        for (const Look& look : looks) {
            EXPECT_TRUE(look.lists_are_free);
        }
        EXPECT_FALSE(looks.back().is_occupied);
        looks.pop_back();
        for (const Look& look : looks) {
            EXPECT_TRUE(look.is_occupied);
        }
    }
}

// A request that comes under an operation is dropped by it, not by the one behind.
TEST(OperationGateTest, ADroppedRequestLeavesNoSuchMomentEither) {
    WatchedGate& gate = NewWatchedGate();
    OperationRequest taken = Backup(u"");
    gate.Take(taken);
    gate.Put(Backup(u""));
    looks.clear();
    gate.Take(taken);
    gate.Withdraw();
    ASSERT_EQ(2u, looks.size());
    EXPECT_TRUE(looks[0].is_occupied && looks[1].is_occupied);
}

// The main thread may put one at any moment, which must not be lost.
TEST(OperationGateTest, AMessageThatMeetsNoRequestDoesNotWriteItsFlag) {
    WatchedGate& gate = NewWatchedGate();
    OperationRequest taken = Backup(u"");
    gate.Take(taken);
    looks.clear();
    EXPECT_EQ(Taking::kDropped, gate.Take(taken));
    EXPECT_TRUE(looks.empty());
}

}  // namespace
}  // namespace tolvenar
