// SPDX-License-Identifier: Apache-2.0
// Asking the emulator program for the scanner before connecting.
#include <future>
#include <string>
#include <vector>

#include "barcode_emulator/emulator_test_win.h"

namespace quarlin::test {
namespace {

constexpr std::uint64_t kPause = 500;  // milliseconds
// The clock ticks every 16 ms, and on a busy machine it is late.
constexpr std::uint64_t kTick = 100;
constexpr std::uint64_t kAtOnce = 3 * kPause;

class EmulatorConnect : public EmulatorTest {
  protected:
    // Fails without connecting and without trying again.
    void ExpectNoConnection() {
        EXPECT_FAILURE(QLBCR_Enable(), QLERR_INTERNAL_ERROR, kNoConnection);
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SetPathName N6603 on USB 1"});
        EXPECT_EQ(BarcodeState(), 1);
    }
    static void ExpectPauses(const std::vector<EmulatorCall>& messages, std::size_t firstPoll) {
        for (std::size_t i = firstPoll + 1; i < messages.size(); ++i) {
            EXPECT_GE(messages[i].milliseconds - messages[i - 1].answered + kTick, kPause) << i;
            EXPECT_LT(messages[i].milliseconds - messages[i - 1].answered, 6 * kPause) << i;
        }
    }
};

TEST_F(EmulatorConnect, IsToldOfTheListenerOnce) {
    Start();
    int count = 0;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    ASSERT_EQ(count, 1);
    ASSERT_SUCCESS(QLBCR_Initialize());
    AwaitMessages(1);
    const std::vector<EmulatorCall> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(TextOf(messages[0]), kRegistered);
    EXPECT_EQ(messages[0].wParam, 0U);
    EXPECT_EQ(messages[0].lParam, reinterpret_cast<LPARAM>(FindListenerWindow()));
}

TEST_F(EmulatorConnect, GoesStraightToTheScannerWithoutTheProgram) {
    Start();
    InitializeAndRegister();
    emulator_.End();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    EXPECT_EQ(TakeMessageTexts(), Texts{});
}

TEST_F(EmulatorConnect, AsksForTheScannerFirst) {
    Start();
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled}));
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(EmulatorConnect, AsksAlsoWhenItCouldHaveIt) {
    Start(L"--handed-over");
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled}));
}

TEST_F(EmulatorConnect, FailsAtOnceWithoutTheWindow) {
    Start(L"--no-window");
    ASSERT_SUCCESS(QLBCR_Initialize());
    Engine().TakeCalls();
    const ULONGLONG before = GetTickCount64();
    ExpectNoConnection();
    EXPECT_LT(GetTickCount64() - before, kAtOnce);
    EXPECT_EQ(TakeMessageTexts(), Texts{});
    emulator_.Give(EmulatorOrder::kOpenWindow);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled}));
}

TEST_F(EmulatorConnect, FailsAtOnceWhenItIsRefused) {
    Start();
    InitializeAndRegister();
    for (const std::uint32_t answer : {1U, 3U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Set([&](EmulatorSettings& settings) { settings.connectAnswer = answer; });
        const ULONGLONG before = GetTickCount64();
        ExpectNoConnection();
        EXPECT_LT(GetTickCount64() - before, kAtOnce) << answer;
        EXPECT_EQ(TakeMessageTexts(), Texts{kAsked}) << answer;
    }
    Set([](EmulatorSettings& settings) { settings.connectAnswer = 0; });
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(EmulatorConnect, PollsUntilTheScannerIsHandedOver) {
    Start(L"--hand-over-at 4");
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    const std::vector<EmulatorCall> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 5U);
    EXPECT_EQ(TextOf(messages[0]), kAsked);
    ExpectPauses(messages, 1);
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
}

TEST_F(EmulatorConnect, TakesNoOtherAnswerForAHandover) {
    for (const std::uint32_t answer : {0U, 2U, 4U, 0xFFFFFFFFU}) {
        if (!emulator_.IsRunning()) {
            Start(L"--hand-over-at 2");
            InitializeAndRegister();
        }
        Set([&](EmulatorSettings& settings) { settings.stateBefore = answer; });
        EXPECT_SUCCESS(QLBCR_Enable());
        EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled, kPolled})) << answer;
        EXPECT_SUCCESS(QLBCR_Disable());
        Set([](EmulatorSettings& settings) { settings.notice = EmulatorNotice::kNone; });
        emulator_.Give(EmulatorOrder::kTakeBack);
        Engine().TakeCalls();
    }
}

TEST_F(EmulatorConnect, TakesTheTenthPoll) {
    Start(L"--hand-over-at 10");
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessages().size(), 11U);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(EmulatorConnect, GivesUpAfterTenPolls) {
    Start(L"--hand-over-at never");
    InitializeAndRegister();
    ExpectNoConnection();
    const ULONGLONG end = GetTickCount64();
    const std::vector<EmulatorCall> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 11U);
    EXPECT_EQ(TextOf(messages[0]), kAsked);
    ExpectPauses(messages, 1);
    // Another one after the last of them.
    EXPECT_GE(end - messages.back().answered + kTick, kPause);
    EXPECT_LT(end - messages.back().answered, 6 * kPause);
    EXPECT_GE(end - messages[1].answered + kTick, 10 * kPause);
    // It can be asked again.
    Set([](EmulatorSettings& settings) { settings.handOverAtPoll = 1; });
    EXPECT_SUCCESS(QLBCR_Enable());
}

TEST_F(EmulatorConnect, WaitsForLateAnswers) {
    Start(L"--connect-delay 1200 --state-delay 700 --hand-over-at 2");
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    const std::vector<EmulatorCall> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 3U);
    ExpectPauses(messages, 1);
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    Set([](EmulatorSettings& settings) { settings.stateDelay = 0; });
}

TEST_F(EmulatorConnect, AsksInEachRound) {
    Start();
    InitializeAndRegister();
    Engine().Refuse(HoneywellFunction::kConnect, 1, 2);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled, kAsked, kPolled, kAsked, kPolled}));
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kConnectCalls[0], "Connect", "Connect", "Connect"}));
}

TEST_F(EmulatorConnect, FailsWithTheFirstRoundInWhichItIsRefused) {
    Start();
    InitializeAndRegister();
    Engine().Refuse(HoneywellFunction::kConnect, 1, 1);
    Engine().HoldNext(HoneywellFunction::kConnect);
    std::future<Failure> enabling = std::async(std::launch::async, [] {
        const QLerr result = QLBCR_Enable();
        Failure failure = FetchLastError();
        EXPECT_EQ(result, failure.code);
        return failure;
    });
    Engine().AwaitHeld();
    Set([](EmulatorSettings& settings) { settings.connectAnswer = 1; });
    Engine().LetGo();
    EXPECT_EQ(enabling.get(), (Failure{QLERR_INTERNAL_ERROR, kNoConnection}));
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled, kAsked}));
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(EmulatorConnect, IsNotHinderedByANoticeFromInsideTheAnswer) {
    Start();
    InitializeAndRegister();
    for (const EmulatorNotice notice : {EmulatorNotice::kSent, EmulatorNotice::kPosted}) {
        Set([&](EmulatorSettings& settings) { settings.noticeInConnect = notice; });
        EXPECT_SUCCESS(QLBCR_Enable());
        const Texts messages = TakeMessageTexts();
        ASSERT_GE(messages.size(), 3U);
        // The notice is noted first, because it is over first; it has been answered.
        EXPECT_EQ(Texts(messages.begin(), messages.begin() + 3), (Texts{kNoticed, kAsked, kPolled}));
        EXPECT_EQ(BarcodeState(), 2);
        EXPECT_SUCCESS(QLBCR_Disable());
        Engine().TakeCalls();
        Set([](EmulatorSettings& settings) {
            settings.noticeInConnect = EmulatorNotice::kNone;
            settings.notice = EmulatorNotice::kNone;
        });
        emulator_.Give(EmulatorOrder::kTakeBack);
        TakeMessages();
    }
}

// A window of the emulator's class without the program, or with one of another name: registered with, but not asked.
class EmulatorOfAnotherName : public EmulatorConnect, public ::testing::WithParamInterface<const wchar_t*> {};

TEST_P(EmulatorOfAnotherName, IsNotAsked) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    for (int i = 0; i < 2; ++i) {
        path.resize(path.find_last_of(L"\\/"));
    }
    emulator_.Start(path + L"\\sim\\" + GetParam(), L"--handed-over --answer 1");
    InitializeAndRegister();
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(TakeMessageTexts(), Texts{});
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
}

std::string NameOfProgram(const ::testing::TestParamInfo<const wchar_t*>& info) {
    return info.index == 0 ? "OtherName" : "OtherCase";
}

INSTANTIATE_TEST_SUITE_P(Programs, EmulatorOfAnotherName,
                         ::testing::Values(L"other_name\\Another_Program.exe", L"other_case\\scn2d_emu_usb.exe"),
                         NameOfProgram);

}  // namespace
}  // namespace quarlin::test
