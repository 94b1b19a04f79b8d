// SPDX-License-Identifier: Apache-2.0
// The functions of the application that receive swipes: their numbers, their order, and what they do to their own list.
#include "msr/callback_list.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using msr::CallbackList;
using msr::CCallbackMgr;
using msr::NextCallbackId;

// Callbacks are plain functions: what they saw and what they are to do lies here.
struct Stage {
    std::string calls;
    std::vector<const MagStripeData*> records;
    std::vector<MagStripeData> contents;
    // Done by the callback of that name, within its call.
    std::function<void()> a;
    std::function<void()> b;
    std::function<void()> c;
};
Stage stage;

void Receive(char name, const std::function<void()>& act, const MagStripeData* record) {
    stage.calls += name;
    stage.records.push_back(record);
    stage.contents.push_back(*record);
    if (act) {
        act();
    }
}

void A(const MagStripeData* record) {
    Receive('a', stage.a, record);
}
void B(const MagStripeData* record) {
    Receive('b', stage.b, record);
}
void C(const MagStripeData* record) {
    Receive('c', stage.c, record);
}

class CardCallbacks : public testing::Test {
  protected:
    CardCallbacks() { stage = {}; }
    ~CardCallbacks() override { stage = {}; }

    // The callbacks of one swipe, in order.
    std::string Swipe() {
        stage.calls.clear();
        list_.Invoke(record_);
        return stage.calls;
    }

    CallbackList list_;
    MagStripeData record_{};
};

TEST(CardCallbackId, CountsUpAndLeavesOutZero) {
    EXPECT_EQ(NextCallbackId(0), 1U);
    EXPECT_EQ(NextCallbackId(1), 2U);
    EXPECT_EQ(NextCallbackId(0x7FFFFFFE), 0x7FFFFFFFU);
    EXPECT_EQ(NextCallbackId(0x7FFFFFFF), 0x80000000U);
    EXPECT_EQ(NextCallbackId(0xFFFFFFFE), 0xFFFFFFFFU);
    EXPECT_EQ(NextCallbackId(0xFFFFFFFF), 1U);
}

TEST_F(CardCallbacks, GetConsecutiveIds) {
    const std::uint32_t first = list_.Add(&A);
    EXPECT_NE(first, 0U);
    EXPECT_EQ(list_.Add(&B), NextCallbackId(first));
    EXPECT_EQ(list_.Add(&C), NextCallbackId(NextCallbackId(first)));
}

TEST_F(CardCallbacks, NeverGetAnIdAgain) {
    std::set<std::uint32_t> ids;
    for (int i = 0; i < 100; ++i) {
        const std::uint32_t id = list_.Add(&A);
        EXPECT_TRUE(ids.insert(id).second) << id;
        EXPECT_TRUE(list_.Remove(id));
        EXPECT_TRUE(ids.insert(list_.Add(&A)).second);
        list_.Clear();
    }
}

// A number from before the library was closed must not name a function of the next session.
TEST_F(CardCallbacks, CountOnFromOneListToTheNext) {
    std::uint32_t last = 0;
    {
        CallbackList earlier;
        last = earlier.Add(&A);
    }
    CallbackList later;
    EXPECT_EQ(later.Add(&A), NextCallbackId(last));
    EXPECT_FALSE(later.Remove(last));
}

TEST_F(CardCallbacks, AreRefusedWhenNull) {
    const std::uint32_t before = list_.Add(&A);
    EXPECT_EQ(list_.Add(nullptr), 0U);
    EXPECT_FALSE(list_.Remove(0));
    EXPECT_EQ(Swipe(), "a");
    // And take no number.
    EXPECT_EQ(list_.Add(&B), NextCallbackId(before));
}

TEST_F(CardCallbacks, ReceiveASwipeInTheOrderInWhichTheyWereAdded) {
    list_.Add(&C);
    list_.Add(&A);
    list_.Add(&B);
    EXPECT_EQ(Swipe(), "cab");
    EXPECT_EQ(Swipe(), "cab");
}

TEST_F(CardCallbacks, AddedTwiceReceiveASwipeTwice) {
    const std::uint32_t first = list_.Add(&A);
    list_.Add(&B);
    const std::uint32_t second = list_.Add(&A);
    EXPECT_NE(first, second);
    EXPECT_EQ(Swipe(), "aba");
    EXPECT_TRUE(list_.Remove(first));
    EXPECT_EQ(Swipe(), "ba");
    EXPECT_TRUE(list_.Remove(second));
    EXPECT_EQ(Swipe(), "b");
}

TEST_F(CardCallbacks, KeepTheirOrderWhenOneIsRemoved) {
    for (const int removed : {0, 1, 2}) {
        list_.Clear();
        const std::uint32_t ids[] = {list_.Add(&A), list_.Add(&B), list_.Add(&C)};
        EXPECT_TRUE(list_.Remove(ids[removed]));
        EXPECT_EQ(Swipe(), std::string("abc").erase(static_cast<std::size_t>(removed), 1));
        EXPECT_FALSE(list_.Remove(ids[removed])) << "a second time";
    }
}

TEST_F(CardCallbacks, StayWhenAnUnknownIdIsRemoved) {
    const std::uint32_t a = list_.Add(&A);
    const std::uint32_t b = list_.Add(&B);
    for (const std::uint32_t unknown : {0U, a - 1, b + 1, 0xFFFFFFFFU, 0x80000000U | a}) {
        EXPECT_FALSE(list_.Remove(unknown)) << unknown;
    }
    EXPECT_EQ(Swipe(), "ab");
}

TEST_F(CardCallbacks, AreGoneAfterClear) {
    const std::uint32_t a = list_.Add(&A);
    list_.Add(&B);
    list_.Clear();
    EXPECT_EQ(Swipe(), "");
    EXPECT_FALSE(list_.Remove(a));
    list_.Clear();
    list_.Add(&C);
    EXPECT_EQ(Swipe(), "c");
}

TEST_F(CardCallbacks, ReceiveACopyOfTheRecordWithTheReadersBuffers) {
    std::uint8_t raw[888]{};
    MagStripeTrackData tracks[3]{};
    MagStripeTrackData maskedTracks[3]{};
    record_ = {.trackCount = 3,
               .tracks = tracks,
               .maskedTrackCount = 3,
               .maskedTracks = maskedTracks,
               .rawLength = 888,
               .raw = raw,
               .isEncrypted = true,
               .isValid = false};
    list_.Add(&A);
    list_.Add(&B);
    EXPECT_EQ(Swipe(), "ab");
    for (std::size_t call = 0; call < 2; ++call) {
        const MagStripeData& got = stage.contents.at(call);
        EXPECT_NE(stage.records.at(call), &record_);
        EXPECT_EQ(got.trackCount, 3);
        EXPECT_EQ(got.tracks, tracks);
        EXPECT_EQ(got.maskedTrackCount, 3);
        EXPECT_EQ(got.maskedTracks, maskedTracks);
        EXPECT_EQ(got.rawLength, 888U);
        EXPECT_EQ(got.raw, raw);
        EXPECT_TRUE(got.isEncrypted);
        EXPECT_FALSE(got.isValid);
    }
}

TEST_F(CardCallbacks, MayRemoveThemselvesWithinACall) {
    list_.Add(&A);
    const std::uint32_t b = list_.Add(&B);
    list_.Add(&C);
    bool removed = false;
    stage.b = [&] { removed = list_.Remove(b); };
    EXPECT_EQ(Swipe(), "abc");
    EXPECT_TRUE(removed);
    EXPECT_EQ(Swipe(), "ac");
}

TEST_F(CardCallbacks, AreNotCalledWhenRemovedBeforeTheirTurn) {
    list_.Add(&A);
    const std::uint32_t b = list_.Add(&B);
    list_.Add(&C);
    stage.a = [&] { list_.Remove(b); };
    EXPECT_EQ(Swipe(), "ac");
    EXPECT_EQ(Swipe(), "ac");
}

TEST_F(CardCallbacks, AreCalledOnceWhenOneBeforeThemIsRemoved) {
    const std::uint32_t a = list_.Add(&A);
    list_.Add(&B);
    list_.Add(&C);
    stage.b = [&] { list_.Remove(a); };
    EXPECT_EQ(Swipe(), "abc");
    EXPECT_EQ(Swipe(), "bc");
}

TEST_F(CardCallbacks, EndWithTheOneThatClearsTheList) {
    list_.Add(&A);
    list_.Add(&B);
    list_.Add(&C);
    stage.b = [&] { list_.Clear(); };
    EXPECT_EQ(Swipe(), "ab");
    EXPECT_EQ(Swipe(), "");
}

// Enough of them to move the list to another place in memory.
TEST_F(CardCallbacks, AddedWithinACallReceiveTheNextSwipe) {
    list_.Add(&A);
    list_.Add(&B);
    stage.a = [&] {
        for (int i = 0; i < 50; ++i) {
            list_.Add(&C);
        }
        stage.a = nullptr;
    };
    EXPECT_EQ(Swipe(), "ab");
    EXPECT_EQ(Swipe(), "ab" + std::string(50, 'c'));
}

TEST_F(CardCallbacks, ReplacedWithinACallWaitForTheNextSwipe) {
    const std::uint32_t a = list_.Add(&A);
    const std::uint32_t b = list_.Add(&B);
    stage.a = [&] {
        list_.Remove(b);
        list_.Add(&B);
        list_.Remove(a);
    };
    EXPECT_EQ(Swipe(), "a");
    EXPECT_EQ(Swipe(), "b");
}

TEST_F(CardCallbacks, MayAllBeReplacedWithinACall) {
    list_.Add(&A);
    list_.Add(&B);
    stage.a = [&] {
        list_.Clear();
        list_.Add(&C);
        list_.Add(&C);
    };
    EXPECT_EQ(Swipe(), "a");
    EXPECT_EQ(Swipe(), "cc");
}

TEST_F(CardCallbacks, WithoutAnyDropTheSwipe) {
    EXPECT_EQ(Swipe(), "");
}

TEST(CardCallback, IsNothingUntilItHasAFunction) {
    stage = {};
    const CCallbackMgr callback;
    EXPECT_EQ(callback.GetId(), 0U);
    callback.Invoke({});
    EXPECT_EQ(stage.calls, "");
}

TEST(CardCallback, KeepsFunctionAndIdWhenNullIsRefused) {
    stage = {};
    CCallbackMgr callback;
    EXPECT_FALSE(callback.SetCallback(nullptr));
    EXPECT_EQ(callback.GetId(), 0U);
    ASSERT_TRUE(callback.SetCallback(&A));
    const std::uint32_t id = callback.GetId();
    EXPECT_FALSE(callback.SetCallback(nullptr));
    EXPECT_EQ(callback.GetId(), id);
    callback.Invoke({});
    EXPECT_EQ(stage.calls, "a");
}

TEST(CardCallback, GetsTheNextIdWithEachFunction) {
    stage = {};
    CCallbackMgr callback;
    ASSERT_TRUE(callback.SetCallback(&A));
    const std::uint32_t id = callback.GetId();
    ASSERT_TRUE(callback.SetCallback(&B));
    EXPECT_EQ(callback.GetId(), NextCallbackId(id));
    callback.Invoke({});
    EXPECT_EQ(stage.calls, "b");
}

TEST(CardCallback, LosesBothWhenCleared) {
    stage = {};
    CCallbackMgr callback;
    ASSERT_TRUE(callback.SetCallback(&A));
    callback.Clear();
    EXPECT_EQ(callback.GetId(), 0U);
    callback.Invoke({});
    EXPECT_EQ(stage.calls, "");
}

}  // namespace
}  // namespace quarlin::test
