// SPDX-License-Identifier: Apache-2.0
// Callers on several threads: one after the other, and all of them behind the one that waits for the reader.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "rfid/other_thread_win.h"
#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"
#include "support/lock_watch_win.h"
#include "support/rendezvous.h"

namespace quarlin::test {
namespace {

const Failure kDone{QLERR_OK, "QLERR_OK"};
const Failure kNotSent{QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND"};
const Failure kNotReceived{QLERR_UHFRFID_COMMAND_RECEIVE, "QLERR_UHFRFID_COMMAND_RECEIVE"};
const Failure kBadHandle{QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE"};

// One caller waits for a reply that is held back.
struct BlockedReader {
    BlockedReader() {
        session.reader->AddFault(UhfFault::Hold());
        blocked.emplace([this] { return QLUHFRFID_SetPower(session.handle, 5); });
        replyWatch.AwaitWaits(1);
        session.reader.TakeReports();
    }
    ~BlockedReader() { session.reader->Unplug(); }

    // Waits until so many others stand behind the one that is blocked. When they do not come, everybody is let go.
    void AwaitWaiters(std::size_t count) {
        if (!LockWatch::AwaitWaiters(static_cast<int>(count))) {
            session.reader->Unplug();
            throw std::runtime_error("others do not wait for the one that is blocked");
        }
    }

    LockWatch lockWatch;
    ReplyWatch replyWatch;
    RfidSession session;
    std::optional<OtherThread> blocked;
};

enum class Release {
    kReply,
    kUnplug,
};

struct Waiter {
    const char* name;
    std::function<QLerr(OpenedReader& handle)> call;
    Failure afterReply;
    Failure afterUnplug;
};

std::ostream& operator<<(std::ostream& out, const Waiter& waiter) {
    return out << waiter.name;
}

QLerr OpenAnother(OpenedReader&) {
    void* const untouched = reinterpret_cast<void*>(0x5EED);
    void* handle = untouched;
    const QLerr result = QLUHFRFID_OpenReader(&handle);
    EXPECT_EQ(handle, untouched);
    return result;
}

QLerr AskPower(OpenedReader& handle) {
    unsigned int power = 77;
    const QLerr result = QLUHFRFID_GetPower(handle, &power);
    EXPECT_EQ(power, result == QLERR_OK ? 5U : 77U);
    return result;
}

const std::vector<Waiter> kWaiters{
    {"Command", AskPower, kDone, kNotSent},
    {"CloseReader", [](OpenedReader& handle) { return QLUHFRFID_CloseReader(handle.Release()); }, kDone, kDone},
    {"OpenReader", OpenAnother, kBadHandle, kBadHandle},
};

class RfidBlockedCaller : public ::testing::TestWithParam<std::tuple<Waiter, Release>> {};
INSTANTIATE_TEST_SUITE_P(HoldsBack, RfidBlockedCaller,
                         ::testing::Combine(::testing::ValuesIn(kWaiters),
                                            ::testing::Values(Release::kReply, Release::kUnplug)),
                         [](const auto& test) {
                             const bool replies = std::get<1>(test.param) == Release::kReply;
                             return std::string(std::get<0>(test.param).name) +
                                    (replies ? "UntilTheReply" : "UntilTheUnplug");
                         });

TEST_P(RfidBlockedCaller, WhoThenHasItsTurn) {
    const auto& [waiter, release] = GetParam();
    BlockedReader reader;
    OtherThread waiting([&] { return waiter.call(reader.session.handle); });
    reader.AwaitWaiters(1);
    EXPECT_FALSE(reader.blocked->HasEnded());
    EXPECT_FALSE(waiting.HasEnded());
    EXPECT_EQ(reader.session.reader.TakeReports(), Reports{});
    if (release == Release::kReply) {
        EXPECT_EQ(reader.session.reader->AnswerNow(), 1U);
    } else {
        reader.session.reader->Unplug();
    }
    const bool replies = release == Release::kReply;
    EXPECT_EQ(reader.blocked->Outcome(), replies ? kDone : kNotReceived);
    EXPECT_EQ(waiting.Outcome(), replies ? waiter.afterReply : waiter.afterUnplug);
}

TEST(RfidBlockedCallers, AllComeToAnEndWhenTheReaderIsUnplugged) {
    BlockedReader reader;
    std::vector<std::unique_ptr<OtherThread>> waiting;
    for (const ReaderFunction& function : ReaderFunctions()) {
        waiting.push_back(std::make_unique<OtherThread>([&] { return function.call(reader.session.handle); }));
    }
    reader.AwaitWaiters(waiting.size());
    reader.session.reader->Unplug();
    EXPECT_EQ(reader.blocked->Outcome(), kNotReceived);
    for (const auto& thread : waiting) {
        EXPECT_EQ(thread->Outcome(), kNotSent);
    }
    EXPECT_EQ(reader.session.reader.TakeReports(), Reports{});
    reader.session.reader->Plug();
    reader.session.handle.Reopen();
    EXPECT_DONE(QLUHFRFID_SetPower(reader.session.handle, 6));
}

// There is no moment at which it is too late.
TEST(RfidLateReply, IsAcceptedForEveryFunction) {
    RfidSession session;
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        session.reader->AddFault(UhfFault::Hold());
        OtherThread waiting([&] { return function.call(session.handle); });
        ASSERT_TRUE(session.reader->WaitForWaiting(1));
        EXPECT_FALSE(waiting.HasEnded());
        session.reader->AnswerNow();
        EXPECT_EQ(waiting.Outcome(), kDone);
    }
}

// A command that never is answered ends with the reader. The next one, after opening again, has its own reply.
TEST(RfidSilence, EndsWithTheReaderAndLeavesNothingBehind) {
    const ReplyWatch watch;
    RfidSession session;
    session.reader->AddFault(UhfFault::Silence());
    OtherThread waiting([&] { return QLUHFRFID_SetPower(session.handle, 5); });
    watch.AwaitWaits(1);
    EXPECT_FALSE(waiting.HasEnded());
    session.reader->Unplug();
    EXPECT_EQ(waiting.Outcome(), kNotReceived);
    session.reader->Plug();
    session.handle.Reopen();
    unsigned int power = 0;
    EXPECT_DONE(QLUHFRFID_GetPower(session.handle, &power));
    EXPECT_EQ(power, 27U);
}

// Each thread has words, values and errors of its own. The reader tells, in the order in which it happened, that every
// command was answered before the next one came.
TEST(RfidThreads, TakeTurnsAndEachGetsItsOwnReply) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 15;  // of four commands: the reader remembers a thousand transfers
    TagSettings tag = Label();
    tag.user.clear();
    for (std::uint8_t i = 0; i < kThreads; ++i) {
        tag.user.insert(tag.user.end(), {i, static_cast<std::uint8_t>(0xF0 + i)});
    }
    RfidSession session(WithTags({tag}));
    Rendezvous start(kThreads);
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&, number] {
            const auto own = static_cast<unsigned int>(number);
            Password password = AccessPassword();
            start.Arrive();
            for (int round = 0; round < kRounds; ++round) {
                unsigned char word[2] = {'?', '?'};
                EXPECT_DONE(QLUHFRFID_ReadTag(session.handle, 3, own, password.Data(), password.Length(), word, 1));
                EXPECT_EQ(word[0], own);
                EXPECT_EQ(word[1], 0xF0 + own);
                int sensitivity = -60 - number;
                EXPECT_DONE(QLUHFRFID_SetSensitivityForQuery(session.handle, &sensitivity));
                EXPECT_EQ(sensitivity, -60 - number);
                EXPECT_DONE(QLUHFRFID_SetPower(session.handle, own));
                // Behind the memory, where half of the threads have an error and the others none.
                const bool fails = number % 2 == 0;
                const QLerr result = QLUHFRFID_ReadTag(session.handle, 3, fails ? 100 : own, password.Data(),
                                                       password.Length(), word, 1);
                EXPECT_EQ(result, fails ? QLERR_UHFRFID_MEMORY_OVERRUN : QLERR_OK);
                EXPECT_EQ(FetchLastError(),
                          fails ? (Failure{QLERR_UHFRFID_MEMORY_OVERRUN, "QLERR_UHFRFID_MEMORY_OVERRUN"}) : kDone);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<sim::UhfTransfer> log = session.reader->Log();
    ASSERT_EQ(log.size(), 2U * kThreads * kRounds * 4);
    for (std::size_t i = 0; i < log.size(); i += 2) {
        SCOPED_TRACE(i);
        const Bytes& command = log[i].report;
        const Bytes& reply = log[i + 1].report;
        ASSERT_TRUE(log[i].fromHost);
        ASSERT_FALSE(log[i + 1].fromHost);
        ASSERT_EQ(reply[0], command[0] + 1);
        // A whole frame, with nothing of another one behind it.
        ASSERT_EQ(sim::UhfFrameOf(command).size(), command[1]);
    }
}

TEST(RfidLastError, BelongsToTheThreadOfTheCall) {
    RfidSession session;
    ASSERT_EQ(QLUHFRFID_SetPower(session.handle, 256), QLERR_INVALID_ARGUMENT);
    OtherThread other([&] {
        EXPECT_EQ(FetchLastError(), Failure{});
        session.reader->AddFault(UhfFault::Status(0x84));
        return QLUHFRFID_SetPower(session.handle, 5);
    });
    EXPECT_EQ(other.Outcome(), (Failure{QLERR_UHFRFID_MEMORY_LOCKED, "QLERR_UHFRFID_MEMORY_LOCKED"}));
    OtherThread third([&] { return QLUHFRFID_SetPower(session.handle, 6); });
    EXPECT_EQ(third.Outcome(), kDone);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT"}));
    EXPECT_EQ(FetchLastError(), Failure{});
}

// The later outcome takes the place of the earlier one, whichever of the two was a success.
TEST(RfidLastError, IsThatOfTheLastCall) {
    RfidSession session;
    ASSERT_EQ(QLUHFRFID_SetPower(session.handle, 256), QLERR_INVALID_ARGUMENT);
    ASSERT_EQ(QLUHFRFID_SetPower(session.handle, 5), QLERR_OK);
    EXPECT_EQ(FetchLastError(), kDone);
    ASSERT_EQ(QLUHFRFID_SetPower(session.handle, 5), QLERR_OK);
    ASSERT_EQ(QLUHFRFID_SetMillerForQuery(session.handle, nullptr), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "Invalid Argument"}));
}

}  // namespace
}  // namespace quarlin::test
