// SPDX-License-Identifier: Apache-2.0
// What the tests of the native methods share: a VM and a library for each test, and what each failure becomes in Java.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "flat_library.h"
#include "stand_in_vm.h"

namespace quarlin::test {

inline constexpr const char* kGps = "com/norvane/quarlin/gps/GPS";
inline constexpr const char* kDeviceManager = "com/norvane/quarlin/device/DeviceManager";
inline constexpr const char* kCameraLight = "com/norvane/quarlin/camera/CameraLight";
inline constexpr const char* kRfidNatives = "com/norvane/quarlin/uhfrfid/UhfRfidNativeBase";
inline constexpr const char* kRfidCoreNatives = "com/norvane/quarlin/uhfrfid/CoreNatives";
inline constexpr const char* kRfidException = "com/norvane/quarlin/uhfrfid/RfidException";

inline constexpr const char* kIllegalArgument = "java/lang/IllegalArgumentException";
inline constexpr const char* kRuntimeException = "java/lang/RuntimeException";
inline constexpr const char* kOutOfMemory = "java/lang/OutOfMemoryError";

// What a native method says when something went wrong that is no failure of the library's.
inline constexpr const char* kOwnFailure = "An unknown error occurred";

// The message that the tests let the library leave.
inline constexpr const char* kMessage = "It went wrong\nError 5: Access denied.";

// A code, and the exception that it becomes with kMessage.
struct RaisedFailure {
    QLerr code;
    JavaException exception;
};

// Of the families whose exceptions are Java's own.
const std::vector<RaisedFailure>& ResultFailures();
// Of the UHF RFID family.
const std::vector<RaisedFailure>& RfidFailures();

// Exceptions of C++ of several kinds, as a function of the library may throw them.
struct ThrownInside {
    const char* what;
    std::function<void()> raise;
};
const std::vector<ThrownInside>& ThrownInsideAFunction();

// The VM and the library of one test.
class NativeMethods : public ::testing::Test {
  protected:
    // The class whose native method is called.
    jclass Owner(NativeCall& call, const std::string& name) {
        if (owners_.insert(name).second) {
            vm_.DefineClass(name);
        }
        return call.Class(name);
    }

    StandInVm vm_;
    FlatLibrary flat_;

  private:
    std::set<std::string> owners_;
};

// With the exception class of the UHF RFID family known to the library.
class RfidMethods : public NativeMethods {
  protected:
    void SetUp() override;
};

}  // namespace quarlin::test
