// SPDX-License-Identifier: Apache-2.0
// Message loops of others on the library's threads: callbacks with a loop of their own, and engines that show a
// dialogue.
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

class IntermecMessageLoop : public EnabledIntermec {};

TEST_F(IntermecMessageLoop, OfACallbackMayDeliverTheNextScan) {
    log_.DoInside([this](const QLBCR_BARCODE_DATA&) {
        if (log_.Count() > 1) {
            return;
        }
        machine_.ScanIntermec("inner");
        Await("the second scan", [&] {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
            }
            return log_.Count() == 2;
        });
    });
    machine_.ScanIntermec("outer");
    log_.AwaitCount(2);
    log_.AwaitQuiet();
    log_.DoInside({});
    EXPECT_EQ(log_.Texts(), (Texts{"outer", "inner"}));
    machine_.ScanIntermec("next");
    EXPECT_EQ(log_.AwaitCount(3).text, "next");
}

TEST_F(IntermecMessageLoop, IsNotEndedByACallbackThatAsksToQuit) {
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { PostQuitMessage(3); });
    for (std::size_t count = 1; count <= 5; ++count) {
        machine_.ScanIntermec("text");
        log_.AwaitCount(count);
    }
    log_.AwaitQuiet();
    EXPECT_NE(FindListenerWindow(), nullptr);
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(FindListenerWindow(), nullptr);
}

// Uninitialize must not wait for a message that nobody handles.
TEST_F(IntermecMessageLoop, OfACallbackMayEatTheRequestToEnd) {
    std::thread ending;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        ending = std::thread([] {
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        });
        Await("the window's message", [] {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                if (message.message == WM_CLOSE) {
                    return true;
                }
            }
            return false;
        });
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    ending.join();
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_EQ(FindListenerWindow(), nullptr);
    Enable();
}

TEST_F(IntermecMessageLoop, OfACallbackMayEndTheWindow) {
    std::thread ending;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        ending = std::thread([] {
            EXPECT_EQ(QLBCR_Disable(), QLERR_OK);
            EXPECT_EQ(QLBCR_Uninitialize(), QLERR_OK);
        });
        Await("the window's end", [] {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
            }
            return FindListenerWindow() == nullptr;
        });
    });
    machine_.ScanIntermec("text");
    log_.AwaitCount(1);
    log_.AwaitQuiet();
    ending.join();
    EXPECT_EQ(BarcodeState(), 0);
    EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
    Enable();
}

// An engine's dialogue runs the messages of the thread that enables: its windows may call the library.
std::function<void()> inDialog;
std::uint32_t (*realDialog)() = nullptr;

std::uint32_t ShowDialog() {
    if (inDialog) {
        inDialog();
    }
    return realDialog();
}

FARPROC WINAPI FindWithDialog(HMODULE module, const char* name) {
    const FARPROC real = GetProcAddress(module, name);
    if (std::string_view(name) != "ConfigurationDialog") {
        return real;
    }
    realDialog = reinterpret_cast<decltype(realDialog)>(reinterpret_cast<void*>(real));
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&ShowDialog));
}

class IntermecDialog : public IntermecTest {
  protected:
    void SetUp() override {
        const ImportHook hook("kernel32.dll", "GetProcAddress", &FindWithDialog);
        ASSERT_SUCCESS(QLBCR_Initialize());
    }
    void TearDown() override { inDialog = {}; }
};

TEST_F(IntermecDialog, MayNotChangeTheStates) {
    bool shown = false;
    inDialog = [&] {
        shown = true;
        int count = 0;
        const std::vector<std::function<QLerr()>> calls = {
            [] { return QLBCR_Enable(); },        [] { return QLBCR_Disable(); },
            [] { return QLBCR_Uninitialize(); },  [] { return QLBCR_Initialize(); },
            [] { return QLBCR_SelectDevice(0); }, [&] { return QLBCR_GetBarcodeDevices(nullptr, &count); }};
        for (const auto& call : calls) {
            EXPECT_FAILURE(call(), QLERR_INVALID_STATE, kInsideCallback);
        }
        EXPECT_EQ(BarcodeState(), 1);
    };
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_TRUE(shown);
    EXPECT_EQ(BarcodeState(), 2);
}

}  // namespace
}  // namespace quarlin::test
