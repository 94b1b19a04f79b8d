// SPDX-License-Identifier: Apache-2.0
#include "device/camera_family.h"

#include "core/quarlin_exception.h"
#include "machine_libraries.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace quarlin::test {
namespace {

using namespace quarlin::device;
using Calls = std::vector<std::string>;

const Calls kFunctions = {"CameraLight_Initialize",
                          "CameraLight_TurnOn",
                          "CameraLight_TurnOff",
                          "CameraLight_Switch",
                          "CameraLight_SetValueToKeepOnTime",
                          "CameraLight_GetValueToKeepOnTime",
                          "CameraLight_TurnOnForTime",
                          "CameraLight_GetTimerStatus",
                          "CameraLight_TurnOnToKeepOn",
                          "CameraLight_SetValueToKeepOn",
                          "CameraLight_GetVersion"};

class CameraLightStart : public ::testing::Test {
  protected:
    CameraLightStart() { libraries_.Offer(LampOfTheTest()); }

    bool Supported() { return CameraLight(libraries_).IsSupported(); }

    MemoryLibraries libraries_;
};

TEST_F(CameraLightStart, LooksForEveryFunctionInOrder) {
    EXPECT_TRUE(Supported());
    EXPECT_EQ(libraries_.asked, std::vector<std::wstring>{L"camlamp_x64.dll"});
    EXPECT_EQ(libraries_.looked, kFunctions);
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "TurnOff 1"}));
}

TEST_F(CameraLightStart, NeedsTheLibrary) {
    libraries_.present = false;
    EXPECT_FALSE(Supported());
}

TEST_F(CameraLightStart, NeedsEveryFunction) {
    for (const std::string& name : kFunctions) {
        libraries_.missing = name;
        EXPECT_FALSE(Supported()) << name;
    }
    EXPECT_TRUE(lamp.calls.empty());
}

TEST_F(CameraLightStart, NeedsTheLightToGoOff) {
    lamp.offStatus = 1;
    EXPECT_FALSE(Supported());
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "TurnOff 1"}));
}

TEST_F(CameraLightStart, TakesAVersionForAFailedStart) {
    lamp.initializeStatus = 1;
    EXPECT_TRUE(Supported());
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "GetVersion", "TurnOff 1"}));
}

TEST_F(CameraLightStart, NeedsTheLightToGoOffAfterAFailedStartToo) {
    lamp.initializeStatus = -1;
    lamp.offStatus = -1;
    EXPECT_FALSE(Supported());
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "GetVersion", "TurnOff 1"}));
}

TEST_F(CameraLightStart, GivesUpWithoutAVersion) {
    lamp.initializeStatus = -1;
    lamp.versionStatus = 1;
    EXPECT_FALSE(Supported());
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "GetVersion"}));
}

TEST_F(CameraLightStart, LeavesTheLibraryLoaded) {
    EXPECT_TRUE(Supported());
    EXPECT_EQ(libraries_.loads, 1);
    EXPECT_EQ(libraries_.frees, 0);
}

class CameraLightOperations : public CameraLightStart {
  protected:
    CameraLightOperations() { lamp.calls.clear(); }

    const CameraLight light_{libraries_};
};

TEST_F(CameraLightOperations, SwitchWithOne) {
    light_.TurnOn();
    light_.TurnOff();
    EXPECT_EQ(lamp.calls, (Calls{"TurnOnToKeepOn 1", "TurnOff 1"}));
}

TEST_F(CameraLightOperations, SendATimeFromOneTo254) {
    for (const int seconds : {1, 2, 253, 254, 255, 256, 300, std::numeric_limits<int>::max()}) {
        lamp.calls.clear();
        light_.TurnOnForTime(seconds);
        EXPECT_EQ(lamp.calls, Calls{"TurnOnForTime " + std::to_string(std::min(seconds, 254))}) << seconds;
    }
}

TEST_F(CameraLightOperations, SendNoTimeBelowOne) {
    for (const int seconds : {0, -1, -5, -256, std::numeric_limits<int>::min()}) {
        light_.TurnOnForTime(seconds);
    }
    EXPECT_TRUE(lamp.calls.empty());
}

TEST_F(CameraLightOperations, AreOnWhenTheTimerReadsAnythingButZero) {
    for (const int value : {0, 1, 7, 254, 255}) {
        lamp.timer = value;
        EXPECT_EQ(light_.IsOn(), value != 0) << value;
        EXPECT_EQ(light_.Time(), value) << value;
    }
}

TEST_F(CameraLightOperations, AreOffWhenTheTimerCannotBeRead) {
    lamp.timer = 7;
    for (const std::int32_t status : {1, -1, 256}) {
        lamp.timerStatus = status;
        EXPECT_FALSE(light_.IsOn()) << status;
        EXPECT_EQ(light_.Time(), 7) << status;
    }
}

TEST_F(CameraLightOperations, ReadA255WhenTheTimerIsLeftUntouched) {
    lamp.timer = -1;
    EXPECT_EQ(light_.Time(), 255);
    EXPECT_FALSE(light_.IsOn());
    EXPECT_EQ(lamp.calls, (Calls{"GetTimerStatus 255", "GetTimerStatus 0"}));
}

TEST_F(CameraLightOperations, DoNothingOnALightThatIsNotSupported) {
    lamp.offStatus = 1;
    const CameraLight unsupported(libraries_);
    lamp = {};
    lamp.timer = 7;
    unsupported.TurnOn();
    unsupported.TurnOff();
    unsupported.TurnOnForTime(5);
    EXPECT_FALSE(unsupported.IsOn());
    EXPECT_EQ(unsupported.Time(), 255);
    EXPECT_TRUE(lamp.calls.empty());
}

class CameraFamilyStates : public CameraLightStart {
  protected:
    bool IsInitialized() {
        try {
            family_.Light();
        } catch (const QuarlinException& failure) {
            EXPECT_EQ(failure.code, QLERR_INVALID_STATE);
            EXPECT_STREQ(failure.what(), "Camera light API has not been initialized.");
            return false;
        }
        return true;
    }
    void ExpectUnsupported() {
        try {
            family_.Initialize();
            FAIL() << "initialised";
        } catch (const QuarlinException& failure) {
            EXPECT_EQ(failure.code, QLERR_OP_UNSUPPORTED);
            EXPECT_STREQ(failure.what(), "Camera light API is unsupported .");
        }
        EXPECT_FALSE(IsInitialized());
        EXPECT_THROW(family_.Uninitialize(), QuarlinException);
    }

    CameraFamily family_{libraries_};
};

TEST_F(CameraFamilyStates, GoFromInitialiseToUninitialise) {
    EXPECT_FALSE(IsInitialized());
    family_.Initialize();
    EXPECT_TRUE(IsInitialized());
    family_.Uninitialize();
    EXPECT_FALSE(IsInitialized());
    EXPECT_THROW(family_.Uninitialize(), QuarlinException);
    EXPECT_EQ(libraries_.frees, 0);
}

TEST_F(CameraFamilyStates, DoItAllAgainWhenInitialisedTwice) {
    family_.Initialize();
    family_.Initialize();
    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(lamp.calls, (Calls{"Initialize 0", "TurnOff 1", "Initialize 0", "TurnOff 1"}));
    EXPECT_EQ(libraries_.loads, 2);
    family_.Uninitialize();
    EXPECT_FALSE(IsInitialized());
}

TEST_F(CameraFamilyStates, AreNotInitialisedWithoutALight) {
    libraries_.present = false;
    ExpectUnsupported();
    libraries_.present = true;
    family_.Initialize();
    EXPECT_TRUE(IsInitialized());
}

TEST_F(CameraFamilyStates, EndWhenALaterInitialisationFails) {
    family_.Initialize();
    lamp.offStatus = 1;
    ExpectUnsupported();
}

}  // namespace
}  // namespace quarlin::test
