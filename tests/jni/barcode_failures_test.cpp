// SPDX-License-Identifier: Apache-2.0
// Enabling the scanner, and what becomes of a failure in unusual surroundings.
#include "barcode_method.h"
#include "jni/barcode_delivery.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

class BarcodeEnable : public NativeMethodTest, public testing::Test {
  protected:
    jint Enable(NativeCall& call) { return static_cast<jint>(Barcode(QL_BARCODE(Enable))(call).number); }
};

TEST_F(BarcodeEnable, SetsTheCallbackThatDeliversIntoJava) {
    NativeCall call(vm);
    EXPECT_EQ(Enable(call), 0);
    EXPECT_EQ(flat.BarcodeCallback(), &jni::DeliverBarcodeEvent);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_F(BarcodeEnable, SetsNoCallbackAfterAFailure) {
    flat.Fails("QLBCR_Enable", QLERR_INVALID_STATE, "The device is already enabled");
    NativeCall call(vm);
    EXPECT_EQ(Enable(call), 0);
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLBCR_Enable()"});
    EXPECT_EQ(flat.BarcodeCallback(), nullptr);
}

TEST_F(BarcodeEnable, ReturnsAFailureToSetTheCallbackAndRaisesNothing) {
    for (const QLerr code : kFailures) {
        flat.Fails("QLBCR_SetCallback", code, "No callback");
        NativeCall call(vm);
        EXPECT_EQ(Enable(call), code);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        // The caller may ask for it.
        EXPECT_EQ(flat.Error(), (FlatError{code, "No callback"}));
    }
}

TEST_F(BarcodeEnable, TellsOfACppExceptionFromSettingTheCallback) {
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        ScriptFor(QLBCR_SetCallback)(flat, "QLBCR_SetCallback", throws);
        NativeCall call(vm);
        EXPECT_EQ(Enable(call), 0);
        EXPECT_EQ(call.Thrown(),
                  BarcodeFailure(QLERR_INTERNAL_ERROR, "Java Wrapper:Unable to set callback for the device"));
    }
}

// --- failures ---

class BarcodeFailures : public NativeMethodTest, public testing::Test {
  protected:
    static constexpr const char* kFunction = "QLBCR_Disable";

    Answer Disable(NativeCall& call) { return Barcode(QL_BARCODE(Disable))(call); }

    // What the failure of a function with this message raises.
    std::optional<JavaException> Thrown(QLerr code, const std::string& message) {
        flat.Fails(kFunction, code, message);
        NativeCall call(vm);
        Disable(call);
        EXPECT_EQ(flat.Error(), std::nullopt);
        return call.Thrown();
    }
};

TEST_F(BarcodeFailures, AreOfTheGroupsClassWhereTheVmLacksTheStandardOne) {
    struct {
        QLerr code;
        std::string className;
        std::string name;
    } const rows[] = {
        {QLERR_INVALID_ARGUMENT, "java/lang/IllegalArgumentException", "QLERR_INVALID_ARGUMENT"},
        {QLERR_INVALID_STATE, "java/lang/IllegalStateException", "QLERR_INVALID_STATE"},
        {QLERR_IO_ERROR, "java/io/IOException", "QLERR_IO_ERROR"},
        {QLERR_OP_UNSUPPORTED, "java/lang/UnsupportedOperationException", "QLERR_OP_UNSUPPORTED"},
    };
    for (const auto& row : rows) {
        vm.HideClass(row.className);
        EXPECT_EQ(Thrown(row.code, "Message"), (JavaException{kBarcodeException, row.name + ",Message"}));
    }
}

// The properly named class is there, and is not what callers get.
TEST_F(BarcodeFailures, OfABufferAskForANameThatNoVmHas) {
    EXPECT_EQ(Thrown(QLERR_BUFFER_OVERFLOW, "Buffer size too small"),
              (JavaException{kBarcodeException, "QLERR_BUFFER_OVERFLOW,Buffer size too small"}));
    vm.DefineException("java/lang/java.nio.BufferOverflowException");
    EXPECT_EQ(Thrown(QLERR_BUFFER_OVERFLOW, "Buffer size too small"),
              (JavaException{"java/lang/java.nio.BufferOverflowException", "Buffer size too small"}));
}

TEST_F(BarcodeFailures, MayHaveAnEmptyMessage) {
    EXPECT_EQ(Thrown(QLERR_IO_ERROR, ""), (JavaException{"java/io/IOException", ""}));
    EXPECT_EQ(Thrown(QLERR_INTERNAL_ERROR, ""), (JavaException{kBarcodeException, "Unknown,"}));
}

TEST_F(BarcodeFailures, HaveMessagesOf249Bytes) {
    const std::string fits(249, 'x');
    EXPECT_EQ(Thrown(QLERR_IO_ERROR, fits), (JavaException{"java/io/IOException", fits}));
    EXPECT_EQ(Thrown(QLERR_INTERNAL_ERROR, fits), (JavaException{kBarcodeException, "Unknown," + fits}));
}

TEST_F(BarcodeFailures, HaveTheBeginningOfALongerMessage) {
    const std::string cut(249, 'x');
    for (const std::size_t length : {250U, 251U, 5000U}) {
        const std::string message(length, 'x');
        EXPECT_EQ(Thrown(QLERR_IO_ERROR, message), (JavaException{"java/io/IOException", cut}));
        EXPECT_EQ(Thrown(QLERR_INTERNAL_ERROR, message), (JavaException{kBarcodeException, "Unknown," + cut}));
    }
}

TEST_F(BarcodeFailures, HaveAReplacementForACharacterThatIsCut) {
    const std::string before(248, 'x');
    EXPECT_EQ(Thrown(QLERR_IO_ERROR, before + "ä"), (JavaException{"java/io/IOException", before + "\uFFFD"}));
    EXPECT_EQ(Thrown(QLERR_INTERNAL_ERROR, "Gerät \U0001F600 \xFF"),
              (JavaException{kBarcodeException, "Unknown,Gerät \U0001F600 \uFFFD"}));
}

TEST_F(BarcodeFailures, ReturnWhatRaisingGives) {
    flat.Fails(kFunction, QLERR_IO_ERROR, "Message");
    vm.FailOn("ThrowNew", 1, JNI_ENOMEM);
    NativeCall call(vm);
    EXPECT_EQ(Disable(call).number, JNI_ENOMEM);
    ASSERT_TRUE(call.Thrown());
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
    EXPECT_EQ(flat.Error(), std::nullopt);
}

TEST_F(BarcodeFailures, LeaveNoReferences) {
    for (const QLerr code : kFailures) {
        flat.Fails(kFunction, code, "Message");
        NativeCall call(vm);
        Disable(call);
        EXPECT_EQ(call.Locals(), 0);
    }
}

}  // namespace

}  // namespace quarlin::test
