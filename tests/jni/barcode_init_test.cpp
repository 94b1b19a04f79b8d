// SPDX-License-Identifier: Apache-2.0
// com.norvane.quarlin.bcr.CoreNatives: what the barcode group learns of Java.
#include "barcode_method.h"
#include "captured_output.h"

#include "com_norvane_quarlin_bcr_CoreNatives.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

// The group has been initialised once already.
class BarcodeInit : public NativeMethodTest, public testing::Test {
  protected:
    static constexpr const char* kCallbackClass = "com/norvane/quarlin/bcr/QlBarcode";

    BarcodeInit() { vm.DefineException("app/Failure"); }

    // Null names are null references.
    bool Init(const char* exceptionClass, const char* callbackClass) {
        NativeCall call(vm);
        const auto classOf = [&](const char* name) { return name == nullptr ? nullptr : call.Class(name); };
        const jboolean done = Java_com_norvane_quarlin_bcr_CoreNatives_nInit(
            call.Env(), call.Class("com/norvane/quarlin/bcr/CoreNatives"), classOf(exceptionClass),
            classOf(callbackClass));
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_LE(done, JNI_TRUE);
        return done != JNI_FALSE;
    }

    // The class of what an internal error raises; empty when nothing is.
    std::string RaisedClass() {
        flat.Fails("QLBCR_Disable", QLERR_INTERNAL_ERROR, "Message");
        NativeCall call(vm);
        raised_ = static_cast<jint>(Barcode(QL_BARCODE(Disable))(call).number);
        return call.Thrown() ? call.Thrown()->className : "";
    }

    jint raised_ = 0;
};

TEST_F(BarcodeInit, KeepsBothClasses) {
    CapturedOutput output;
    EXPECT_TRUE(Init("app/Failure", kCallbackClass));
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(RaisedClass(), "app/Failure");
    ExpectGlobals(2);
}

TEST_F(BarcodeInit, NeverReleasesWhatItHasKept) {
    for (int times = 0; times < 5; ++times) {
        EXPECT_TRUE(Init("app/Failure", kCallbackClass));
        EXPECT_TRUE(Init(kBarcodeException, kCallbackClass));
    }
    EXPECT_EQ(RaisedClass(), kBarcodeException);
    ExpectGlobals(20);
}

TEST_F(BarcodeInit, KeepsTheClassesAlsoWhenTheMethodIsMissing) {
    vm.DefineClass("app/Callback")
        .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;[BILjava/lang/String;I[B)V")
        .StaticMethod("NativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V")
        .Method("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V");
    CapturedOutput output;
    EXPECT_FALSE(Init("app/Failure", "app/Callback"));
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(RaisedClass(), "app/Failure");
    ExpectGlobals(2);
}

TEST_F(BarcodeInit, KeepsNothingWithoutAVm) {
    vm.FailOn("GetJavaVM");
    CapturedOutput output;
    EXPECT_FALSE(Init("app/Failure", kCallbackClass));
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(RaisedClass(), kBarcodeException);
}

TEST_F(BarcodeInit, FindsNoMethodInANullClass) {
    CapturedOutput output;
    EXPECT_FALSE(Init("app/Failure", nullptr));
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(RaisedClass(), "app/Failure");
    ExpectGlobals(1);
}

TEST_F(BarcodeInit, RaisesNothingWithoutAnExceptionClass) {
    EXPECT_TRUE(Init(nullptr, kCallbackClass));
    CapturedOutput output;
    EXPECT_EQ(RaisedClass(), "");
    EXPECT_EQ(output.Take(), "exceptionClass == NULL\n");
    EXPECT_EQ(raised_, JNI_ERR);
    EXPECT_EQ(flat.Error(), std::nullopt);
    ExpectGlobals(1);
}

TEST_F(BarcodeInit, GoesOnWithWhatTheVmHasRoomFor) {
    vm.FailOn("NewGlobalRef", 2);
    CapturedOutput output;
    EXPECT_FALSE(Init("app/Failure", kCallbackClass));
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(RaisedClass(), "app/Failure");
    ExpectGlobals(1);
}

}  // namespace

}  // namespace quarlin::test
