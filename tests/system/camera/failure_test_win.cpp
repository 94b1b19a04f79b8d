// SPDX-License-Identifier: Apache-2.0
// What a failure leaves and what a success takes away: memory that runs out while the family starts, and older errors.
#include <functional>
#include <ostream>

#include "camera/light_machine_win.h"
#include "support/failing_allocation_win.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

class LightMemory : public ::testing::Test {
  protected:
    // Each time another allocation fails; gives how many there were.
    int InitializeWithEachAllocationFailing() {
        for (int number = 1;; ++number) {
            QLerr result = QLERR_OK;
            bool hasFailed = false;
            {
                const FailingAllocation failing(number);
                result = QLCAM_Initialize();
                hasFailed = failing.HasFailed();
            }
            if (!hasFailed) {
                EXPECT_SUCCESS(result);
                return number - 1;
            }
            EXPECT_FAILURE(result, QLERR_INTERNAL_ERROR, "An unknown error occurred") << number;
            machine_.Calls();
            EXPECT_FAILURE(QLCAM_SetCameraLightOn(), QLERR_INVALID_STATE, kLightNotInitialized);
            EXPECT_FAILURE(QLCAM_Uninitialize(), QLERR_INVALID_STATE, kLightNotInitialized);
            EXPECT_EQ(machine_.Calls(), Calls{});
        }
    }

    LightMachine machine_;
};

TEST_F(LightMemory, ThatIsShortFailsInitializeAndTheFamilyIsNotInitialized) {
    EXPECT_GE(InitializeWithEachAllocationFailing(), 1);
    EXPECT_SUCCESS(QLCAM_Uninitialize());
}

// The light that was there is given up before the new one is made.
TEST_F(LightMemory, ThatIsShortEndsAFamilyThatWasInitialized) {
    EXPECT_SUCCESS(QLCAM_Initialize());
    EXPECT_GE(InitializeWithEachAllocationFailing(), 1);
    EXPECT_SUCCESS(QLCAM_SetCameraLightOff());
}

struct Call {
    const char* name;
    std::function<QLerr()> call;
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << call.name;
}

class LightSuccess : public LightTest, public ::testing::WithParamInterface<Call> {};

TEST_P(LightSuccess, ErasesAnOlderError) {
    ASSERT_EQ(QLCAM_IsCameraLightOn(nullptr), QLERR_INVALID_ARGUMENT);
    EXPECT_SUCCESS(GetParam().call());
}

INSTANTIATE_TEST_SUITE_P(
    Of, LightSuccess,
    ::testing::Values(Call{"Initialize", [] { return QLCAM_Initialize(); }},
                      Call{"SetCameraLightOn", [] { return QLCAM_SetCameraLightOn(); }},
                      Call{"SetCameraLightOff", [] { return QLCAM_SetCameraLightOff(); }},
                      Call{"TurnCameraLightOnForTime", [] { return QLCAM_TurnCameraLightOnForTime(5); }},
                      Call{"TurnCameraLightOnForNoTime", [] { return QLCAM_TurnCameraLightOnForTime(-5); }},
                      Call{"IsCameraLightOn",
                           [] {
                               bool on = false;
                               return QLCAM_IsCameraLightOn(&on);
                           }},
                      Call{"GetCameraLightTime",
                           [] {
                               uint8_t time = 0;
                               return QLCAM_GetCameraLightTime(&time);
                           }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(LightSuccessOfTheFirstAndTheLast, ErasesAnOlderError) {
    const LightMachine machine;
    ASSERT_EQ(QLCAM_IsCameraLightOn(nullptr), QLERR_INVALID_STATE);
    EXPECT_SUCCESS(QLCAM_Initialize());
    ASSERT_EQ(QLCAM_IsCameraLightOn(nullptr), QLERR_INVALID_ARGUMENT);
    EXPECT_SUCCESS(QLCAM_Uninitialize());
}

}  // namespace
}  // namespace quarlin::test
