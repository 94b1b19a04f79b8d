// SPDX-License-Identifier: Apache-2.0
// What the tests of the frame share: a VM with the classes that the frame calls, a library, and threads that the VM
// does not know.
#pragma once

#include "flat_library.h"
#include "stand_in_vm.h"

#include "jni/java_vm.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quarlin::test {

using Thrown = std::optional<JavaException>;
using Texts = std::vector<std::string>;

inline constexpr const char* kBarcodeFailure = "com/norvane/quarlin/bcr/BarcodeException";
inline constexpr const char* kBarcodeEvents = "com/norvane/quarlin/bcr/ScanDispatcher";
inline constexpr const char* kRfidFailure = "com/norvane/quarlin/uhfrfid/RfidException";
inline constexpr const char* kSwipeEvents = "com/norvane/quarlin/msr/SwipeDispatcher";

// As the family's own thread runs a callback.
inline void OnLibraryThread(const std::function<void()>& body) {
    std::thread(body).join();
}

// Begins and ends as a process does that never called an initialisation entry.
class JavaFrame : public testing::Test {
  protected:
    JavaFrame() { Forget(); }
    ~JavaFrame() override { Forget(); }

    StandInVm vm;
    FlatLibrary flat;

  private:
    static void Forget() {
        jni::bcrVm = nullptr;
        jni::bcrExceptionClass = nullptr;
        jni::bcrCallbackClass.Store({});
        jni::msrVm = nullptr;
        jni::msrCallbackClass.Store({});
        jni::rfidVm = nullptr;
        jni::rfidExceptionClass = nullptr;
    }
};

}  // namespace quarlin::test
