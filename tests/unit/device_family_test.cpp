// SPDX-License-Identifier: Apache-2.0
#include "device/device_family.h"

#include "core/quarlin_exception.h"
#include "machine_libraries.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace quarlin::test {
namespace {

using namespace quarlin::device;

const std::vector<std::string> kFunctions = {"HwProbe_Initialize",    "HwProbe_Uninitialize",
                                             "HwProbe_GetDeviceInfo", "HwProbe_GetNumberOfDevices",
                                             "HwProbe_GetDeviceList", "HwProbe_GetBatteryCurrentInfo"};

class DeviceFamilyStates : public ::testing::Test {
  protected:
    DeviceFamilyStates() { libraries_.Offer(ProbeOfTheTest()); }

    std::string FailureOf(void (DeviceFamily::*call)()) {
        try {
            ((*family_).*call)();
        } catch (const QuarlinException& failure) {
            return std::to_string(failure.code) + " " + failure.what();
        }
        return "";
    }
    bool IsInitialized() {
        try {
            family_->Probe();
        } catch (const QuarlinException& failure) {
            EXPECT_EQ(failure.code, QLERR_INVALID_STATE);
            EXPECT_STREQ(failure.what(), "Device API has not been initialized.");
            return false;
        }
        return true;
    }

    MemoryLibraries libraries_;
    std::optional<DeviceFamily> family_{std::in_place, libraries_};
};

TEST_F(DeviceFamilyStates, InitialisesTheLibraryOfItsName) {
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(libraries_.asked, std::vector<std::wstring>{L"HwProbeLib.dll"});
    EXPECT_EQ(libraries_.looked, kFunctions);
    EXPECT_EQ(probe.calls, std::vector<std::string>{"Initialize"});
}

TEST_F(DeviceFamilyStates, CountsInitialisations) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    }
    EXPECT_EQ(libraries_.loads, 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(IsInitialized());
        EXPECT_EQ(libraries_.frees, 0);
        EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "");
    }
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(libraries_.frees, 1);
    EXPECT_EQ(probe.calls, (std::vector<std::string>{"Initialize", "Uninitialize"}));
    EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "2 Device API has not been initialized.");
    EXPECT_EQ(probe.calls.size(), 2U);
}

TEST_F(DeviceFamilyStates, LoadsAgainAfterTheLastOne) {
    for (int round = 1; round <= 3; ++round) {
        EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
        EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "");
        EXPECT_EQ(libraries_.loads, round);
        EXPECT_EQ(libraries_.frees, round);
    }
}

TEST_F(DeviceFamilyStates, FailsWithoutTheLibrary) {
    libraries_.present = false;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "5 Failed LoadLibrary(HwProbeLib)");
    EXPECT_FALSE(IsInitialized());
    EXPECT_TRUE(libraries_.looked.empty());
    libraries_.present = true;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
}

TEST_F(DeviceFamilyStates, FailsAtTheFirstFunctionThatIsMissing) {
    for (std::size_t i = 0; i < kFunctions.size(); ++i) {
        libraries_.missing = kFunctions[i];
        libraries_.looked.clear();
        EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "5 Failed GetProcAddress(" + kFunctions[i] + ")");
        EXPECT_EQ(libraries_.looked.size(), i + 1);
        EXPECT_FALSE(IsInitialized());
    }
    EXPECT_TRUE(probe.calls.empty());
}

TEST_F(DeviceFamilyStates, KeepsALibraryThatDidNotStartAndLoadsItOnceMore) {
    probe.status = -1;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "4 Unsupported OS");
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "4 Unsupported OS");
    EXPECT_EQ(libraries_.loads, 2);
    EXPECT_EQ(libraries_.frees, 0);
    probe.status = 0;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "");
    EXPECT_EQ(libraries_.loads, 3);
    EXPECT_EQ(libraries_.frees, 1);
}

TEST_F(DeviceFamilyStates, StartsWithEitherGoodStatus) {
    probe.status = 1;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "");
}

TEST_F(DeviceFamilyStates, IsOverAlsoWhenTheLibraryComplainsAtItsEnd) {
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    probe.status = -10;
    EXPECT_EQ(FailureOf(&DeviceFamily::Uninitialize), "2 Device check library has not been initialized");
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(libraries_.frees, 1);
    probe.status = 0;
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    EXPECT_EQ(libraries_.loads, 2);
}

TEST_F(DeviceFamilyStates, LeavesTheLibraryLoadedWhenNobodyTidiesUp) {
    EXPECT_EQ(FailureOf(&DeviceFamily::Initialize), "");
    family_.reset();
    EXPECT_EQ(libraries_.frees, 0);
    EXPECT_EQ(probe.calls, std::vector<std::string>{"Initialize"});
}

}  // namespace
}  // namespace quarlin::test
