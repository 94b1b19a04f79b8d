// SPDX-License-Identifier: Apache-2.0
// Initialising and uninitialising: what has to be there for a light to count as supported, and what is left afterwards.
#include <functional>
#include <ostream>

#include "camera/light_machine_win.h"
#include "support/child_process_win.h"
#include "support/loader_watch_win.h"
#include "support/machine_state_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

Calls Load() {
    Calls calls{"LoadLibrary camlamp_x64.dll"};
    for (const char* const name : sim::kLightFunctionNames) {
        calls.push_back(std::string("GetProcAddress ") + name);
    }
    return calls;
}

struct Call {
    const char* name;
    std::function<QLerr()> call;
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name;
}

std::string NameOfCall(const ::testing::TestParamInfo<Call>& info) {
    return info.param.name;
}

const std::vector<Call> kCalls = {
    {"Uninitialize", [] { return QLCAM_Uninitialize(); }},
    {"SetCameraLightOn", [] { return QLCAM_SetCameraLightOn(); }},
    {"SetCameraLightOff", [] { return QLCAM_SetCameraLightOff(); }},
    {"TurnCameraLightOnForTime", [] { return QLCAM_TurnCameraLightOnForTime(5); }},
    {"TurnCameraLightOnForNoTime", [] { return QLCAM_TurnCameraLightOnForTime(0); }},
    {"IsCameraLightOn", [] { return QLCAM_IsCameraLightOn(nullptr); }},
    {"GetCameraLightTime", [] { return QLCAM_GetCameraLightTime(nullptr); }},
};

// Null pointers where there are pointers: the state comes first.
void ExpectNotInitialized() {
    for (const Call& call : kCalls) {
        EXPECT_FAILURE(call.call(), QLERR_INVALID_STATE, kLightNotInitialized) << call.name;
    }
    bool on = true;
    EXPECT_FAILURE(QLCAM_IsCameraLightOn(&on), QLERR_INVALID_STATE, kLightNotInitialized);
    EXPECT_TRUE(on);
    uint8_t time = 77;
    EXPECT_FAILURE(QLCAM_GetCameraLightTime(&time), QLERR_INVALID_STATE, kLightNotInitialized);
    EXPECT_EQ(time, 77);
}

bool IsInitialized() {
    bool on = false;
    return QLCAM_IsCameraLightOn(&on) == QLERR_OK;
}

class LightNotInitialized : public ::testing::TestWithParam<Call> {
  protected:
    LightMachine machine_;
};

TEST_P(LightNotInitialized, IsTheFirstCheck) {
    EXPECT_FAILURE(GetParam().call(), QLERR_INVALID_STATE, kLightNotInitialized);
    ASSERT_SUCCESS(QLCAM_Initialize());
    ASSERT_SUCCESS(QLCAM_Uninitialize());
    machine_.Calls();
    EXPECT_FAILURE(GetParam().call(), QLERR_INVALID_STATE, kLightNotInitialized);
    EXPECT_EQ(machine_.Calls(), Calls{});
}

INSTANTIATE_TEST_SUITE_P(Functions, LightNotInitialized, ::testing::ValuesIn(kCalls), NameOfCall);

class LightLife : public ::testing::Test {
  protected:
    void ExpectUnsupported() {
        EXPECT_FAILURE(QLCAM_Initialize(), QLERR_OP_UNSUPPORTED, kLightUnsupported);
        const Calls calls = machine_.Calls();
        ExpectNotInitialized();
        EXPECT_EQ(machine_.Calls(), Calls{});
        lastCalls_ = calls;
    }

    LightMachine machine_;
    Calls lastCalls_;
};

TEST_F(LightLife, LoadsTheLibraryByNameAndItsFunctionsInOrder) {
    ExpectNotInitialized();
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_EQ(watch.Take(), Load());
    EXPECT_EQ(machine_.Calls(), (Calls{"Initialize 0", "TurnOff 1"}));
    EXPECT_TRUE(IsInitialized());
}

TEST_F(LightLife, BeginsWithTheLightOff) {
    machine_.Use()->KeepOn();
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_EQ(machine_.Timer(), 0);
}

TEST_F(LightLife, EndsWithTheLightAsItIsAndTheLibraryLoaded) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    machine_.Calls();
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLCAM_Uninitialize());
    EXPECT_EQ(watch.Take(), Calls{});
    EXPECT_EQ(machine_.Calls(), Calls{});
    EXPECT_EQ(machine_.Timer(), LightState::kKeptOn);
    ExpectNotInitialized();
    EXPECT_EQ(UnloadWholly(kLightLibrary), 1);
}

TEST_F(LightLife, DoesItAllAgainWhenInitialisedTwice) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_SUCCESS(QLCAM_SetCameraLightOn());
    machine_.Calls();
    const LoaderWatch watch;
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_EQ(watch.Take(), Load());
    EXPECT_EQ(machine_.Calls(), (Calls{"Initialize 0", "TurnOff 1"}));
    // One end is enough.
    EXPECT_SUCCESS(QLCAM_Uninitialize());
    ExpectNotInitialized();
    EXPECT_EQ(UnloadWholly(kLightLibrary), 2);
}

TEST_F(LightLife, BeginsAnewAfterTheEnd) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_SUCCESS(QLCAM_Initialize());
        EXPECT_TRUE(IsInitialized());
        EXPECT_SUCCESS(QLCAM_Uninitialize());
        EXPECT_FALSE(IsInitialized());
    }
}

TEST_F(LightLife, IsUnsupportedWithoutTheLibrary) {
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        const LoaderWatch watch;
        ExpectUnsupported();
        EXPECT_EQ(watch.Take(), Calls{"LoadLibrary camlamp_x64.dll"});
    }
    EXPECT_EQ(lastCalls_, Calls{});
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_TRUE(IsInitialized());
}

TEST_F(LightLife, IsUnsupportedWhenTheLightDoesNotGoOff) {
    for (const int status : {1, -1, 256}) {
        machine_.Answer(LightFunction::kTurnOff, status);
        ExpectUnsupported();
        EXPECT_EQ(lastCalls_, (Calls{"Initialize 0", "TurnOff 1"})) << status;
    }
}

TEST_F(LightLife, TakesAVersionForAFailedStart) {
    for (const int status : {1, -1, 256}) {
        machine_.Answer(LightFunction::kInitialize, status);
        EXPECT_SUCCESS(QLCAM_Initialize()) << status;
        // The text was zeroed before, and the number, too.
        EXPECT_EQ(machine_.Calls(), (Calls{"Initialize 0", "GetVersion 1 0", "TurnOff 1"})) << status;
        EXPECT_TRUE(IsInitialized());
        EXPECT_SUCCESS(QLCAM_Uninitialize());
        machine_.Calls();
    }
}

TEST_F(LightLife, IsUnsupportedWithNeitherAStartNorAVersion) {
    machine_.Answer(LightFunction::kInitialize, -1);
    for (const int status : {1, -1, 256}) {
        machine_.Answer(LightFunction::kGetVersion, status);
        ExpectUnsupported();
        EXPECT_EQ(lastCalls_, (Calls{"Initialize 0", "GetVersion 1 0"})) << status;
    }
}

TEST_F(LightLife, IsUnsupportedWhenTheLightDoesNotGoOffAfterAFailedStart) {
    machine_.Answer(LightFunction::kInitialize, 1);
    machine_.Answer(LightFunction::kTurnOff, 1);
    ExpectUnsupported();
    EXPECT_EQ(lastCalls_, (Calls{"Initialize 0", "GetVersion 1 0", "TurnOff 1"}));
}

TEST_F(LightLife, EndsWhenALaterInitialisationFails) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    machine_.Answer(LightFunction::kTurnOff, 1);
    ExpectUnsupported();
    machine_.Answer(LightFunction::kTurnOff, 0);
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_TRUE(IsInitialized());
}

std::string NameOfFunction(const ::testing::TestParamInfo<std::size_t>& info) {
    return sim::kLightFunctionNames[info.param];
}

class MissingLightFunction : public ::testing::TestWithParam<std::size_t> {
  protected:
    LightMachine machine_;
};

TEST_P(MissingLightFunction, MakesTheLightUnsupported) {
    {
        const LibraryFolder folder(FolderWithout(sim::kLightFunctionNames[GetParam()]));
        EXPECT_FAILURE(QLCAM_Initialize(), QLERR_OP_UNSUPPORTED, kLightUnsupported);
    }
    EXPECT_EQ(machine_.Calls(), Calls{});
    ExpectNotInitialized();
    // The library stays loaded; without it the right one is found.
    EXPECT_EQ(UnloadWholly(kLightLibrary), 1);
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_TRUE(IsInitialized());
}

INSTANTIATE_TEST_SUITE_P(Functions, MissingLightFunction, ::testing::Range(std::size_t{0}, sim::kLightFunctionCount),
                         NameOfFunction);

QUARLIN_CHILD_MODE(switch_the_light) {
    if (QLCAM_Initialize() != QLERR_OK) {
        return 1;
    }
    // Ends without tidying up.
    return (arguments[0] == "on" ? QLCAM_SetCameraLightOn() : QLCAM_TurnCameraLightOnForTime(9)) == QLERR_OK ? 0 : 2;
}

TEST_F(LightLife, OfAnotherProgramLeavesTheLightBurning) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    machine_.Use()->stoppedClock = 1000000;
    uint8_t time = 0;
    EXPECT_EQ(RunChild("switch_the_light", {}, {L"on"}).exitCode, 0U);
    EXPECT_SUCCESS(QLCAM_GetCameraLightTime(&time));
    EXPECT_EQ(time, 255);
    EXPECT_EQ(RunChild("switch_the_light", {}, {L"9"}).exitCode, 0U);
    EXPECT_SUCCESS(QLCAM_GetCameraLightTime(&time));
    EXPECT_EQ(time, 9);
    EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
    EXPECT_EQ(machine_.Timer(), 0);
}

TEST_F(LightLife, LeavesNothingOverManyRounds) {
    const auto round = [] {
        bool on = false;
        ASSERT_EQ(QLCAM_Initialize(), QLERR_OK);
        ASSERT_EQ(QLCAM_SetCameraLightOn(), QLERR_OK);
        ASSERT_EQ(QLCAM_IsCameraLightOn(&on), QLERR_OK);
        ASSERT_EQ(QLCAM_IsCameraLightOn(nullptr), QLERR_INVALID_ARGUMENT);
        ASSERT_EQ(QLCAM_Uninitialize(), QLERR_OK);
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

TEST_F(LightLife, LeavesNothingOverManyRoundsWithoutALight) {
    machine_.Answer(LightFunction::kTurnOff, 1);
    const auto round = [] { ASSERT_EQ(QLCAM_Initialize(), QLERR_OP_UNSUPPORTED); };
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
