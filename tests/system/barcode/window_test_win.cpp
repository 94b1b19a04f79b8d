// SPDX-License-Identifier: Apache-2.0
// Messages to the hidden window, from whoever finds it.
#include <array>
#include <cstdint>
#include <string>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

constexpr WPARAM kScan = 100;

UINT Message(const wchar_t* name) {
    return RegisterWindowMessageW(name);
}

class IntermecWindowMessages : public IntermecTest {
  protected:
    void SetUp() override {
        ASSERT_SUCCESS(QLBCR_Initialize());
        Engine().TakeCalls();
    }
    // What the window answers.
    static LRESULT Send(const wchar_t* name, WPARAM wParam, const void* data) {
        DWORD_PTR answer = 4711;
        EXPECT_NE(SendMessageTimeoutW(FindListenerWindow(), Message(name), wParam, reinterpret_cast<LPARAM>(data),
                                      SMTO_NORMAL, kDeadline, &answer),
                  0)
            << GetLastError();
        return static_cast<LRESULT>(answer);
    }
    void EnableWithCallback() {
        ASSERT_SUCCESS(QLBCR_Enable());
        ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
        Engine().TakeCalls();
    }
};

const std::array<const void*, 4> kPointers = {nullptr, reinterpret_cast<const void*>(1), "text\0]C000\0\0",
                                              reinterpret_cast<const void*>(INTPTR_MAX)};

TEST_F(IntermecWindowMessages, AreAnsweredZeroWithoutAReceivingDevice) {
    for (const void* const data : kPointers) {
        for (const WPARAM wParam : {WPARAM{0}, kScan, WPARAM{1}, ~WPARAM{0}}) {
            EXPECT_EQ(Send(L"WM_ISCP_FRAME", wParam, data), 0);
            EXPECT_EQ(Send(L"WM_RAW_DATA", wParam, data), 0);
            EXPECT_EQ(Send(L"WM_LOWLEVEL", wParam, data), 0);
            EXPECT_EQ(Send(L"WM_MULTIFRAME_IN_PROGRESS", wParam, data), 0);
            EXPECT_EQ(Send(L"WM_NORV_BCR_EMU_ON_CONNECT_STATE", wParam, data), 0);
        }
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(IntermecWindowMessages, OfTheOtherEngineAreAnsweredZero) {
    EnableWithCallback();
    for (const void* const data : kPointers) {
        for (const WPARAM wParam : {WPARAM{0}, WPARAM{4}, kScan, ~WPARAM{0}}) {
            EXPECT_EQ(Send(L"WM_RAW_DATA", wParam, data), 0);
            EXPECT_EQ(Send(L"WM_NORV_BCR_EMU_ON_CONNECT_STATE", wParam, data), 0);
        }
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(IntermecWindowMessages, FetchAScanWhateverTheyPointTo) {
    EnableWithCallback();
    for (const void* const data : kPointers) {
        EXPECT_EQ(Send(L"WM_ISCP_FRAME", kScan, data), 0);
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts(kPointers.size(), "GetBarcodeDataEx"));
    EXPECT_EQ(log_.Count(), 0U) << "there was none";
    // One that the engine has kept for itself.
    machine_.ScanIntermecRecord(IntermecScan::Of("kept").Bytes(), {}, IntermecState::kScanType, sim::kScanSilent);
    Await("the engine to have the scan", [&] { return Engine().Use()->waiting == 1; });
    EXPECT_EQ(Send(L"WM_ISCP_FRAME", kScan, nullptr), 0);
    EXPECT_EQ(log_.Texts(), Texts{"kept"});
}

TEST_F(IntermecWindowMessages, OfOtherKindsFetchNothing) {
    EnableWithCallback();
    for (const WPARAM wParam : {WPARAM{0}, WPARAM{99}, WPARAM{101}, WPARAM{0x100000064}, ~WPARAM{0}}) {
        EXPECT_EQ(Send(L"WM_ISCP_FRAME", wParam, nullptr), 0) << wParam;
    }
    EXPECT_EQ(Send(L"WM_LOWLEVEL", kScan, nullptr), 0);
    EXPECT_EQ(Send(L"WM_MULTIFRAME_IN_PROGRESS", kScan, nullptr), 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    // The engine's own announcement of something else; the scan stays in the engine.
    machine_.ScanIntermecRecord(IntermecScan::Of("one").Bytes(), {}, 99);
    machine_.ScanIntermec("two");
    EXPECT_EQ(log_.AwaitCount(1).text, "one");
    EXPECT_EQ(Engine().TakeTexts(), Texts{"GetBarcodeDataEx"});
}

TEST_F(IntermecWindowMessages, DoNotTakeTheWindowAway) {
    EnableWithCallback();
    HWND const window = FindListenerWindow();
    SendMessageTimeoutW(window, WM_CLOSE, 0, 0, SMTO_NORMAL, kDeadline, nullptr);
    EXPECT_EQ(FindListenerWindow(), window);
    machine_.ScanIntermec("still here");
    EXPECT_EQ(log_.AwaitCount(1).text, "still here");
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
}

TEST_F(IntermecWindowMessages, OfTheSystemAreHandledAsByAnyWindow) {
    HWND const window = FindListenerWindow();
    ASSERT_TRUE(SetWindowTextW(window, L"another"));
    std::array<wchar_t, 20> title{};
    GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
    EXPECT_EQ(std::wstring(title.data()), L"another");
    SetWindowTextW(window, kListenerWindow);
}

}  // namespace
}  // namespace quarlin::test
