// SPDX-License-Identifier: Apache-2.0
// A scanner of the machine, used from Java.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "barcode_support/scanner_machine_win.h"
#include "jni/java_library_win.h"
#include "jni/scan_receiver_win.h"
#include "stand_in_vm.h"

#include "com_norvane_quarlin_bcr_CoreNatives.h"
#include "com_norvane_quarlin_bcr_QlBarcode.h"

namespace quarlin::test {

inline constexpr const char* kScannerNatives = "com/norvane/quarlin/bcr/QlBarcode";
inline constexpr const char* kScannerCore = "com/norvane/quarlin/bcr/CoreNatives";
inline constexpr const char* kScannerException = "com/norvane/quarlin/bcr/BarcodeException";

// The failure of a native method that gives nothing but its success.
struct JavaFailure {
    jint result = 0;
    std::optional<JavaException> thrown;

    bool operator==(const JavaFailure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const JavaFailure& failure) {
    out << failure.result;
    return failure.thrown ? out << ", " << *failure.thrown : out;
}

class JavaScanTest : public ::testing::Test {
  protected:
    using Method = jint(JNIEnv*, jclass);

    explicit JavaScanTest(const ScannerSetup& setup = ScannerSetup::IntermecBuiltIn()) : machine_(setup) {
        for (const char* const name : {kScannerNatives, kScannerCore}) {
            vm_.DefineClass(name);
        }
        vm_.DefineException(kScannerException);
    }
    // Whatever state the test has left. Scans reach Java no more.
    ~JavaScanTest() override {
        receiver_.DoInside({});
        if (library_ != nullptr) {
            library_->QLBCR_Disable();
            library_->QLBCR_Uninitialize();
        }
        library_.reset();
        machine_.Intermec().SetDefaults();
        machine_.Honeywell().SetDefaults();
    }

    void Load() { library_ = std::make_unique<JavaLibrary>(); }
    void Init() {
        NativeCall call(vm_);
        ASSERT_EQ(
            QUARLIN_NATIVE(*library_, bcr_CoreNatives_nInit)(
                call.Env(), call.Class(kScannerCore), call.Class(kScannerException), call.Class(ScanReceiver::kClass)),
            JNI_TRUE);
        ASSERT_EQ(call.Thrown(), std::nullopt);
    }
    JavaFailure Run(Method* method) {
        NativeCall call(vm_);
        const jint result = method(call.Env(), call.Class(kScannerNatives));
        return {result, call.Thrown()};
    }
    JavaFailure Initialize() { return Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1Initialize)); }
    JavaFailure Uninitialize() { return Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1Uninitialize)); }
    JavaFailure Enable() { return Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1Enable)); }
    JavaFailure Disable() { return Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1Disable)); }
    // Loaded, initialised and enabled.
    void Begin() {
        Load();
        Init();
        ASSERT_EQ(Initialize(), JavaFailure());
        ASSERT_EQ(Enable(), JavaFailure());
    }

    StandInVm vm_;
    ScanReceiver receiver_{vm_};
    ScannerMachine machine_;
    std::unique_ptr<JavaLibrary> library_;
};

}  // namespace quarlin::test
