// SPDX-License-Identifier: Apache-2.0
// What the emulator program answers, and whom it tells of what.
#include "emulator_world_win.h"

namespace quarlin::sim::testing {
namespace {

TEST_F(EmulatorWorld, HandsTheScannerOverWhenItIsAsked) {
    Start();
    EXPECT_TRUE(ScannerIsHeld());
    EXPECT_EQ(Poll(), 1);
    EXPECT_TRUE(ScannerIsHeld());
    EXPECT_EQ(Connect(), 0);
    EXPECT_TRUE(ScannerIsHeld());
    EXPECT_EQ(Poll(), 3);
    EXPECT_FALSE(ScannerIsHeld());
    EXPECT_EQ(Poll(), 3);
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, LogsEachMessageWithItsAnswer) {
    const ListenerWindow listener;
    Start();
    Register(listener);
    Send(EmulatorMessage::kConnect, 3, 17);
    Send(EmulatorMessage::kGetConnectState, 4, -18);
    emulator_.Give(EmulatorOrder::kTakeBack);
    const std::vector<EmulatorCall> calls = Calls();
    ASSERT_EQ(calls.size(), 4u);
    const auto expect = [&calls](std::size_t i, EmulatorMessage message, std::uint64_t wParam, std::int64_t lParam,
                                 std::int64_t answer) {
        EXPECT_EQ(calls[i].message, message) << i;
        EXPECT_EQ(calls[i].wParam, wParam) << i;
        EXPECT_EQ(calls[i].lParam, lParam) << i;
        EXPECT_EQ(calls[i].answer, answer) << i;
        EXPECT_EQ(calls[i].failed, 0u) << i;
        EXPECT_LE(calls[i].milliseconds, calls[i].answered) << i;
    };
    expect(0, EmulatorMessage::kStateRegist, 0, static_cast<std::int64_t>(reinterpret_cast<LPARAM>(listener.Handle())),
           0);
    expect(1, EmulatorMessage::kConnect, 3, 17, 0);
    expect(2, EmulatorMessage::kGetConnectState, 4, -18, 3);
    expect(3, EmulatorMessage::kOnConnectState, 0, 0, 0);
}

class Refusing : public EmulatorWorld, public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(Refusing, KeepsTheScanner) {
    Start(L"--answer " + std::to_wstring(GetParam()));
    EXPECT_EQ(Connect(), static_cast<LRESULT>(GetParam()));
    EXPECT_EQ(Poll(), 1);
    EXPECT_TRUE(ScannerIsHeld());
    // Settings may be changed while it runs.
    emulator_.Use([](EmulatorState& state) { state.settings.connectAnswer = 0; });
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(Poll(), 3);
}

INSTANTIATE_TEST_SUITE_P(Answers, Refusing, ::testing::Values(1u, 3u, 4294967295u),
                         [](const auto& p) { return "With" + std::to_string(p.param); });

TEST_F(EmulatorWorld, HandsOverAtTheOrderedPoll) {
    Start(L"--hand-over-at 4 --state-before 2");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Connect(), 0);
        for (int poll = 1; poll < 4; ++poll) {
            EXPECT_EQ(Poll(), 2) << poll;
            EXPECT_TRUE(ScannerIsHeld()) << poll;
        }
        EXPECT_EQ(Poll(), 3);
        EXPECT_FALSE(ScannerIsHeld());
        emulator_.Give(EmulatorOrder::kTakeBack);
        EXPECT_EQ(Poll(), 1);
    }
}

TEST_F(EmulatorWorld, CountsThePollsSinceTheLastRequest) {
    Start(L"--hand-over-at 3");
    Connect();
    Poll();
    Poll();
    Connect();
    EXPECT_EQ(Poll(), 1);
    EXPECT_EQ(Poll(), 1);
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, NeverHandsOver) {
    Start(L"--hand-over-at never");
    EXPECT_EQ(Connect(), 0);
    for (int poll = 1; poll <= 20; ++poll) {
        EXPECT_EQ(Poll(), 1) << poll;
    }
    EXPECT_TRUE(ScannerIsHeld());
}

TEST_F(EmulatorWorld, AnswersLate) {
    constexpr std::uint64_t kDelay = 300;
    Start(L"--connect-delay 300 --state-delay 300");
    const ULONGLONG before = GetTickCount64();
    EXPECT_EQ(Connect(), 0);
    const ULONGLONG connected = GetTickCount64();
    EXPECT_EQ(Poll(), 3);
    const ULONGLONG polled = GetTickCount64();
    EXPECT_GE(connected - before, kDelay);
    EXPECT_GE(polled - connected, kDelay);
    for (const EmulatorCall& call : Calls()) {
        EXPECT_GE(call.answered - call.milliseconds, kDelay);
    }
}

TEST_F(EmulatorWorld, EndsInTheMiddleOfALateAnswer) {
    Start(L"--connect-delay 60000");
    std::thread asking([] { Connect(); });
    // Its window does not answer from now on; it is told to end all the same.
    emulator_.End();
    asking.join();
    EXPECT_EQ(FindEmulator(), nullptr);
}

TEST_F(EmulatorWorld, TakesTheScannerBackAndTellsTheListener) {
    // As a program does that learns of a change: it asks what it is.
    const ListenerWindow listener([] { return Poll() * 100; });
    Start(L"--notice sent");
    Register(listener);
    Connect();
    Poll();
    emulator_.Give(EmulatorOrder::kTakeBack);
    EXPECT_TRUE(ScannerIsHeld());
    // A sent notice has been answered when the order is carried out.
    EXPECT_EQ(listener.Notices(), 1);
    EXPECT_EQ(Calls().back().message, EmulatorMessage::kOnConnectState);
    EXPECT_EQ(Calls().back().answer, 100);

    emulator_.Use([](EmulatorState& state) { state.settings.notice = EmulatorNotice::kPosted; });
    emulator_.Give(EmulatorOrder::kHandOver);
    EXPECT_FALSE(ScannerIsHeld());
    ASSERT_TRUE(listener.WaitForNotices(2));
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, TellsOfAChangeThatIsNone) {
    const ListenerWindow listener;
    Start(L"--handed-over");
    Register(listener);
    emulator_.Give(EmulatorOrder::kNotify);
    ASSERT_TRUE(listener.WaitForNotices(1));
    EXPECT_EQ(Poll(), 3);
    EXPECT_FALSE(ScannerIsHeld());
}

TEST_F(EmulatorWorld, SaysNothingWhenItIsToldSo) {
    const ListenerWindow listener;
    Start(L"--notice none");
    Register(listener);
    emulator_.Give(EmulatorOrder::kTakeBack);
    emulator_.Use([](EmulatorState& state) { state.settings.notice = EmulatorNotice::kSent; });
    emulator_.Give(EmulatorOrder::kNotify);
    EXPECT_EQ(listener.Notices(), 1);
}

TEST_F(EmulatorWorld, TellsTheListenerBeforeItAnswersARequest) {
    const ListenerWindow listener;
    Start(L"--notice-in-connect sent");
    Register(listener);
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(listener.Notices(), 1);
    const std::vector<EmulatorCall> calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1].message, EmulatorMessage::kOnConnectState);
    EXPECT_EQ(calls[2].message, EmulatorMessage::kConnect);
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, NotesAListenerThatDoesNotAnswer) {
    HANDLE const goOn = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        const ListenerWindow listener([goOn] {
            WaitForSingleObject(goOn, EmulatorControl::kPatience);
            return LRESULT{0};
        });
        Start(L"--notice sent --notice-timeout 200");
        Register(listener);
        emulator_.Give(EmulatorOrder::kTakeBack);
        EXPECT_EQ(Calls().back().failed, 1u);
        SetEvent(goOn);
        ASSERT_TRUE(listener.WaitForNotices(1));
    }
    CloseHandle(goOn);
    // The listener has gone.
    emulator_.Give(EmulatorOrder::kNotify);
    EXPECT_EQ(Calls().back().failed, 1u);
}

}  // namespace
}  // namespace quarlin::sim::testing
