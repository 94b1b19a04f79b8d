// SPDX-License-Identifier: Apache-2.0
// The library's own failures, with its own texts, as Java sees them; and what needs no device.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "captured_output.h"
#include "jni/java_library_win.h"
#include "stand_in_vm.h"
#include "support/child_process_win.h"
#include "support/system_text_win.h"

#include "com_norvane_quarlin_bcr_QlBarcode.h"
#include "com_norvane_quarlin_camera_CameraLight.h"
#include "com_norvane_quarlin_device_DeviceManager.h"
#include "com_norvane_quarlin_gps_GPS.h"
#include "com_norvane_quarlin_Library.h"
#include "com_norvane_quarlin_msr_MagStripeReader.h"
#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"
#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {
namespace {

constexpr const char* kNatives = "com/norvane/quarlin/Natives";
constexpr const char* kRfidException = "com/norvane/quarlin/uhfrfid/RfidException";
constexpr const char* kIllegalArgument = "java/lang/IllegalArgumentException";
constexpr const char* kIllegalState = "java/lang/IllegalStateException";

class JavaFailures : public ::testing::Test {
  protected:
    JavaFailures() {
        vm_.DefineClass(kNatives);
        vm_.DefineException(kRfidException);
    }

    // What Java is thrown by a method with these arguments; nothing of it is left for the thread's next failure.
    template <typename Method, typename... Arguments>
    std::optional<JavaException> ThrownBy(Method* method, Arguments... arguments) {
        NativeCall call(vm_);
        method(call.Env(), call.Class(kNatives), arguments...);
        EXPECT_EQ(library_.FetchLastError(), Failure());
        return call.Thrown();
    }
    void InitRfid() {
        NativeCall call(vm_);
        ASSERT_EQ(QUARLIN_NATIVE(library_, uhfrfid_CoreNatives_nInit)(call.Env(), call.Class(kNatives),
                                                                      call.Class(kRfidException)),
                  JNI_TRUE);
    }

    StandInVm vm_;
    JavaLibrary library_;
};

TEST_F(JavaFailures, OfGpsHaveItsTexts) {
    const JavaException notInitialized{kIllegalState, "GPS has not been initialized."};
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1Enable)), notInitialized);
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1GetBearing)), notInitialized);
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1GetTimeStamp)), notInitialized);
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1GetSatellites), jint{150}), notInitialized);
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1Initialize), jint{0}),
              (JavaException{kIllegalArgument, "COM port value is out of bounds"}));
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, gps_GPS_QLGPS_1Initialize), jint{255}),
              (JavaException{kIllegalArgument, "Incorrect COM port"}));
}

TEST_F(JavaFailures, OfDevicesHaveTheirTexts) {
    const JavaException notInitialized{kIllegalState, "Device API has not been initialized."};
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, device_DeviceManager_QLDEVICE_1GetDeviceAvailable), jint{1}),
              notInitialized);
    NativeCall call(vm_);
    EXPECT_EQ(QUARLIN_NATIVE(library_, device_DeviceManager_QLDEVICE_1Uninitialize)(call.Env(), call.Class(kNatives)),
              QLERR_INVALID_STATE);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(library_.FetchLastError(), (Failure{QLERR_INVALID_STATE, "Device API has not been initialized."}));
}

TEST_F(JavaFailures, OfTheCameraLightHaveItsTexts) {
    const JavaException notInitialized{kIllegalState, "Camera light API has not been initialized."};
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, camera_CameraLight_QLCAM_1SetCameraLightOn)), notInitialized);
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, camera_CameraLight_QLCAM_1GetCameraLightTime)), notInitialized);
}

// Two functions behind one method: Java gets the second one's failure.
TEST_F(JavaFailures, OfTheCardReaderHaveItsTexts) {
    const QLerr enable = library_.QLMSR_Enable();
    const Failure failure = library_.FetchLastError();
    ASSERT_EQ(enable, QLERR_INVALID_STATE);
    ASSERT_EQ(failure.text, "No exist manager instance.");
    unsigned int id = 0;
    ASSERT_NE(library_.QLMSR_RemoveCallback(id), QLERR_OK);
    const Failure remove = library_.FetchLastError();
    const auto thrown = ThrownBy(QUARLIN_NATIVE(library_, msr_MagStripeReader_QLMSR_1Disable));
    ASSERT_NE(thrown, std::nullopt);
    EXPECT_EQ(thrown->message, remove.text);
}

TEST_F(JavaFailures, OfTheRfidReaderHaveTheNamesOfItsCodes) {
    InitRfid();
    EXPECT_EQ(ThrownBy(QUARLIN_NATIVE(library_, uhfrfid_UhfRfidNativeBase_QLUHFRFID_1CloseReader), jint{8}),
              (JavaException{kRfidException, "Unexpected behaviour encountered,QLERR_UHFRFID_SYSTEM"}));
}

TEST_F(JavaFailures, OfArraysReachNoReader) {
    InitRfid();
    NativeCall call(vm_);
    const JavaRef password = vm_.Bytes({1, 2, 3});
    QUARLIN_NATIVE(library_, uhfrfid_UhfRfidNativeBase_QLUHFRFID_1KillTag)
    (call.Env(), call.Class(kNatives), 8, call.Pass<jbyteArray>(password), 4);
    EXPECT_EQ(call.Thrown(), (JavaException{kIllegalArgument, "passwordLength is beyond the end of password"}));
    // The family's lock, which its first call makes, is not there.
    EXPECT_EQ(library_.FetchLastError(), Failure());
}

// The raiser of the group has no VM to ask: it says so, and Java sees nothing.
QUARLIN_CHILD_MODE(fail_without_init) {
    StandInVm vm;
    vm.DefineClass(kNatives);
    const JavaLibrary library;
    NativeCall call(vm);
    const jint result = QUARLIN_NATIVE(library, bcr_QlBarcode_nQLBCR_1StopScanning)(call.Env(), call.Class(kNatives));
    return result == JNI_ERR && !call.Thrown() ? 7 : 1;
}

TEST(JavaWithoutInit, FailureIsToldOnStandardOutputAlone) {
    const ChildResult child = RunChild("fail_without_init");
    EXPECT_EQ(child.exitCode, 7U);
    EXPECT_EQ(child.out, "Cannot find JVM\n");
    EXPECT_EQ(child.err, "");
}

// --- the library's texts ---

std::string FlatText(QLerr (*function)(wchar_t*, int*)) {
    std::array<wchar_t, 250> text{};
    int count = static_cast<int>(text.size());
    return function(text.data(), &count) == QLERR_OK ? ToUtf8(text.data()) : "";
}

QUARLIN_CHILD_MODE(tell_library_texts) {
    StandInVm vm;
    vm.DefineClass(kNatives);
    const JavaLibrary library;
    for (int round = 0; round < 2; ++round) {
        NativeCall call(vm);
        const std::string version =
            call.ReturnedText(QUARLIN_NATIVE(library, Library_QLLIB_1GetSDKVersion)(call.Env(), call.Class(kNatives)));
        const std::string model =
            call.ReturnedText(QUARLIN_NATIVE(library, Library_QLLIB_1GetModelNumber)(call.Env(), call.Class(kNatives)));
        if (call.Thrown() || version.empty() || version != FlatText(library.QLLIB_GetSDKVersion) ||
            model != FlatText(library.QLLIB_GetModelNumber)) {
            return 1;
        }
        library.FetchLastError();
    }
    return 7;
}

TEST(JavaLibraryTexts, AreThoseOfTheFlatFunctions) {
    EXPECT_EQ(RunChild("tell_library_texts").exitCode, 7U);
}

}  // namespace
}  // namespace quarlin::test
