// SPDX-License-Identifier: Apache-2.0
// An engine library that is missing, or is not the one that is meant.
#include "barcode/intermec_test_win.h"
#include "support/import_hook_win.h"
#include "support/machine_library_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoLibrary = "Unable to load ISDC.dll.";

class IntermecLibrary : public IntermecTest {
  protected:
    // As if nothing had been tried.
    void ExpectWorking() {
        EXPECT_SUCCESS(QLBCR_Initialize());
        EXPECT_SUCCESS(QLBCR_Enable());
        EXPECT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
        log_.Clear();
        machine_.ScanIntermec("works");
        EXPECT_EQ(log_.AwaitCount(1).text, "works");
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_SUCCESS(QLBCR_Uninitialize());
        Engine().TakeCalls();
    }
};

TEST_F(IntermecLibrary, IsMissed) {
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        for (int round = 0; round < 2; ++round) {
            EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, kNoLibrary);
            EXPECT_FAILURE(QLBCR_SelectDevice(0), QLERR_INTERNAL_ERROR, kNoLibrary);
            EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
            EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized");
            int count = 0;
            EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
            EXPECT_EQ(count, 1);
        }
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(FindListenerWindow(), nullptr);
    ExpectWorking();
    ExpectWorking();
}

TEST_F(IntermecLibrary, IsOfNoUseWithAnyProcedureMissing) {
    for (const char* const name : sim::kIntermecFunctionNames) {
        {
            const LibraryFolder folder(FolderWithout(name));
            EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, kMisplaced) << name;
            // The right library can take its place.
            EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr) << name;
            EXPECT_FAILURE(QLBCR_SelectDevice(0), QLERR_INTERNAL_ERROR, kMisplaced) << name;
        }
        EXPECT_EQ(Engine().TakeTexts(), Texts{}) << name;
        EXPECT_EQ(BarcodeState(), 0) << name;
        EXPECT_EQ(FindListenerWindow(), nullptr) << name;
        EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized") << name;
        ExpectWorking();
    }
}

// A library of that name that somebody else has loaded, and keeps.
TEST_F(IntermecLibrary, OfAnotherOwnerStaysLoaded) {
    const UniqueModule other(LoadLibraryW(L"ISDC_RS.dll"));
    ASSERT_TRUE(other.Valid());
    ExpectWorking();
    EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), other.Get());
}

ATOM WINAPI RegisterNoClass(const WNDCLASSEXW*) {
    return 0;
}

HWND WINAPI CreateNoWindow(DWORD, LPCWSTR, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE, LPVOID) {
    return nullptr;
}

class IntermecWindow : public IntermecLibrary {
  protected:
    void ExpectNoWindow(const char* text) {
        for (int round = 0; round < 2; ++round) {
            EXPECT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, text);
            EXPECT_EQ(BarcodeState(), 0);
            // The engine had been started by then.
            EXPECT_EQ(Engine().TakeTexts(), (Texts{kInitializeCalls[0], "Deinitialize"}));
            EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
            EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, "The device is already un-initialized");
        }
    }
};

TEST_F(IntermecWindow, IsRefusedAClass) {
    {
        const ImportHook hook("user32.dll", "RegisterClassExW", &RegisterNoClass);
        ExpectNoWindow("Invalid Windows message window setup.");
    }
    ExpectWorking();
}

TEST_F(IntermecWindow, IsRefusedByTheSystem) {
    {
        const ImportHook hook("user32.dll", "CreateWindowExW", &CreateNoWindow);
        ExpectNoWindow("Unable to create Windows message receiving window.");
    }
    ExpectWorking();
}

}  // namespace
}  // namespace quarlin::test
