// SPDX-License-Identifier: Apache-2.0
// How the library learns the VM and the exception class of the RFID reader.
#include "jni/java_vm.h"
#include "methods_fixture.h"

#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"
#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {
namespace {

class RfidInit : public NativeMethods {
  protected:
    jboolean Init(NativeCall& call, jclass exceptionClass) {
        return Java_com_norvane_quarlin_uhfrfid_CoreNatives_nInit(call.Env(), Owner(call, kRfidCoreNatives),
                                                                  exceptionClass);
    }
    // The exception of a call that fails.
    std::optional<JavaException> ThrownByAFailure() {
        flat_.Fails("QLUHFRFID_CloseReader", QLERR_UHFRFID_SYSTEM, kMessage);
        NativeCall call(vm_);
        Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1CloseReader(call.Env(), Owner(call, kRfidNatives),
                                                                                  8);
        return call.Thrown();
    }
};

TEST_F(RfidInit, KeepsTheClassForTheRestOfTheProcess) {
    vm_.DefineException(kRfidException);
    {
        NativeCall call(vm_);
        EXPECT_EQ(Init(call, call.Class(kRfidException)), JNI_TRUE);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
    }
    EXPECT_EQ(vm_.References().globals, 1);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(ThrownByAFailure(),
                  (JavaException{kRfidException, std::string("Unexpected behaviour encountered,") + kMessage}));
    }
    EXPECT_EQ(vm_.References().globals, 1);
    EXPECT_EQ(flat_.TakeCalls().size(), 3U);
}

TEST_F(RfidInit, OfASecondClassTakesThePlaceOfTheFirst) {
    vm_.DefineException(kRfidException);
    vm_.DefineException("app/RfidTrouble", kRfidException);
    NativeCall call(vm_);
    EXPECT_EQ(Init(call, call.Class(kRfidException)), JNI_TRUE);
    EXPECT_EQ(Init(call, call.Class("app/RfidTrouble")), JNI_TRUE);
    // The first one is not released: somebody may be about to throw it.
    EXPECT_EQ(vm_.References().globals, 2);
    ASSERT_NE(ThrownByAFailure(), std::nullopt);
    EXPECT_EQ(ThrownByAFailure()->className, "app/RfidTrouble");
}

TEST_F(RfidInit, CallsNothingOfTheLibrary) {
    vm_.DefineException(kRfidException);
    NativeCall call(vm_);
    Init(call, call.Class(kRfidException));
    EXPECT_EQ(flat_.TakeCalls(), Calls());
    EXPECT_EQ(flat_.TakeHelperCalls(), Calls());
}

TEST_F(RfidInit, WithoutAVmGivesFalseAndKeepsNothing) {
    vm_.DefineException(kRfidException);
    jni::rfidVm = nullptr;
    jni::rfidExceptionClass = nullptr;
    vm_.FailOn("GetJavaVM");
    NativeCall call(vm_);
    EXPECT_EQ(Init(call, call.Class(kRfidException)), JNI_FALSE);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(jni::rfidVm, nullptr);
    EXPECT_EQ(jni::rfidExceptionClass, nullptr);
    EXPECT_EQ(vm_.References().globals, 0);
}

TEST_F(RfidInit, WithoutAVmKeepsWhatWasKnownBefore) {
    vm_.DefineException(kRfidException);
    vm_.DefineException("app/RfidTrouble", kRfidException);
    NativeCall call(vm_);
    EXPECT_EQ(Init(call, call.Class(kRfidException)), JNI_TRUE);
    vm_.FailOn("GetJavaVM");
    EXPECT_EQ(Init(call, call.Class("app/RfidTrouble")), JNI_FALSE);
    ASSERT_NE(ThrownByAFailure(), std::nullopt);
    EXPECT_EQ(ThrownByAFailure()->className, kRfidException);
}

}  // namespace
}  // namespace quarlin::test
