// SPDX-License-Identifier: Apache-2.0
// How failures of the camera-light, device, GPS and card-reader wrappers become Java exceptions.
#include "java_frame.h"

#include "jni/java_exceptions.h"

#include <climits>

namespace quarlin::test {

namespace {

struct Row {
    const char* name;
    int code;
    const char* className;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

class ResultExceptions : public JavaFrame, public testing::WithParamInterface<Row> {};

TEST_P(ResultExceptions, CarryTheLastErrorAndConsumeIt) {
    const auto code = static_cast<QLerr>(GetParam().code);
    flat.LeaveError(code, "The port cannot be opened.");
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), code);
    if (code == QLERR_BUFFER_OVERFLOW) {
        EXPECT_EQ(call.Thrown(), BufferOverflow("The port cannot be opened."));
    } else {
        EXPECT_EQ(call.Thrown(), Thrown({GetParam().className, "The port cannot be opened."}));
    }
    EXPECT_EQ(flat.Error(), std::nullopt);
    EXPECT_EQ(flat.TakeHelperCalls(), Calls({"QLAPI_GetLastError(250)"}));
    EXPECT_EQ(call.Locals(), 0);
}

TEST_P(ResultExceptions, LeaveTheVmsErrorAndTheRecordWhenTheClassIsMissing) {
    const auto code = static_cast<QLerr>(GetParam().code);
    vm.HideClass(GetParam().className);
    flat.LeaveError(code, "The port cannot be opened.");
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), code);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/NoClassDefFoundError", GetParam().className}));
    EXPECT_EQ(flat.Error(), (FlatError{code, "The port cannot be opened."}));
    EXPECT_EQ(flat.TakeHelperCalls(), Calls());
}

INSTANTIATE_TEST_SUITE_P(Codes, ResultExceptions,
                         testing::Values(Row{"InvalidArgument", 1, "java/lang/IllegalArgumentException"},
                                         Row{"InvalidState", 2, "java/lang/IllegalStateException"},
                                         Row{"IoError", 3, "java/io/IOException"},
                                         Row{"OpUnsupported", 4, "java/lang/UnsupportedOperationException"},
                                         Row{"InternalError", 5, "java/lang/RuntimeException"},
                                         Row{"BufferOverflow", 6, "java/nio/BufferOverflowException"},
                                         Row{"Seven", 7, "java/lang/RuntimeException"},
                                         Row{"RfidNoTags", 0x10104, "java/lang/RuntimeException"},
                                         Row{"MinusOne", -1, "java/lang/RuntimeException"},
                                         Row{"Smallest", INT_MIN, "java/lang/RuntimeException"}),
                         [](const auto& row) { return row.param.name; });

using ResultException = JavaFrame;

TEST_F(ResultException, OfABufferIsTheVmsErrorWhereItsCauseCannotBeMade) {
    const std::vector<std::pair<const char*, int>> steps{
        {"NewObject", 1}, {"NewObject", 2}, {"NewStringUTF", 1}, {"CallObjectMethod", 1}, {"Throw", 1}};
    for (const auto& [entry, nth] : steps) {
        vm.FailOn(entry, nth);
        flat.LeaveError(QLERR_BUFFER_OVERFLOW, "too small");
        NativeCall call(vm);
        jni::ThrowJavaExceptionForResult(call.Env(), QLERR_BUFFER_OVERFLOW);
        EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError") << entry << ' ' << nth;
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat.Error(), std::nullopt);
    }
    // The third look-up is that of the cause's constructor, the fourth that of initCause.
    for (const int nth : {2, 3, 4}) {
        vm.FailOn("GetMethodID", nth);
        NativeCall call(vm);
        jni::ThrowJavaExceptionForResult(call.Env(), QLERR_BUFFER_OVERFLOW);
        EXPECT_EQ(call.Thrown()->className, "java/lang/NoSuchMethodError") << nth;
        EXPECT_EQ(call.Locals(), 0);
    }
}

TEST_F(ResultException, OfABufferCarriesItsMessageItselfWhereTheClassCan) {
    vm.Class("java/nio/BufferOverflowException").Constructor("(Ljava/lang/String;)V");
    flat.LeaveError(QLERR_BUFFER_OVERFLOW, "too small");
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_BUFFER_OVERFLOW);
    EXPECT_EQ(call.Thrown(), Thrown({"java/nio/BufferOverflowException", "too small"}));
}

TEST_F(ResultException, SuccessDoesNothing) {
    flat.LeaveError(QLERR_IO_ERROR, "of another call");
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_OK);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(vm.CallsOf("FindClass"), 0);
    EXPECT_EQ(flat.Error(), (FlatError{QLERR_IO_ERROR, "of another call"}));
}

TEST_F(ResultException, WithoutARecordTheMessageIsEmpty) {
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_INVALID_STATE);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/IllegalStateException", ""}));
}

TEST_F(ResultException, AMessageOf249CharactersIsWhole) {
    const std::string message(249, 'm');
    flat.LeaveError(QLERR_IO_ERROR, message);
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_IO_ERROR);
    EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", message}));
    EXPECT_EQ(flat.Error(), std::nullopt);
}

TEST_F(ResultException, ALongerMessageIsCutAndTheRecordIsGone) {
    for (const std::size_t length : {std::size_t{250}, std::size_t{4000}}) {
        flat.LeaveError(QLERR_IO_ERROR, std::string(length, 'm'));
        NativeCall call(vm);
        jni::ThrowJavaExceptionForResult(call.Env(), QLERR_IO_ERROR);
        EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", std::string(249, 'm')}));
        EXPECT_EQ(flat.Error(), std::nullopt);
    }
}

TEST_F(ResultException, AMessageCutInsideACharacterIsMended) {
    std::string message;
    for (int i = 0; i < 200; ++i) {
        message += "\xC3\xBC";
    }
    flat.LeaveError(QLERR_INTERNAL_ERROR, message);
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/RuntimeException", message.substr(0, 248) + "\xEF\xBF\xBD"}));
}

TEST_F(ResultException, ANewExceptionTakesThePlaceOfOneThatIsPending) {
    flat.LeaveError(QLERR_IO_ERROR, "second");
    NativeCall call(vm);
    call.Env()->FindClass("no/Such");
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_IO_ERROR);
    EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", "second"}));
}

TEST_F(ResultException, AVmWithoutMemoryLeavesItsOwnError) {
    vm.FailOn("ThrowNew");
    flat.LeaveError(QLERR_IO_ERROR, "lost");
    NativeCall call(vm);
    jni::ThrowJavaExceptionForResult(call.Env(), QLERR_IO_ERROR);
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
    EXPECT_EQ(call.Locals(), 0);
}

TEST_F(ResultException, FailuresOfTheBindingItselfLeaveTheLastErrorAlone) {
    flat.LeaveError(QLERR_IO_ERROR, "of another call");
    NativeCall call(vm);
    jni::ThrowInternalError(call.Env(), "out of room");
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/RuntimeException", "out of room"}));
    EXPECT_EQ(flat.Error(), (FlatError{QLERR_IO_ERROR, "of another call"}));
}

}  // namespace

}  // namespace quarlin::test
