// SPDX-License-Identifier: Apache-2.0
// What the initialisation entries keep of the VM, and what they say when something is missing.
#include "captured_output.h"
#include "java_frame.h"
#include "missing_method_notice.h"

#include "com_norvane_quarlin_bcr_CoreNatives.h"
#include "com_norvane_quarlin_msr_MagStripeReader.h"
#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"

namespace quarlin::test {

namespace {

constexpr const char* kNatives = "java/lang/Object";  // which class calls does not matter
constexpr const char* kScanSignature = "(ILjava/lang/String;I[BLjava/lang/String;I[B)V";
constexpr const char* kSwipeSignature = "(Lcom/norvane/quarlin/msr/MagStripeData;)V";

class Initialisation : public JavaFrame {
  protected:
    void SetUp() override {
        vm.DefineException(kBarcodeFailure);
        vm.DefineException(kRfidFailure);
        vm.DefineClass(kBarcodeEvents).StaticMethod("nativeBarcodeEvent", kScanSignature);
        vm.DefineClass(kSwipeEvents).StaticMethod("onMagStripeSwipe", kSwipeSignature);
        vm.DefineClass("test/Empty");
        TakeMissingMethodNotices();
    }

    jboolean InitialiseBarcode(NativeCall& call, const char* events = kBarcodeEvents) {
        return Java_com_norvane_quarlin_bcr_CoreNatives_nInit(call.Env(), call.Class(kNatives),
                                                              call.Class(kBarcodeFailure), call.Class(events));
    }

    jboolean InitialiseRfid(NativeCall& call) {
        return Java_com_norvane_quarlin_uhfrfid_CoreNatives_nInit(call.Env(), call.Class(kNatives),
                                                                  call.Class(kRfidFailure));
    }

    jint InitialiseCardReader(NativeCall& call, const char* events = kSwipeEvents) {
        return Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Initialize(
            call.Env(), call.Class(kNatives), call.Class("test/Empty"), call.Class(events));
    }

    JavaRef Kept(NativeCall& call, jclass reference) { return call.Returned(reference); }
};

TEST_F(Initialisation, OfTheBarcodeGroupKeepsTheVmAndBothClasses) {
    NativeCall call(vm);
    EXPECT_EQ(InitialiseBarcode(call), JNI_TRUE);
    EXPECT_EQ(jni::bcrVm.load(), vm.Vm());
    EXPECT_EQ(Kept(call, jni::bcrExceptionClass), vm.Class(kBarcodeFailure).object);
    EXPECT_EQ(Kept(call, jni::bcrCallbackClass.Load().type), vm.Class(kBarcodeEvents).object);
    EXPECT_EQ(vm.References().globals, 2);
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(jni::rfidVm.load(), nullptr);
    EXPECT_EQ(jni::msrVm.load(), nullptr);
}

TEST_F(Initialisation, OfTheBarcodeGroupASecondTimeReplacesWhatIsKeptAndReleasesNothing) {
    vm.DefineClass("test/Events").StaticMethod("nativeBarcodeEvent", kScanSignature);
    NativeCall call(vm);
    EXPECT_EQ(InitialiseBarcode(call), JNI_TRUE);
    EXPECT_EQ(InitialiseBarcode(call, "test/Events"), JNI_TRUE);
    EXPECT_EQ(Kept(call, jni::bcrCallbackClass.Load().type), vm.Class("test/Events").object);
    EXPECT_EQ(vm.References().globals, 4);
}

TEST_F(Initialisation, OfTheBarcodeGroupWithoutAVmIsFalseAndKeepsNothing) {
    vm.FailOn("GetJavaVM");
    CapturedOutput output;
    NativeCall call(vm);
    EXPECT_EQ(InitialiseBarcode(call), JNI_FALSE);
    EXPECT_EQ(jni::bcrVm.load(), nullptr);
    EXPECT_EQ(vm.References().globals, 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(output.Take(), "");
}

TEST_F(Initialisation, OfTheBarcodeGroupWithoutItsMethodSaysSoAndKeepsTheReferences) {
    vm.DefineClass("test/Similar")
        .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[B)V")
        .Method("nativeBarcodeEvent", kScanSignature);
    for (const char* const events : {"test/Empty", "test/Similar"}) {
        const int before = vm.References().globals;
        CapturedOutput output;
        NativeCall call(vm);
        EXPECT_EQ(InitialiseBarcode(call, events), JNI_FALSE);
        EXPECT_EQ(output.Take(), "Unable to find callback");
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(vm.References().globals, before + 2);
        EXPECT_EQ(Kept(call, jni::bcrExceptionClass), vm.Class(kBarcodeFailure).object);
    }
}

TEST_F(Initialisation, OfTheBarcodeGroupWithoutRoomForReferencesIsFalse) {
    // The first is the exception class, the second the class of the callback.
    vm.FailOn("NewGlobalRef", 1);
    NativeCall call(vm);
    EXPECT_EQ(InitialiseBarcode(call), JNI_TRUE);
    EXPECT_EQ(jni::bcrExceptionClass.load(), nullptr);
    vm.FailOn("NewGlobalRef", 2);
    CapturedOutput output;
    EXPECT_EQ(InitialiseBarcode(call), JNI_FALSE);
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_F(Initialisation, OfTheBarcodeGroupWithoutClassesIsFalse) {
    CapturedOutput output;
    NativeCall call(vm);
    EXPECT_EQ(Java_com_norvane_quarlin_bcr_CoreNatives_nInit(call.Env(), call.Class(kNatives), nullptr, nullptr),
              JNI_FALSE);
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(vm.References().globals, 0);
}

TEST_F(Initialisation, OfTheRfidGroupKeepsTheVmAndItsClass) {
    NativeCall call(vm);
    EXPECT_EQ(InitialiseRfid(call), JNI_TRUE);
    EXPECT_EQ(jni::rfidVm.load(), vm.Vm());
    EXPECT_EQ(Kept(call, jni::rfidExceptionClass), vm.Class(kRfidFailure).object);
    EXPECT_EQ(InitialiseRfid(call), JNI_TRUE);
    EXPECT_EQ(vm.References().globals, 2);
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(jni::bcrVm.load(), nullptr);
}

TEST_F(Initialisation, OfTheRfidGroupWithoutAVmIsFalse) {
    vm.FailOn("GetJavaVM");
    NativeCall call(vm);
    EXPECT_EQ(InitialiseRfid(call), JNI_FALSE);
    EXPECT_EQ(jni::rfidVm.load(), nullptr);
    EXPECT_EQ(vm.References().globals, 0);
}

TEST_F(Initialisation, OfTheCardReaderKeepsBothClassesAndInitialisesTheFamily) {
    NativeCall call(vm);
    EXPECT_EQ(InitialiseCardReader(call), 0);
    EXPECT_EQ(jni::msrVm.load(), vm.Vm());
    EXPECT_EQ(Kept(call, jni::msrCallbackClass.Load().type), vm.Class(kSwipeEvents).object);
    EXPECT_EQ(vm.References().globals, 2);
    EXPECT_EQ(flat.TakeCalls(), Calls({"QLMSR_Initialize()"}));
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 0);
}

TEST_F(Initialisation, OfTheCardReaderRaisesTheFailureOfTheFamily) {
    flat.Fails("QLMSR_Initialize", QLERR_INTERNAL_ERROR, "no manager");
    NativeCall call(vm);
    InitialiseCardReader(call);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/RuntimeException", "no manager"}));
    EXPECT_EQ(flat.Error(), std::nullopt);
    EXPECT_NE(jni::msrCallbackClass.Load().method, nullptr);
}

TEST_F(Initialisation, OfTheCardReaderWithoutItsMethodShowsAMessageBoxAndCarriesOn) {
    CapturedOutput output;
    NativeCall call(vm);
    EXPECT_EQ(InitialiseCardReader(call, "test/Empty"), 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 1);
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(flat.TakeCalls(), Calls({"QLMSR_Initialize()"}));
    EXPECT_EQ(vm.References().globals, 2);
}

TEST_F(Initialisation, OfTheCardReaderWithoutAVmStillInitialisesTheFamily) {
    vm.FailOn("GetJavaVM");
    NativeCall call(vm);
    EXPECT_EQ(InitialiseCardReader(call), 0);
    EXPECT_EQ(jni::msrVm.load(), nullptr);
    EXPECT_EQ(vm.References().globals, 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 0);
    EXPECT_EQ(flat.TakeCalls(), Calls({"QLMSR_Initialize()"}));
}

}  // namespace

}  // namespace quarlin::test
