// SPDX-License-Identifier: Apache-2.0
// Swipes and calls at the same time, on many threads.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "card/card_session_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using sim::magnesafe::NumberOf;

// Threads that have to come to their ends in time. When they do not, the process ends, because nothing else would.
class Workers {
  public:
    explicit Workers(DWORD deadline) : deadline_(deadline) {}
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() { Join(); }

    void Start(const char* name, std::function<void()> work) {
        running_[name] = true;
        threads_.emplace_back([this, name, work = std::move(work)] {
            try {
                work();
            } catch (const std::exception& failure) {
                ADD_FAILURE() << name << ": " << failure.what();
            }
            running_.at(name) = false;
        });
    }

    void Join() {
        for (const auto& [name, running] : running_) {
            if (!WaitUntil([&] { return !running; }, deadline_)) {
                std::printf("hung: %s\n", name.c_str());
                std::fflush(stdout);
                TerminateProcess(GetCurrentProcess(), 1);
            }
        }
        for (std::thread& thread : threads_) {
            thread.join();
        }
        threads_.clear();
        running_.clear();
    }

  private:
    DWORD deadline_;
    std::map<std::string, std::atomic<bool>> running_;
    std::vector<std::thread> threads_;
};

// Lets the other threads of a test go when one has done its work, or could not.
class WhenDone {
  public:
    explicit WhenDone(std::function<void()> action) : action_(std::move(action)) {}
    WhenDone(const WhenDone&) = delete;
    WhenDone& operator=(const WhenDone&) = delete;
    ~WhenDone() { action_(); }

  private:
    std::function<void()> action_;
};

// Two readers, indexes 0 and 1, listed; callback 0 is added.
struct TwoReaders {
    TwoReaders() {
        for (TestReader& reader : readers) {
            reader.Plug();
            ListReaders();
        }
        AddCallback();
    }

    void EnableBoth() const {
        for (const int index : {0, 1}) {
            Select(index);
            Enable();
        }
    }

    CardReaderTurn turn;
    SwipeLog log;
    std::array<TestReader, 2> readers{TestReader(WithSerial("A"), TestReader::Start::kUnplugged),
                                      TestReader(WithSerial("B"), TestReader::Start::kUnplugged)};
    CardSession session;
};

TEST(CardTwoReaders, SwipeAtTheSameTimeAndTheirCallbacksNeverOverlap) {
    constexpr std::uint32_t kSwipes = 300;
    constexpr std::uint32_t kAhead = 8;  // swipes that the system keeps for a slow program
    TwoReaders two;
    two.EnableBoth();
    std::array<std::atomic<std::uint32_t>, 2> arrived{};
    two.log.DoFirst([&](int, const MagStripeData* record) {
        const bool isFirst = record->raw[478] == 'A';
        arrived[isFirst ? 0 : 1] = NumberOf({record->raw, record->rawLength});
    });
    {
        Workers workers(60000);
        for (const std::size_t i : {0, 1}) {
            workers.Start(i == 0 ? "first reader" : "second reader", [&, i] {
                for (std::uint32_t swipe = 1; swipe <= kSwipes; ++swipe) {
                    Await("swipes", [&] { return arrived[i] + kAhead >= swipe; });
                    two.readers[i].Swipe();
                }
            });
        }
    }
    two.log.AwaitCount(2 * kSwipes);
    EXPECT_EQ(two.log.MostAtOnce(), 1);
    std::map<std::uint8_t, std::uint32_t> last;
    for (const LoggedSwipe& swipe : two.log.Swipes()) {
        std::uint32_t& before = last[swipe.raw.at(478)];
        ASSERT_EQ(NumberOf(swipe.raw), before + 1);
        before = NumberOf(swipe.raw);
    }
    EXPECT_EQ(last, (std::map<std::uint8_t, std::uint32_t>{{'A', kSwipes}, {'B', kSwipes}}));
}

TEST(CardCallbacks, ComeAndGoWhileSwipesArrive) {
    constexpr int kRounds = 300;
    EnabledReader enabled;
    std::atomic<bool> isAdded = false;
    std::atomic<int> calledAfterwards = 0;
    std::atomic<std::uint32_t> arrived = 0;
    enabled.Log().DoFirst([&](int callback, const MagStripeData* record) {
        if (callback == 0) {
            arrived = NumberOf({record->raw, record->rawLength});
        } else if (!isAdded) {
            ++calledAfterwards;
        }
    });
    std::atomic<bool> done = false;
    std::uint32_t sent = 0;
    {
        Workers workers(60000);
        workers.Start("swipes", [&] {
            while (!done) {
                Await("swipes", [&] { return arrived + 8 >= sent + 1; });
                enabled.Reader().Swipe();
                ++sent;
            }
        });
        workers.Start("callbacks", [&] {
            const WhenDone finally([&] { done = true; });
            for (int round = 0; round < kRounds; ++round) {
                isAdded = true;
                const unsigned int id = AddCallback(1);
                const std::uint32_t seen = arrived;
                if (round % 4 == 0) {
                    Await("a swipe", [&] { return arrived > seen; });
                }
                EXPECT_EQ(QLMSR_RemoveCallback(id), QLERR_OK);
                isAdded = false;
            }
        });
    }
    Await("the last swipe", [&] { return arrived == sent; });
    Disable();
    EXPECT_EQ(calledAfterwards, 0);
    // The callback that stayed has received every swipe, once.
    std::uint32_t number = 0;
    std::size_t others = 0;
    for (const LoggedSwipe& swipe : enabled.Log().Swipes()) {
        if (swipe.callback == 0) {
            ASSERT_EQ(NumberOf(swipe.raw), ++number);
        } else {
            ++others;
        }
    }
    EXPECT_EQ(number, sent);
    EXPECT_GT(others, 0U);
}

// Swipes arrive as fast as they can while every function is called: nothing hangs, and nothing is delivered that should
// not be.
TEST(CardEverythingAtOnce, NeverHangs) {
    constexpr int kToggles = 12;
    constexpr int kLooks = 6;
    TwoReaders two;
    two.EnableBoth();
    std::atomic<int> busy = 2;
    std::atomic<std::uint64_t> delivered = 0;
    two.log.DoFirst([&](int, const MagStripeData*) { ++delivered; });
    const auto whileBusy = [&](const std::function<void()>& work) {
        return [&busy, work] {
            while (busy > 0) {
                work();
            }
        };
    };
    {
        Workers workers(90000);
        for (TestReader& reader : two.readers) {
            workers.Start(&reader == &two.readers[0] ? "swipes of the first" : "swipes of the second",
                          whileBusy([&] { reader.Swipe(); }));
        }
        workers.Start("enabling and disabling", [&] {
            const WhenDone finally([&] { --busy; });
            for (int i = 0; i < kToggles; ++i) {
                EXPECT_EQ(QLMSR_SelectDevice(i % 2), QLERR_OK);
                EXPECT_EQ(QLMSR_Disable(), QLERR_OK);
                EXPECT_EQ(QLMSR_Enable(), QLERR_OK);
            }
        });
        workers.Start("looking for readers", [&] {
            const WhenDone finally([&] { --busy; });
            for (int i = 0; i < kLooks; ++i) {
                EXPECT_EQ(ListReaders().size(), 2U);
            }
        });
        workers.Start("asking", whileBusy([] {
                          bool enabled = false;
                          EXPECT_EQ(QLMSR_IsEnabled(&enabled), QLERR_OK);
                      }));
        workers.Start("adding and removing callbacks", whileBusy([] {
                          const unsigned int id = AddCallback(1);
                          EXPECT_EQ(QLMSR_RemoveCallback(id), QLERR_OK);
                      }));
    }
    EXPECT_GT(delivered, 0U);
    EXPECT_EQ(two.log.MostAtOnce(), 1);
    // Both readers are as they were: enabled, with their swipes arriving.
    for (const int index : {0, 1}) {
        Select(index);
        EXPECT_TRUE(IsEnabled());
        EXPECT_EQ(QLMSR_Disable(), QLERR_OK);
        EXPECT_EQ(QLMSR_Enable(), QLERR_OK);
    }
    const std::size_t count = two.log.Count();
    for (TestReader& reader : two.readers) {
        reader.Swipe();
    }
    two.log.AwaitCount(count + 2);
}

// The same with the end of it all, and with a reader that comes and goes.
TEST(CardEverythingAtOnce, NeverHangsWhileTheFamilyEndsAndStartsAgain) {
    constexpr int kRounds = 3;
    TwoReaders two;
    std::atomic<bool> done = false;
    {
        Workers workers(90000);
        workers.Start("swipes", [&] {
            while (!done) {
                two.readers[0].Swipe();
            }
        });
        workers.Start("plugging", [&] {
            while (!done) {
                two.readers[1].Unplug();
                two.readers[1].Plug();
            }
        });
        workers.Start("calls", [&] {
            while (!done) {
                // The reader may be going while it is asked for its identity.
                std::array<MagStripeReaderInfo, 4> list{};
                int count = 4;
                QLMSR_GetMagStripeDevices(list.data(), &count);
                const std::size_t before = two.log.Count();
                // Either of them may have either index.
                for (const int index : {0, 1}) {
                    QLMSR_SelectDevice(index);
                    QLMSR_Enable();
                    bool enabled = false;
                    QLMSR_IsEnabled(&enabled);
                }
                // The next look comes in the middle of swipes, if there are any.
                WaitUntil([&] { return two.log.Count() > before; }, 200);
            }
        });
        workers.Start("ending and starting", [&] {
            const WhenDone finally([&] { done = true; });
            for (int i = 0; i < kRounds; ++i) {
                EXPECT_EQ(QLMSR_Initialize(), QLERR_OK);
                const std::size_t count = two.log.Count();
                AddCallback();
                // A look that meets the other reader on its way out forgets all readers; the next one finds them.
                Await("a swipe", [&] { return two.log.Count() > count; });
                EXPECT_EQ(QLMSR_Uninitialize(), QLERR_OK);
                const std::size_t atTheEnd = two.log.Count();
                EXPECT_EQ(QLMSR_IsEnabled(nullptr), QLERR_INVALID_ARGUMENT);
                EXPECT_EQ(two.log.Count(), atTheEnd);
            }
        });
    }
    EXPECT_EQ(two.log.MostAtOnce(), 1);
}

}  // namespace
}  // namespace quarlin::test
