// SPDX-License-Identifier: Apache-2.0
// Initialising and uninitialising: the count, the device-check library's own life, and what is left after a failure.
#include "device/probe_machine_win.h"
#include "support/child_process_win.h"
#include "support/loader_watch_win.h"
#include "support/machine_state_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

const Calls kLoad = {"LoadLibrary HwProbeLib.dll",
                     "GetProcAddress HwProbe_Initialize",
                     "GetProcAddress HwProbe_Uninitialize",
                     "GetProcAddress HwProbe_GetDeviceInfo",
                     "GetProcAddress HwProbe_GetNumberOfDevices",
                     "GetProcAddress HwProbe_GetDeviceList",
                     "GetProcAddress HwProbe_GetBatteryCurrentInfo"};

bool IsInitialized() {
    int count = 0;
    const QLerr result = QLDEVICE_GetDevices(nullptr, &count);
    if (result == QLERR_OK) {
        return true;
    }
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_STATE, kDeviceNotInitialized}));
    return false;
}

bool IsLoaded() {
    return GetModuleHandleW(kProbeLibrary) != nullptr;
}

class DeviceLife : public ::testing::Test {
  protected:
    void TearDown() override {
        while (QLDEVICE_Uninitialize() == QLERR_OK) {
        }
    }

    ProbeMachine machine_;
};

TEST_F(DeviceLife, LoadsTheLibraryByNameAndItsFunctionsInOrder) {
    const LoaderWatch watch;
    EXPECT_FALSE(IsLoaded());
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_EQ(watch.Take(), kLoad);
    EXPECT_EQ(machine_.Calls(), Calls{"Initialize"});
    EXPECT_TRUE(IsLoaded());
    EXPECT_TRUE(IsInitialized());
}

TEST_F(DeviceLife, UnloadsTheLibraryAfterItHasBeenStopped) {
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    machine_.Calls();
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_EQ(watch.Take(), Calls{"FreeLibrary"});
    EXPECT_EQ(machine_.Calls(), Calls{"Uninitialize"});
    EXPECT_EQ(machine_.Use()->started, 0);
    EXPECT_FALSE(IsLoaded());
    EXPECT_FALSE(IsInitialized());
}

TEST_F(DeviceLife, WantsAsManyEndsAsBeginnings) {
    const LoaderWatch watch;
    for (int i = 0; i < 2; ++i) {
        EXPECT_SUCCESS(QLDEVICE_Initialize());
    }
    EXPECT_EQ(watch.Take(), kLoad);
    EXPECT_EQ(machine_.Calls(), Calls{"Initialize"});
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_EQ(machine_.Calls(), Calls{});
    EXPECT_EQ(watch.Take(), Calls{});
    EXPECT_TRUE(IsLoaded());
    EXPECT_TRUE(IsInitialized());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FALSE(IsLoaded());
    EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_INVALID_STATE, kDeviceNotInitialized);
}

TEST_F(DeviceLife, BeginsAnewAfterTheEnd) {
    for (int round = 0; round < 3; ++round) {
        const LoaderWatch watch;
        EXPECT_SUCCESS(QLDEVICE_Initialize());
        EXPECT_EQ(watch.Take(), kLoad);
        EXPECT_TRUE(IsInitialized());
        EXPECT_SUCCESS(QLDEVICE_Uninitialize());
        EXPECT_FALSE(IsLoaded());
    }
}

TEST_F(DeviceLife, CountsToTheEndOfALongRow) {
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(QLDEVICE_Initialize(), QLERR_OK);
    }
    for (int i = 0; i < 999; ++i) {
        ASSERT_EQ(QLDEVICE_Uninitialize(), QLERR_OK);
    }
    EXPECT_TRUE(IsInitialized());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(UnloadWholly(kProbeLibrary), 0);
}

// Whatever the library says about its end, it is over.
TEST_F(DeviceLife, IsOverAlsoWhenTheLibraryComplains) {
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    machine_.Answer(ProbeFunction::kUninitialize, -3);
    EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_OP_UNSUPPORTED, "Invalid device check library operation");
    EXPECT_FALSE(IsInitialized());
    EXPECT_FALSE(IsLoaded());
    EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_INVALID_STATE, kDeviceNotInitialized);
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_TRUE(IsInitialized());
}

// One complaint for the last end alone: those before it do not reach the library.
TEST_F(DeviceLife, AsksTheLibraryAtTheLastEndAlone) {
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    machine_.Answer(ProbeFunction::kUninitialize, -1);
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_OP_UNSUPPORTED, "Unsupported OS");
}

TEST_F(DeviceLife, FailsWithoutTheLibrary) {
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_INTERNAL_ERROR, "Failed LoadLibrary(HwProbeLib)");
        EXPECT_FALSE(IsInitialized());
        EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_INTERNAL_ERROR, "Failed LoadLibrary(HwProbeLib)");
    }
    EXPECT_EQ(machine_.Calls(), Calls{});
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_TRUE(IsInitialized());
}

// The library stays loaded, and is loaded once more by the next try.
TEST_F(DeviceLife, KeepsALibraryThatDoesNotStart) {
    machine_.Answer(ProbeFunction::kInitialize, -2);
    for (int i = 0; i < 2; ++i) {
        const LoaderWatch watch;
        EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver");
        EXPECT_EQ(watch.Take(), kLoad);
        EXPECT_TRUE(IsLoaded());
        EXPECT_FALSE(IsInitialized());
        EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_INVALID_STATE, kDeviceNotInitialized);
    }
    EXPECT_EQ(machine_.Calls(), (Calls{"Initialize", "Initialize"}));
    EXPECT_EQ(UnloadWholly(kProbeLibrary), 2);
}

TEST_F(DeviceLife, CanStartAfterAFailedTry) {
    machine_.Answer(ProbeFunction::kInitialize, -2);
    EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver");
    machine_.Answer(ProbeFunction::kInitialize, 0);
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_TRUE(IsInitialized());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FALSE(IsInitialized());
    // The load of the failed try is left.
    EXPECT_EQ(UnloadWholly(kProbeLibrary), 1);
}

TEST_F(DeviceLife, HasOneTryLessToUndoAfterAFailedOne) {
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    // Initialised already: the library is not asked, and has no occasion to fail.
    machine_.Answer(ProbeFunction::kInitialize, -1);
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_OP_UNSUPPORTED, "Unsupported OS");
    EXPECT_FAILURE(QLDEVICE_Uninitialize(), QLERR_INVALID_STATE, kDeviceNotInitialized);
}

std::string NameOfFunction(const ::testing::TestParamInfo<std::size_t>& info) {
    return sim::kProbeFunctionNames[info.param];
}

class MissingProbeFunction : public ::testing::TestWithParam<std::size_t> {
  protected:
    ProbeMachine machine_;
};

TEST_P(MissingProbeFunction, IsNamedAndEndsTheSearch) {
    const std::string name = sim::kProbeFunctionNames[GetParam()];
    const LibraryFolder folder(FolderWithout(name));
    const LoaderWatch watch;
    EXPECT_FAILURE(QLDEVICE_Initialize(), QLERR_INTERNAL_ERROR, "Failed GetProcAddress(" + name + ")");
    EXPECT_EQ(watch.Take(), Calls(kLoad.begin(), kLoad.begin() + 2 + static_cast<std::ptrdiff_t>(GetParam())));
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(machine_.Calls(), Calls{});
    EXPECT_EQ(UnloadWholly(kProbeLibrary), 1);
}

TEST_P(MissingProbeFunction, IsNoLossOnceTheRightLibraryIsThere) {
    {
        const LibraryFolder folder(FolderWithout(sim::kProbeFunctionNames[GetParam()]));
        EXPECT_EQ(QLDEVICE_Initialize(), QLERR_INTERNAL_ERROR);
    }
    // As long as the wrong one is loaded, its name stands for it.
    EXPECT_EQ(QLDEVICE_Initialize(), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(UnloadWholly(kProbeLibrary), 2);
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_TRUE(IsInitialized());
    EXPECT_SUCCESS(QLDEVICE_Uninitialize());
    EXPECT_FALSE(IsLoaded());
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingProbeFunction, ::testing::Range(std::size_t{0}, sim::kProbeFunctionCount),
                         NameOfFunction);

QUARLIN_CHILD_MODE(look_at_devices) {
    bool available = true;
    BatteryInfo battery{};
    if (QLDEVICE_Initialize() != QLERR_OK || QLDEVICE_GetDeviceAvailable(2, &available) != QLERR_OK ||
        QLDEVICE_GetBatteryInfo(2, &battery) != QLERR_OK) {
        return 1;
    }
    // Ends without tidying up.
    return !available && battery.Voltage == 1234 ? 0 : 2;
}

TEST_F(DeviceLife, AnotherProgramSeesTheSameMachine) {
    machine_.Use()->devices[1] = {0, 0, 0};
    machine_.Use()->batteries[1].voltage = 1234;
    EXPECT_SUCCESS(QLDEVICE_Initialize());
    EXPECT_EQ(RunChild("look_at_devices").exitCode, 0U);
    EXPECT_EQ(machine_.Calls(),
              (Calls{"Initialize", "Initialize", "GetDeviceInfo 2 20 1", "GetBatteryCurrentInfo 2 1"}));
    EXPECT_TRUE(IsInitialized());
}

TEST_F(DeviceLife, LeavesNothingOverManyRounds) {
    const auto round = [] {
        bool available = false;
        DeviceStatusEntry entries[15];
        int count = 15;
        ASSERT_EQ(QLDEVICE_Initialize(), QLERR_OK);
        ASSERT_EQ(QLDEVICE_GetDeviceAvailable(1, &available), QLERR_OK);
        ASSERT_EQ(QLDEVICE_GetDeviceAvailable(16, &available), QLERR_INVALID_ARGUMENT);
        ASSERT_EQ(QLDEVICE_GetDevices(entries, &count), QLERR_OK);
        ASSERT_EQ(QLDEVICE_Uninitialize(), QLERR_OK);
    };
    for (int i = 0; i < 50; ++i) {
        round();
    }
    CountResources();
    const ResourceCount before = CountResources();
    for (int i = 0; i < 500; ++i) {
        round();
    }
    EXPECT_EQ(CountResources(), before);
}

}  // namespace
}  // namespace quarlin::test
