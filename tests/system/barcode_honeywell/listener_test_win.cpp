// SPDX-License-Identifier: Apache-2.0
// What may happen to the listener's window and thread: requests of others to end, and message loops in callbacks.
#include <string>
#include <thread>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"

namespace quarlin::test {
namespace {

// Handles what waits for the thread until the condition holds, as a message box does. Throws std::runtime_error when it
// does not in time.
template <typename Condition>
void RunMessages(const char* what, Condition condition) {
    Await(what, [&] {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
        return condition();
    });
}

// Takes the thread's messages without handling them until the wanted one is among them.
void EatMessagesUntil(UINT wanted) {
    Await("a message to eat", [&] {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == wanted) {
                return true;
            }
        }
        return false;
    });
}

std::thread BeginEnding() {
    return std::thread([] {
        EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
        EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
    });
}

class HoneywellListener : public EnabledHoneywell {
  protected:
    // The last message that was posted has been handled, and the window is still the same.
    void ExpectScanning(HWND window) {
        const std::size_t before = log_.Count();
        Scan("still here", "]A0");
        const std::string text = log_.AwaitCount(before + 1).text;
        EXPECT_TRUE(text.ends_with("still here")) << text;
        EXPECT_EQ(FindListenerWindow(), window);
    }
    static void ExpectEnding() {
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        EXPECT_EQ(FindListenerWindow(), nullptr);
        EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
    }
};

TEST_F(HoneywellListener, IsNotEndedByTheCloseOfAnother) {
    HWND const window = FindListenerWindow();
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(PostMessageW(window, WM_CLOSE, 0, 0));
        ExpectScanning(window);
    }
    ExpectEnding();
}

TEST_F(HoneywellListener, IsNotEndedByTheQuitOfAnother) {
    HWND const window = FindListenerWindow();
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(PostThreadMessageW(thread, WM_QUIT, static_cast<WPARAM>(i), 0));
        ExpectScanning(window);
    }
    // Posted to the window it is a message as any other.
    EXPECT_TRUE(PostMessageW(window, WM_QUIT, 0, 0));
    ExpectScanning(window);
    ExpectEnding();
}

// Programs use such messages for their own windows, and post them to all.
TEST_F(HoneywellListener, IsNotDeafenedByMessagesOfOthers) {
    HWND const window = FindListenerWindow();
    for (int connection = 0; connection < 2; ++connection) {
        for (const WPARAM number : {WPARAM{0}, WPARAM{1}, WPARAM{2}, WPARAM{3}, WPARAM{1000}, ~WPARAM{0}}) {
            for (const UINT message : {UINT{WM_USER}, UINT{WM_APP}, UINT{WM_APP} + 1}) {
                EXPECT_TRUE(PostMessageW(window, message, number, 0));
            }
            ExpectScanning(window);
        }
        ASSERT_SUCCESS(QLBCR_Disable());
        EXPECT_TRUE(PostMessageW(window, WM_APP, 0, 0));
        ASSERT_SUCCESS(QLBCR_Enable());
        EXPECT_TRUE(PostMessageW(window, WM_APP, 0, 0));
        ExpectScanning(window);
    }
}

TEST_F(HoneywellListener, IsNotEndedWhileNothingIsConnected) {
    ASSERT_SUCCESS(QLBCR_Disable());
    HWND const window = FindListenerWindow();
    EXPECT_TRUE(PostMessageW(window, WM_CLOSE, 0, 0));
    EXPECT_TRUE(PostThreadMessageW(GetWindowThreadProcessId(window, nullptr), WM_QUIT, 0, 0));
    SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kDeadline, nullptr);
    ASSERT_SUCCESS(QLBCR_Enable());
    ExpectScanning(window);
    ExpectEnding();
}

TEST_F(HoneywellListener, IsEndedOnceAllTheSameByWhoeverEndsIt) {
    for (int round = 0; round < 5; ++round) {
        HWND const window = FindListenerWindow();
        const DWORD thread = GetWindowThreadProcessId(window, nullptr);
        ASSERT_SUCCESS(QLBCR_Disable());
        for (int i = 0; i < 20; ++i) {
            PostMessageW(window, WM_CLOSE, 0, 0);
            PostThreadMessageW(thread, WM_QUIT, 0, 0);
        }
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        EXPECT_FALSE(IsWindow(window));
        Enable();
        ExpectScanning(FindListenerWindow());
    }
}

TEST_F(HoneywellListener, IsNotEndedByACallbackThatAsksToQuit) {
    HWND const window = FindListenerWindow();
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { PostQuitMessage(0); });
    for (int i = 0; i < 5; ++i) {
        ExpectScanning(window);
        log_.AwaitQuiet();
    }
    ExpectEnding();
    EXPECT_EQ(log_.Running(), 0);
}

TEST_F(HoneywellListener, EndsAlthoughACallbackEatsItsMessages) {
    for (const UINT eaten : {UINT{WM_CLOSE}, UINT{WM_QUIT}}) {
        const DWORD thread = GetWindowThreadProcessId(FindListenerWindow(), nullptr);
        std::thread ending;
        log_.Clear();
        log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
            ending = BeginEnding();
            if (eaten == WM_QUIT) {
                PostThreadMessageW(thread, WM_QUIT, 0, 0);
            }
            // A WM_CLOSE comes from Uninitialize, which waits for this callback by then.
            EatMessagesUntil(eaten);
        });
        Scan("text");
        log_.AwaitCount(1);
        log_.AwaitQuiet();
        ending.join();
        EXPECT_EQ(BarcodeState(), 0);
        EXPECT_EQ(FindListenerWindow(), nullptr);
        log_.DoInside({});
        Enable();
    }
    ExpectScanning(FindListenerWindow());
}

TEST_F(HoneywellListener, MayEndInsideACallbacksMessageLoop) {
    std::thread ending;
    log_.DoInside([&](const QLBCR_BARCODE_DATA& scan) {
        ending = BeginEnding();
        RunMessages("the window's end", [] { return FindListenerWindow() == nullptr; });
        // Uninitialize waits for this callback, not for the window alone: what it was given is still there.
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(scan.data), static_cast<std::size_t>(scan.dataLength)),
                  "text");
        EXPECT_NE(GetModuleHandleW(kHoneywellLibrary), nullptr);
    });
    Scan("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    ending.join();
    log_.DoInside({});
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_EQ(GetModuleHandleW(kHoneywellLibrary), nullptr);
    Enable();
    ExpectScanning(FindListenerWindow());
}

// What a record points to, whole.
std::string AllOf(const QLBCR_BARCODE_DATA& scan) {
    return std::string(reinterpret_cast<const char*>(scan.data), static_cast<std::size_t>(scan.dataLength)) + " " +
           std::string(reinterpret_cast<const char*>(scan.symbologyId),
                       static_cast<std::size_t>(scan.symbologyIdLength));
}

TEST_F(HoneywellListener, DeliversScansInsideACallbacksMessageLoop) {
    constexpr std::size_t kDepth = 4;
    const std::string prefix(100, '<');
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, prefix.c_str()));
    // In the order in which the callbacks ended, when all the inner ones had come and gone.
    std::vector<std::string> whole;
    log_.DoInside([&](const QLBCR_BARCODE_DATA& scan) {
        const std::string before = AllOf(scan);
        const std::size_t number = log_.Count();
        if (number < kDepth) {
            Scan("scan " + std::to_string(number), "]C" + std::to_string(number) + "00");
            RunMessages("the inner scan", [&] { return whole.size() == kDepth - number; });
        }
        EXPECT_EQ(AllOf(scan), before);
        whole.push_back(AllOf(scan));
    });
    Scan("scan 0", "]C000");
    log_.AwaitCount(kDepth);
    log_.AwaitQuiet();
    log_.DoInside({});
    EXPECT_EQ(whole, (std::vector<std::string>{prefix + "scan 3 ]C300", prefix + "scan 2 ]C200",
                                               prefix + "scan 1 ]C100", prefix + "scan 0 ]C000"}));
    EXPECT_EQ(log_.Texts(), (Texts{prefix + "scan 0", prefix + "scan 1", prefix + "scan 2", prefix + "scan 3"}));
    EXPECT_EQ(log_.MostAtOnce(), static_cast<int>(kDepth));
    ExpectScanning(FindListenerWindow());
}

// Those behind it come inside, one after the other.
TEST_F(HoneywellListener, LosesNoScanToACallbacksMessageLoop) {
    constexpr std::size_t kScans = 40;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        if (log_.Count() == 1) {
            RunMessages("all the others", [&] { return log_.Count() == kScans; });
        }
    });
    Texts sent;
    for (std::size_t i = 0; i < kScans; ++i) {
        sent.push_back(std::to_string(i));
        Scan(sent.back(), "]A0");
    }
    log_.AwaitCount(kScans);
    log_.AwaitQuiet();
    EXPECT_EQ(log_.Texts(), sent);
    EXPECT_EQ(log_.MostAtOnce(), 2);
}

// One scan for one start, however deep.
TEST_F(HoneywellListener, EndsAStartedScanningOnceInNestedCallbacks) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        if (log_.Count() == 1) {
            Scan("inner");
            RunMessages("the inner scan", [&] { return log_.Count() == 2 && log_.Running() == 1; });
        }
    });
    Scan("outer");
    log_.AwaitCount(2);
    log_.AwaitQuiet();
    log_.DoInside({});
    Scan("last");
    log_.AwaitCount(3);
    log_.AwaitQuiet();
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StopReadingSession 0 0"});
}

}  // namespace
}  // namespace quarlin::test
