// SPDX-License-Identifier: Apache-2.0
// While QLBCR_Enable waits for the emulator's answer, the windows of its thread are sent messages, and may call the
// library. The emulator may also end while it is asked.
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "barcode_emulator/emulator_test_win.h"

namespace quarlin::test {
namespace {

// A window of this thread, which does something when it is sent a message.
class ThreadWindow {
  public:
    explicit ThreadWindow(std::function<void()> action)
        : action_(std::move(action)),
          window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        if (window_ == nullptr) {
            throw std::runtime_error("no window");
        }
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
    }
    ThreadWindow(const ThreadWindow&) = delete;
    ThreadWindow& operator=(const ThreadWindow&) = delete;
    ~ThreadWindow() { DestroyWindow(window_); }

    // From another thread; returns at once. The window's thread takes it up when it waits for messages.
    void Tell() const { SendNotifyMessageW(window_, kAct, 0, 0); }
    int Times() const { return times_; }

  private:
    static constexpr UINT kAct = WM_APP + 7;

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kAct) {
            return DefWindowProcW(window, message, wParam, lParam);
        }
        auto* const self = reinterpret_cast<ThreadWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        ++self->times_;
        self->action_();
        return 0;
    }

    std::function<void()> action_;
    HWND window_;
    int times_ = 0;
};

class EmulatorEnable : public EmulatorTest {
  protected:
    // Enables; the window is told while the library is on its way to ask the emulator, so that it acts inside.
    QLerr EnableTelling(const ThreadWindow& window) {
        Engine().HoldNext(HoneywellFunction::kSetPathName);
        std::thread telling([&] {
            Engine().AwaitHeld();
            window.Tell();
            Engine().LetGo();
        });
        const QLerr result = QLBCR_Enable();
        telling.join();
        return result;
    }
};

TEST_F(EmulatorEnable, LetsItsThreadChangeNothing) {
    Start(L"--connect-delay 300");
    InitializeAndRegister();
    const ThreadWindow window([] {
        int count = 1;
        QLBCR_DEVICE_INFO info{};
        const std::vector<std::pair<const char*, std::function<QLerr()>>> calls = {
            {"Uninitialize", [] { return QLBCR_Uninitialize(); }},
            {"Disable", [] { return QLBCR_Disable(); }},
            {"Enable", [] { return QLBCR_Enable(); }},
            {"Initialize", [] { return QLBCR_Initialize(); }},
            {"SelectDevice", [] { return QLBCR_SelectDevice(0); }},
            {"GetBarcodeDevices", [&] { return QLBCR_GetBarcodeDevices(&info, &count); }},
            {"dotNet_GetNoOfDevices", [&] { return QLBCR_dotNet_GetNoOfDevices(&count); }}};
        for (const auto& [name, call] : calls) {
            EXPECT_FAILURE(call(), QLERR_INVALID_STATE, kInsideCallback) << name;
        }
        int result = 77;
        EXPECT_EQ(QLBCR_dotNet_GetBarcodeDevices(&result, &count), nullptr);
        EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_STATE, kInsideCallback}));
        EXPECT_EQ(BarcodeState(), 1);
    });
    EXPECT_SUCCESS(EnableTelling(window));
    EXPECT_EQ(window.Times(), 1);
    EXPECT_EQ(TakeMessageTexts(), (Texts{kAsked, kPolled}));
    EXPECT_EQ(Engine().TakeTexts(), kConnectCalls);
    EXPECT_EQ(BarcodeState(), 2);
    // They are allowed again.
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Enable());
}

// The refusals of its thread are not its own.
TEST_F(EmulatorEnable, LeavesNoRecordOfAnotherCall) {
    Start(L"--connect-delay 300");
    InitializeAndRegister();
    const ThreadWindow window([] { EXPECT_EQ(QLBCR_Disable(), QLERR_INVALID_STATE); });
    EXPECT_SUCCESS(EnableTelling(window));
    EXPECT_EQ(window.Times(), 1);
}

TEST_F(EmulatorEnable, AllowsTheSameAfterItHasFailed) {
    Start(L"--connect-delay 300 --answer 1");
    InitializeAndRegister();
    const ThreadWindow window([] { EXPECT_EQ(QLBCR_Initialize(), QLERR_INVALID_STATE); });
    EXPECT_FAILURE(EnableTelling(window), QLERR_INTERNAL_ERROR, kNoConnection);
    EXPECT_EQ(window.Times(), 1);
    int count = 0;
    EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    EXPECT_EQ(count, 1);
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_FAILURE(QLBCR_Disable(), QLERR_INVALID_STATE, "The device is already disabled");
}

// It is that thread's affair alone: others wait for their turn.
TEST_F(EmulatorEnable, HoldsUpTheCallsOfOtherThreads) {
    Start(L"--connect-delay 300");
    InitializeAndRegister();
    std::thread other;
    const ThreadWindow window([&] {
        other = std::thread([] {
            int count = 0;
            EXPECT_EQ(QLBCR_GetBarcodeDevices(nullptr, &count), QLERR_OK);
            EXPECT_EQ(QLBCR_Initialize(), QLERR_OK);
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Enable(), QLERR_OK);
        });
    });
    EXPECT_SUCCESS(EnableTelling(window));
    other.join();
    EXPECT_EQ(BarcodeState(), 2);
}

// As a crash would end it: the question is never answered.
class EmulatorEnd : public EmulatorEnable {
  protected:
    static constexpr ULONGLONG kLongest = 4000;  // milliseconds; ten polls would take longer

    void ExpectNoConnection(QLerr result, ULONGLONG begun) {
        EXPECT_FAILURE(result, QLERR_INTERNAL_ERROR, kNoConnection);
        EXPECT_LT(GetTickCount64() - begun, kLongest);
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SetPathName N6603 on USB 1"});
        EXPECT_EQ(BarcodeState(), 1);
        // Nothing that it could have kept is in the way.
        Engine().Use()->heldByEmulator = 0;
        EXPECT_SUCCESS(QLBCR_Enable());
        EXPECT_EQ(BarcodeState(), 2);
    }
};

TEST_F(EmulatorEnd, WhileItIsAskedForTheScannerEndsTheAttempt) {
    Start(L"--connect-delay 15000");
    InitializeAndRegister();
    const ThreadWindow window([this] { emulator_.Kill(); });
    const ULONGLONG begun = GetTickCount64();
    const QLerr result = EnableTelling(window);
    EXPECT_EQ(window.Times(), 1);
    ExpectNoConnection(result, begun);
}

TEST_F(EmulatorEnd, WhileItIsAskedForTheStateEndsTheAttempt) {
    Start(L"--state-delay 15000");
    InitializeAndRegister();
    const ThreadWindow window([this] { emulator_.Kill(); });
    const ULONGLONG begun = GetTickCount64();
    std::thread telling([&] {
        // It has accepted: from here on the library waits for the answer to its poll alone.
        AwaitMessages(1);
        window.Tell();
    });
    const QLerr result = QLBCR_Enable();
    telling.join();
    EXPECT_EQ(window.Times(), 1);
    EXPECT_EQ(TakeMessageTexts(), Texts{kAsked});
    ExpectNoConnection(result, begun);
}

}  // namespace
}  // namespace quarlin::test
