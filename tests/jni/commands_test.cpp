// SPDX-License-Identifier: Apache-2.0
// The native methods of GPS, devices and camera light that give nothing but their success.
#include <limits>

#include "methods_fixture.h"

#include "com_norvane_quarlin_camera_CameraLight.h"
#include "com_norvane_quarlin_device_DeviceManager.h"
#include "com_norvane_quarlin_gps_GPS.h"

namespace quarlin::test {
namespace {

struct Command {
    std::string function;  // of the library
    const char* owner;
    std::string call;  // as the library sees it
    std::function<jint(JNIEnv*, jclass)> method;
};

Command Plain(std::string function, const char* owner, jint (*method)(JNIEnv*, jclass)) {
    return {function, owner, function + "()", method};
}

const Command kCommands[] = {
    {"QLGPS_Initialize", kGps, "QLGPS_Initialize(3)",
     [](JNIEnv* env, jclass self) { return Java_com_norvane_quarlin_gps_GPS_QLGPS_1Initialize(env, self, 3); }},
    Plain("QLGPS_Uninitialize", kGps, Java_com_norvane_quarlin_gps_GPS_QLGPS_1Uninitialize),
    Plain("QLGPS_Enable", kGps, Java_com_norvane_quarlin_gps_GPS_QLGPS_1Enable),
    Plain("QLGPS_Disable", kGps, Java_com_norvane_quarlin_gps_GPS_QLGPS_1Disable),
    Plain("QLDEVICE_Initialize", kDeviceManager, Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Initialize),
    Plain("QLCAM_Initialize", kCameraLight, Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1Initialize),
    Plain("QLCAM_Uninitialize", kCameraLight, Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1Uninitialize),
    Plain("QLCAM_SetCameraLightOn", kCameraLight, Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1SetCameraLightOn),
    Plain("QLCAM_SetCameraLightOff", kCameraLight,
          Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1SetCameraLightOff),
    {"QLCAM_TurnCameraLightOnForTime", kCameraLight, "QLCAM_TurnCameraLightOnForTime(254)",
     [](JNIEnv* env, jclass self) {
         return Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1TurnCameraLightOnForTime(env, self, 254);
     }},
};

class ResultCommand : public NativeMethods, public ::testing::WithParamInterface<Command> {
  protected:
    jint Perform(NativeCall& call) { return GetParam().method(call.Env(), Owner(call, GetParam().owner)); }
};

TEST_P(ResultCommand, CallsItsFunctionAndGivesZero) {
    for (int round = 0; round < 3; ++round) {
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call), 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
    }
    EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().call, GetParam().call, GetParam().call}));
    EXPECT_EQ(flat_.TakeHelperCalls(), Calls());
}

TEST_P(ResultCommand, RaisesEachFailureAndConsumesItsRecord) {
    for (const RaisedFailure& failure : ResultFailures()) {
        SCOPED_TRACE(failure.code);
        flat_.Fails(GetParam().function, failure.code, kMessage);
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call), failure.code);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().call}));
    }
    flat_.Succeeds(GetParam().function);
    NativeCall call(vm_);
    EXPECT_EQ(Perform(call), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_P(ResultCommand, LeavesTheRecordWhenTheVmDoesNotFindTheClass) {
    flat_.Fails(GetParam().function, QLERR_IO_ERROR, kMessage);
    vm_.HideClass("java/io/IOException");
    NativeCall call(vm_);
    EXPECT_EQ(Perform(call), QLERR_IO_ERROR);
    ASSERT_NE(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Thrown()->className, "java/lang/NoClassDefFoundError");
    EXPECT_EQ(flat_.Error(), (FlatError{QLERR_IO_ERROR, kMessage}));
}

TEST_P(ResultCommand, CutsAMessageThatIsTooLong) {
    for (const std::size_t length : {std::size_t{249}, std::size_t{250}, std::size_t{2000}}) {
        flat_.Fails(GetParam().function, QLERR_INVALID_STATE, std::string(length, 'x'));
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call), QLERR_INVALID_STATE);
        EXPECT_EQ(call.Thrown(), (JavaException{"java/lang/IllegalStateException", std::string(249, 'x')}));
        EXPECT_EQ(flat_.Error(), std::nullopt);
    }
}

INSTANTIATE_TEST_SUITE_P(Natives, ResultCommand, ::testing::ValuesIn(kCommands),
                         [](const auto& command) { return command.param.function; });

// Those with an argument have bodies of another kind, and the same frame around them.
class ResultCommandThatThrows : public ResultCommand {};

TEST_P(ResultCommandThatThrows, LetsNoExceptionOfCppOut) {
    for (const ThrownInside& thrown : ThrownInsideAFunction()) {
        SCOPED_TRACE(thrown.what);
        const auto raise = thrown.raise;
        if (GetParam().call.ends_with("()")) {
            flat_.Does(GetParam().function, [raise]() -> QLerr {
                raise();
                return QLERR_OK;
            });
        } else {
            flat_.Does(GetParam().function, [raise](int) -> QLerr {
                raise();
                return QLERR_OK;
            });
        }
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call), 0);
        EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
        EXPECT_EQ(call.Locals(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Natives, ResultCommandThatThrows, ::testing::ValuesIn(kCommands),
                         [](const auto& command) { return command.param.function; });

class ResultCommands : public NativeMethods {};

TEST_F(ResultCommands, PassTheirNumbersAsTheyAre) {
    constexpr jint kLeast = std::numeric_limits<jint>::min();
    constexpr jint kMost = std::numeric_limits<jint>::max();
    NativeCall call(vm_);
    for (const jint number : {0, -1, kLeast, kMost}) {
        Java_com_norvane_quarlin_gps_GPS_QLGPS_1Initialize(call.Env(), Owner(call, kGps), number);
        Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1TurnCameraLightOnForTime(call.Env(),
                                                                                    Owner(call, kCameraLight), number);
        const std::string text = "(" + std::to_string(number) + ")";
        EXPECT_EQ(flat_.TakeCalls(), Calls({"QLGPS_Initialize" + text, "QLCAM_TurnCameraLightOnForTime" + text}));
    }
}

TEST_F(ResultCommands, UninitializeOfDevicesRaisesNothing) {
    flat_.Does("QLDEVICE_Uninitialize", [] { return QLERR_OK; });
    NativeCall call(vm_);
    jclass const owner = Owner(call, kDeviceManager);
    EXPECT_EQ(Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Uninitialize(call.Env(), owner), 0);
    for (const RaisedFailure& failure : ResultFailures()) {
        flat_.Fails("QLDEVICE_Uninitialize", failure.code, kMessage);
        EXPECT_EQ(Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Uninitialize(call.Env(), owner),
                  failure.code);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        // Nobody has asked for the text.
        EXPECT_EQ(flat_.Error(), (FlatError{failure.code, kMessage}));
    }
    EXPECT_EQ(flat_.TakeHelperCalls(), Calls());
}

TEST_F(ResultCommands, UninitializeOfDevicesLetsNoExceptionOfCppOut) {
    for (const ThrownInside& thrown : ThrownInsideAFunction()) {
        const auto raise = thrown.raise;
        flat_.Does("QLDEVICE_Uninitialize", [raise]() -> QLerr {
            raise();
            return QLERR_OK;
        });
        NativeCall call(vm_);
        EXPECT_EQ(Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1Uninitialize(call.Env(),
                                                                                       Owner(call, kDeviceManager)),
                  QLERR_INTERNAL_ERROR);
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
}

}  // namespace
}  // namespace quarlin::test
