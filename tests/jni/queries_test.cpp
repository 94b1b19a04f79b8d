// SPDX-License-Identifier: Apache-2.0
// The native methods of GPS, devices and camera light that give one value.
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "methods_fixture.h"

#include "com_norvane_quarlin_camera_CameraLight.h"
#include "com_norvane_quarlin_device_DeviceManager.h"
#include "com_norvane_quarlin_gps_GPS.h"

namespace quarlin::test {
namespace {

struct Query {
    std::string function;  // of the library
    const char* owner;
    std::string call;  // as the library sees it
    JavaValue zero;
    std::function<JavaValue(JNIEnv*, jclass)> method;
    // What the library gives, and what Java gets.
    std::vector<std::pair<FlatValue, JavaValue>> values;
    // The function writes the last of the values, then does this.
    std::function<void(FlatLibrary&, std::function<QLerr()>)> writesAndThen;
};

template <typename Native>
Native Last(const std::vector<std::pair<FlatValue, JavaValue>>& values) {
    const FlatValue& last = values.back().first;
    return std::holds_alternative<double>(last) ? static_cast<Native>(std::get<double>(last))
                                                : static_cast<Native>(std::get<std::int64_t>(last));
}

template <typename Java, typename Native>
Query Plain(const std::string& function, const char* owner, QLerr (* /*flat*/)(Native*),
            Java (*method)(JNIEnv*, jclass), std::vector<std::pair<FlatValue, JavaValue>> values) {
    return {function,
            owner,
            function + "()",
            Java{},
            [method](JNIEnv* env, jclass self) { return method(env, self); },
            values,
            [function, value = Last<Native>(values)](FlatLibrary& flat, std::function<QLerr()> then) {
                flat.Does(function, [value, then](Native* out) {
                    *out = value;
                    return then();
                });
            }};
}

using DeviceMethod = jboolean (*)(JNIEnv*, jclass, jint);

Query OfDevice(const std::string& function, DeviceMethod method) {
    return {function,
            kDeviceManager,
            function + "(15)",
            jboolean{JNI_FALSE},
            [method](JNIEnv* env, jclass self) { return method(env, self, 15); },
            {{0, jboolean{JNI_FALSE}}, {1, jboolean{JNI_TRUE}}},
            [function](FlatLibrary& flat, std::function<QLerr()> then) {
                flat.Does(function, [then](int, bool* out) {
                    *out = true;
                    return then();
                });
            }};
}

const std::vector<std::pair<FlatValue, JavaValue>> kTruths = {{0, jboolean{JNI_FALSE}}, {1, jboolean{JNI_TRUE}}};
const std::vector<std::pair<FlatValue, JavaValue>> kInts = {
    {0, 0}, {1, 1}, {150, 150}, {-1, -1}, {-2147483648LL, std::numeric_limits<jint>::min()}, {2147483647, 2147483647}};
const std::vector<std::pair<FlatValue, JavaValue>> kDoubles = {{0.0, 0.0},       {-122.25, -122.25},   {1e300, 1e300},
                                                               {5e-324, 5e-324}, {HUGE_VAL, HUGE_VAL}, {359.5, 359.5}};
// One byte, without a sign.
const std::vector<std::pair<FlatValue, JavaValue>> kBytes = {{0, 0}, {1, 1}, {127, 127}, {128, 128}, {255, 255}};

const std::vector<Query>& Queries() {
    static const std::vector<Query> queries = {
        Plain("QLGPS_IsEnabled", kGps, QLGPS_IsEnabled, Java_com_norvane_quarlin_gps_GPS_QLGPS_1IsEnabled, kTruths),
        Plain("QLGPS_GetFixQuality", kGps, QLGPS_GetFixQuality, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetFixQuality,
              kInts),
        Plain("QLGPS_GetFixStatus", kGps, QLGPS_GetFixStatus, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetFixStatus,
              kInts),
        Plain("QLGPS_GetMaxSat", kGps, QLGPS_GetMaxSat, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetMaxSat, kInts),
        Plain("QLGPS_GetSatellitesUsedForFix", kGps, QLGPS_GetSatellitesUsedForFix,
              Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSatellitesUsedForFix, kInts),
        Plain("QLGPS_GetBearing", kGps, QLGPS_GetBearing, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetBearing, kDoubles),
        Plain("QLGPS_GetSpeed", kGps, QLGPS_GetSpeed, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSpeed, kDoubles),
        Plain("QLGPS_GetHDOP", kGps, QLGPS_GetHDOP, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetHDOP, kDoubles),
        Plain("QLGPS_GetPDOP", kGps, QLGPS_GetPDOP, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetPDOP, kDoubles),
        Plain("QLGPS_GetVDOP", kGps, QLGPS_GetVDOP, Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetVDOP, kDoubles),
        OfDevice("QLDEVICE_GetDeviceAvailable",
                 Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceAvailable),
        OfDevice("QLDEVICE_GetDeviceEnabledInBios",
                 Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceEnabledInBios),
        OfDevice("QLDEVICE_GetDevicePoweredOn",
                 Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDevicePoweredOn),
        Plain("QLCAM_IsCameraLightOn", kCameraLight, QLCAM_IsCameraLightOn,
              Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1IsCameraLightOn, kTruths),
        Plain("QLCAM_GetCameraLightTime", kCameraLight, QLCAM_GetCameraLightTime,
              Java_com_norvane_quarlin_camera_CameraLight_QLCAM_1GetCameraLightTime, kBytes),
    };
    return queries;
}

class ResultQuery : public NativeMethods, public ::testing::WithParamInterface<Query> {
  protected:
    JavaValue Ask(NativeCall& call) { return GetParam().method(call.Env(), Owner(call, GetParam().owner)); }
};

TEST_P(ResultQuery, GivesTheValueInJavasType) {
    for (const auto& [native, java] : GetParam().values) {
        flat_.Gives(GetParam().function, {native});
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call), java);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().call}));
    }
    EXPECT_EQ(flat_.TakeHelperCalls(), Calls());
}

// The library complains when the variable is not zero before the call.
TEST_P(ResultQuery, GivesZeroWhenTheFunctionWritesNothing) {
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call), GetParam().zero);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_P(ResultQuery, RaisesEachFailureAndConsumesItsRecord) {
    for (const RaisedFailure& failure : ResultFailures()) {
        SCOPED_TRACE(failure.code);
        flat_.Fails(GetParam().function, failure.code, kMessage);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call), GetParam().zero);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().call}));
    }
}

TEST_P(ResultQuery, GivesWhatAFailingFunctionHasWritten) {
    GetParam().writesAndThen(flat_, [this] {
        flat_.LeaveError(QLERR_INTERNAL_ERROR, kMessage);
        return QLERR_INTERNAL_ERROR;
    });
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call), GetParam().values.back().second);
    EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kMessage}));
}

TEST_P(ResultQuery, LetsNoExceptionOfCppOut) {
    for (const ThrownInside& thrown : ThrownInsideAFunction()) {
        SCOPED_TRACE(thrown.what);
        GetParam().writesAndThen(flat_, [&thrown] {
            thrown.raise();
            return QLERR_OK;
        });
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call), GetParam().zero);
        EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
    }
}

INSTANTIATE_TEST_SUITE_P(Natives, ResultQuery, ::testing::ValuesIn(Queries()),
                         [](const auto& query) { return query.param.function; });

class DeviceQuestions : public NativeMethods {};

TEST_F(DeviceQuestions, PassTheDevicesNumberAsItIs) {
    NativeCall call(vm_);
    jclass const owner = Owner(call, kDeviceManager);
    for (const jint number : {0, 1, -1, std::numeric_limits<jint>::min(), std::numeric_limits<jint>::max()}) {
        Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceAvailable(call.Env(), owner, number);
        Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDeviceEnabledInBios(call.Env(), owner, number);
        Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetDevicePoweredOn(call.Env(), owner, number);
        const std::string text = "(" + std::to_string(number) + ")";
        EXPECT_EQ(flat_.TakeCalls(),
                  Calls({"QLDEVICE_GetDeviceAvailable" + text, "QLDEVICE_GetDeviceEnabledInBios" + text,
                         "QLDEVICE_GetDevicePoweredOn" + text}));
    }
}

}  // namespace
}  // namespace quarlin::test
