// SPDX-License-Identifier: Apache-2.0
#include "patience.h"

#include <gtest/gtest.h>
#include <future>
#include <memory>
#include <thread>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

bool Never() {
    return false;
}

// A device that leaves its call without an answer until the test ends.
class SilentDevice {
  public:
    ~SilentDevice() {
        answer_.set_value();
        ended_.wait();
    }

    std::function<void()> Call() {
        return [answered = answer_.get_future().share(), end = end_] {
            answered.wait();
            end->set_value();
        };
    }

  private:
    std::promise<void> answer_;
    std::shared_ptr<std::promise<void>> end_ = std::make_shared<std::promise<void>>();
    std::future<void> ended_ = end_->get_future();
};

TEST(Patience, WaitsForACallOnAThreadOfItsOwn) {
    const Patience patience(std::nullopt, Never);
    std::thread::id callThread;
    patience.Await([&] { callThread = std::this_thread::get_id(); });
    EXPECT_NE(callThread, std::thread::id());
    EXPECT_NE(callThread, std::this_thread::get_id());
}

TEST(Patience, HandsOnWhatTheCallThrows) {
    const Patience patience(std::nullopt, Never);
    EXPECT_THROW(patience.Await([] { throw std::out_of_range("x"); }), std::out_of_range);
}

TEST(Patience, LeavesACallBehindThatTakesTooLong) {
    SilentDevice device;
    const Patience patience(milliseconds(60), Never);
    const auto begin = Patience::Clock::now();
    try {
        patience.Await(device.Call());
        FAIL() << "nothing was thrown";
    } catch (const AbandonedCall& failure) {
        EXPECT_EQ(failure.Status(), ExitStatus::kTimedOut);
        EXPECT_STREQ(failure.what(), "error: the reader did not answer within 0.1 s");
    }
    EXPECT_GE(Patience::Clock::now() - begin, milliseconds(60));
}

TEST(Patience, LeavesACallBehindWhenTheUserStops) {
    SilentDevice device;
    const Patience patience(std::nullopt, [] { return true; });
    try {
        patience.Await(device.Call());
        FAIL() << "nothing was thrown";
    } catch (const AbandonedCall& failure) {
        EXPECT_EQ(failure.Status(), ExitStatus::kInterrupted);
    }
}

TEST(Patience, LetsACallThatAnswersEndWhenTheUserStops) {
    const Patience patience(std::nullopt, [] { return true; });
    bool done = false;
    patience.Await([&done] { done = true; });
    EXPECT_TRUE(done);
}

TEST(Patience, GivesACallThatBeginsAfterTheEndAsMuchTimeAgain) {
    SilentDevice device;
    const auto start = Patience::Clock::now();
    const Patience patience(milliseconds(40), Never);
    while (!patience.IsExhausted(start)) {
        std::this_thread::yield();
    }
    const auto begin = Patience::Clock::now();
    EXPECT_FALSE(patience.IsExhausted(begin));
    EXPECT_THROW(patience.Await(device.Call()), AbandonedCall);
    EXPECT_GE(Patience::Clock::now() - begin, milliseconds(40));
}

TEST(Patience, IsExhaustedAfterTheUsualTimeWithoutATimeOut) {
    const Patience patience(std::nullopt, Never);
    EXPECT_EQ(patience.End(), std::nullopt);
    EXPECT_FALSE(patience.IsExhausted(Patience::Clock::now()));
    EXPECT_TRUE(patience.IsExhausted(Patience::Clock::now() - Patience::kUsualLimit));
    EXPECT_EQ(patience.Span(), "10.0 s");
}

}  // namespace
}  // namespace quarlin::qlctl
