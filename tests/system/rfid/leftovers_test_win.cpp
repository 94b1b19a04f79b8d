// SPDX-License-Identifier: Apache-2.0
// What the family leaves behind: nothing, also when memory runs out.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <ostream>
#include <set>
#include <string>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"
#include "support/import_hook_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::test {
namespace {

struct Held {
    ResourceCount resources;
    std::size_t threads = 0;

    bool operator==(const Held&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Held& held) {
    return out << held.resources << ", " << held.threads << " threads";
}

Held Count() {
    Held held;
    held.threads = CountThreads();
    held.resources = CountResources();
    return held;
}

// The rounds leave nothing. The simulated reader runs in this process, and makes something for good now and then, when
// its threads meet: what stays after each of several runs of the same rounds is the library's.
void ExpectNothingLeft(int rounds, const std::function<void()>& round) {
    constexpr int kRuns = 4;
    Count();
    for (int run = 1; run <= kRuns; ++run) {
        const Held before = Count();
        for (int i = 0; i < rounds; ++i) {
            ASSERT_NO_FATAL_FAILURE(round());
        }
        const Held after = Count();
        if (after == before) {
            return;
        }
        if (run == kRuns) {
            EXPECT_EQ(after, before);
        }
    }
}

TEST(RfidLeftovers, NoneStayAfterRoundsOfOpeningAndClosing) {
    const RfidReaderTurn turn;
    TestReader reader;
    ExpectNothingLeft(10, [&] {
        const OpenedReader opened;
        ASSERT_DONE(QLUHFRFID_SetPower(opened, 5));
        reader->ClearLog();
    });
}

TEST(RfidLeftovers, NoneStayAfterOpeningsThatFail) {
    const RfidReaderTurn turn;
    UhfSettings other = TwoTags();
    other.product = 0x3994;
    const TestReader device(other);
    ExpectNothingLeft(10, [] {
        void* handle = nullptr;
        ASSERT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_DEVICENOTFOUND, "QLERR_UHFRFID_DEVICENOTFOUND");
    });
}

TEST(RfidLeftovers, NoneStayAfterManyExchangesGoodAndBad) {
    RfidSession session;
    ExpectNothingLeft(3, [&] {
        for (const ReaderFunction& function : ReaderFunctions()) {
            for (const std::uint8_t status : Bytes{0x00, 0x84}) {
                session.reader->AddFault(UhfFault::Status(status));
                function.call(session.handle);
            }
            session.reader->AddFault(UhfFault::Refuse());
            ASSERT_FAILURE(function.call(session.handle), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
        }
        session.reader->ClearLog();
    });
}

TEST(RfidLeftovers, NoneStayAfterRoundsOfUnplugging) {
    const RfidReaderTurn turn;
    TestReader reader;
    ExpectNothingLeft(6, [&] {
        const OpenedReader opened;
        reader->AddFault(UhfFault::UnplugDuring());
        ASSERT_FAILURE(QLUHFRFID_SetPower(opened, 5), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
        ASSERT_FAILURE(QLUHFRFID_SetPower(opened, 6), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
        reader->Plug();
        reader->ClearLog();
    });
}

// ---- without memory ----

DWORD failingThread = 0;
int allocations = 0;
int failingAllocation = 0;

void* FailingMalloc(std::size_t size) {
    if (GetCurrentThreadId() == failingThread && ++allocations == failingAllocation) {
        return nullptr;
    }
    return SystemFunction<void*(std::size_t)>("msvcrt.dll", "malloc")(size);
}

using Outcomes = std::set<std::pair<QLerr, std::string>>;

// Fails the call's allocations one by one until there are no more; gives what came of it.
Outcomes WithEachAllocationFailing(
    const std::function<QLerr()>& call, const std::function<void(QLerr)>& afterwards = [](QLerr) {}) {
    const ImportHook hook("msvcrt.dll", "malloc", &FailingMalloc);
    Outcomes outcomes;
    for (int number = 1;; ++number) {
        // A record that the thread has already would be used again.
        FetchLastError();
        failingAllocation = number;
        allocations = 0;
        failingThread = GetCurrentThreadId();
        const QLerr result = call();
        failingThread = 0;
        outcomes.emplace(result, FetchLastError().text);
        afterwards(result);
        if (allocations < number) {
            EXPECT_EQ(result, QLERR_OK);
            return outcomes;
        }
    }
}

// Without memory for the record of a success there is none: the code alone has to do.
TEST(RfidMemory, ThatIsShortFailsACommandBeforeItIsSentOrLosesTheRecordAlone) {
    RfidSession session;
    ASSERT_DONE(ReaderFunctions().front().call(session.handle));
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        // Tags are not needed, and one of them would not live to see the end.
        if (function.command != UhfCode::kInventory) {
            session.reader->AddFault(UhfFault::Status(0).Always());
        }
        session.reader.TakeReports();
        int sent = 0;
        const Outcomes outcomes = WithEachAllocationFailing([&] {
            if (std::string(function.name) == "GetNextTag") {
                session.reader->With([](sim::UhfEngine& engine) { engine.Execute(Bytes{0x43, 3, 1}); });
            }
            const QLerr result = function.call(session.handle);
            sent += result == QLERR_OK ? 1 : 0;
            return result;
        });
        EXPECT_EQ(outcomes,
                  (Outcomes{{QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM "}, {QLERR_OK, ""}, {QLERR_OK, "QLERR_OK"}}));
        EXPECT_EQ(session.reader.TakeReports(), Reports(static_cast<std::size_t>(sent), Report(function.frame)));
        session.reader->ClearFaults();
    }
}

TEST(RfidMemory, ThatIsShortFailsTheOpeningOrLosesTheRecordAlone) {
    const RfidReaderTurn turn;
    const TestReader reader;
    void* handle = nullptr;
    // Makes the lock.
    ASSERT_EQ(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT);
    const Outcomes outcomes = WithEachAllocationFailing([&] { return QLUHFRFID_OpenReader(&handle); },
                                                        [&](QLerr result) {
                                                            if (result == QLERR_OK) {
                                                                EXPECT_DONE(QLUHFRFID_CloseReader(handle));
                                                            } else {
                                                                EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
                                                            }
                                                        });
    EXPECT_EQ(outcomes,
              (Outcomes{{QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM"}, {QLERR_OK, ""}, {QLERR_OK, "QLERR_OK"}}));
}

}  // namespace
}  // namespace quarlin::test
