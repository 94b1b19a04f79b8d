// SPDX-License-Identifier: Apache-2.0
// How failures of the barcode and of the UHF RFID wrappers become Java exceptions.
#include "captured_output.h"
#include "java_frame.h"

#include "jni/java_exceptions.h"

#include <climits>

namespace quarlin::test {

namespace {

struct Group {
    const char* name;
    jint (*raise)(QLerr code, const char* message) noexcept;
    std::atomic<JavaVM*>& vm;
    std::atomic<jclass>& exceptionClass;
    const char* exceptionName;
};

const Group kBarcode{"Barcode", jni::ThrowBarcodeJavaException, jni::bcrVm, jni::bcrExceptionClass, kBarcodeFailure};
const Group kRfid{"Rfid", jni::ThrowRfidJavaException, jni::rfidVm, jni::rfidExceptionClass, kRfidFailure};

void PrintTo(const Group* group, std::ostream* stream) {
    *stream << group->name;
}

class GroupExceptions : public JavaFrame, public testing::WithParamInterface<const Group*> {
  protected:
    void SetUp() override {
        vm.DefineException(group.exceptionName);
        NativeCall call(vm);
        group.vm = vm.Vm();
        group.exceptionClass = static_cast<jclass>(call.Env()->NewGlobalRef(call.Class(group.exceptionName)));
    }

    // The exception of one raise, which leaves no reference behind.
    Thrown Raise(int code, const char* message) {
        NativeCall call(vm);
        EXPECT_EQ(group.raise(static_cast<QLerr>(code), message), JNI_OK);
        EXPECT_EQ(call.Locals(), 0);
        return call.Thrown();
    }

    Thrown OfGroup(const std::string& message) { return JavaException{group.exceptionName, message}; }

    const Group& group = *GetParam();
};

TEST_P(GroupExceptions, CodesWithAClassOfJavaCarryTheMessageAsItStands) {
    EXPECT_EQ(Raise(1, "pEnable cannot be NULL"),
              Thrown({"java/lang/IllegalArgumentException", "pEnable cannot be NULL"}));
    EXPECT_EQ(Raise(2, "Not initialised"), Thrown({"java/lang/IllegalStateException", "Not initialised"}));
    EXPECT_EQ(Raise(3, ""), Thrown({"java/io/IOException", ""}));
    EXPECT_EQ(Raise(4, "100 %s"), Thrown({"java/lang/UnsupportedOperationException", "100 %s"}));
}

TEST_P(GroupExceptions, BufferOverflowIsTheGroupsClassWithTheNameOfTheCode) {
    EXPECT_EQ(Raise(6, "Buffer size too small"), OfGroup("QLERR_BUFFER_OVERFLOW,Buffer size too small"));
    EXPECT_EQ(Raise(6, nullptr), OfGroup("Unknown,(null)"));
    // Java's own class is there, and is not asked for.
    vm.HideClass("java/nio/BufferOverflowException");
    EXPECT_EQ(Raise(6, ""), OfGroup("QLERR_BUFFER_OVERFLOW,"));
}

TEST_P(GroupExceptions, InternalErrorsAreUnknown) {
    EXPECT_EQ(Raise(5, "Failed to copy string"), OfGroup("Unknown,Failed to copy string"));
    EXPECT_EQ(Raise(5, nullptr), OfGroup("Unknown,(null)"));
}

TEST_P(GroupExceptions, AllOtherCodesAreUnexpected) {
    for (const int code : {7, 100, 0xFFFF, 0x10000, 0x10001, 0x10104, 0x1010C, 0x7FFFFFFF, -1, -5, INT_MIN}) {
        EXPECT_EQ(Raise(code, "No tags"), OfGroup("Unexpected behaviour encountered,No tags")) << code;
    }
    EXPECT_EQ(Raise(QLERR_UHFRFID_NO_TAGS, nullptr), OfGroup("Unexpected behaviour encountered,(null)"));
}

TEST_P(GroupExceptions, SuccessIsTheGroupsClassWithoutAText) {
    EXPECT_EQ(Raise(0, "ignored"), OfGroup(""));
}

TEST_P(GroupExceptions, AMissingMessageIsNullWhereItIsPassedOn) {
    for (const int code : {1, 2, 3, 4}) {
        const Thrown thrown = Raise(code, nullptr);
        ASSERT_TRUE(thrown);
        EXPECT_EQ(thrown->message, std::nullopt) << code;
    }
}

TEST_P(GroupExceptions, AMissingClassOfJavaMakesItTheGroupsClassWithTheNameOfTheCode) {
    const std::vector<std::pair<int, std::pair<const char*, const char*>>> rows{
        {1, {"java/lang/IllegalArgumentException", "QLERR_INVALID_ARGUMENT,why"}},
        {2, {"java/lang/IllegalStateException", "QLERR_INVALID_STATE,why"}},
        {3, {"java/io/IOException", "QLERR_IO_ERROR,why"}},
        {4, {"java/lang/UnsupportedOperationException", "QLERR_OP_UNSUPPORTED,why"}},
    };
    for (const auto& [code, row] : rows) {
        vm.HideClass(row.first);
        EXPECT_EQ(Raise(code, "why"), OfGroup(row.second));
        EXPECT_EQ(Raise(code, nullptr), OfGroup("Unknown,(null)"));
    }
}

TEST_P(GroupExceptions, TextsOfTheGroupsClassAreCutTo999Characters) {
    const std::string longText(2000, 'x');
    EXPECT_EQ(Raise(5, longText.c_str()), OfGroup("Unknown," + std::string(991, 'x')));
    EXPECT_EQ(Raise(7, longText.c_str()), OfGroup("Unexpected behaviour encountered," + std::string(966, 'x')));
    EXPECT_EQ(Raise(6, longText.c_str()), OfGroup("QLERR_BUFFER_OVERFLOW," + std::string(977, 'x')));
    EXPECT_EQ(Raise(5, std::string(991, 'y').c_str()), OfGroup("Unknown," + std::string(991, 'y')));
    EXPECT_EQ(Raise(1, longText.c_str()), Thrown({"java/lang/IllegalArgumentException", longText}));
}

TEST_P(GroupExceptions, ACutInsideACharacterLeavesAValidText) {
    std::string umlauts;
    for (int i = 0; i < 600; ++i) {
        umlauts += "\xC3\xBC";
    }
    // 991 bytes of it are 495 characters and a half.
    EXPECT_EQ(Raise(5, umlauts.c_str()), OfGroup("Unknown," + umlauts.substr(0, 990) + "\xEF\xBF\xBD"));
}

TEST_P(GroupExceptions, MessagesThatJavaCannotReadAsTheyAreAreMended) {
    EXPECT_EQ(Raise(3, "caf\xE9 \xF0\x9F\x98\x80"),
              Thrown({"java/io/IOException", "caf\xEF\xBF\xBD \xF0\x9F\x98\x80"}));
    EXPECT_EQ(Raise(5, "caf\xE9"), OfGroup("Unknown,caf\xEF\xBF\xBD"));
}

TEST_P(GroupExceptions, ANewExceptionTakesThePlaceOfOneThatIsPending) {
    NativeCall call(vm);
    call.Env()->FindClass("no/Such");
    EXPECT_EQ(group.raise(QLERR_IO_ERROR, "second"), JNI_OK);
    EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", "second"}));
}

TEST_P(GroupExceptions, WithoutAVmItIsToldOnStandardOutput) {
    group.vm = nullptr;
    CapturedOutput output;
    EXPECT_NE(group.raise(QLERR_IO_ERROR, "lost"), JNI_OK);
    EXPECT_EQ(output.Take(), "Cannot find JVM\n");
}

TEST_P(GroupExceptions, OnAThreadWithoutAnEnvironmentItIsToldOnStandardOutput) {
    CapturedOutput output;
    OnLibraryThread([&] { EXPECT_NE(group.raise(QLERR_IO_ERROR, "lost"), JNI_OK); });
    EXPECT_EQ(output.Take(), "JNI Env == NULL\n");
}

TEST_P(GroupExceptions, InAVmOfAnotherVersionItIsToldOnStandardOutput) {
    vm.FailOn("GetEnv", 1, JNI_EVERSION);
    NativeCall call(vm);
    CapturedOutput output;
    EXPECT_NE(group.raise(QLERR_IO_ERROR, "lost"), JNI_OK);
    EXPECT_EQ(output.Take(), "JNI Env == NULL\n");
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_P(GroupExceptions, WithoutTheGroupsClassItIsToldOnStandardOutput) {
    group.exceptionClass = nullptr;
    for (const int code : {0, 1, 5, 6, 7}) {
        NativeCall call(vm);
        CapturedOutput output;
        EXPECT_NE(group.raise(static_cast<QLerr>(code), "lost"), JNI_OK);
        EXPECT_EQ(output.Take(), "exceptionClass == NULL\n");
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
}

TEST_P(GroupExceptions, NothingIsToldWhenAllIsWell) {
    CapturedOutput output;
    Raise(QLERR_IO_ERROR, "told by Java");
    EXPECT_EQ(output.Take(), "");
}

TEST_P(GroupExceptions, AVmWithoutMemoryLeavesItsOwnError) {
    for (const int code : {1, 5, 7}) {
        vm.FailOn("ThrowNew", 1, JNI_ERR);
        NativeCall call(vm);
        EXPECT_EQ(group.raise(static_cast<QLerr>(code), "why"), JNI_ERR);
        EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
        EXPECT_EQ(call.Locals(), 0);
    }
}

TEST_P(GroupExceptions, TheLastErrorIsLeftAlone) {
    flat.LeaveError(QLERR_IO_ERROR, "of another call");
    Raise(QLERR_INVALID_ARGUMENT, "mine");
    EXPECT_EQ(flat.Error(), (FlatError{QLERR_IO_ERROR, "of another call"}));
}

INSTANTIATE_TEST_SUITE_P(Groups, GroupExceptions, testing::Values(&kBarcode, &kRfid),
                         [](const auto& row) { return row.param->name; });

}  // namespace

}  // namespace quarlin::test
