// SPDX-License-Identifier: Apache-2.0
// Exceptions, threads and ordered failures of the stand-in VM.
#include "stand_in_vm.h"

#include <gtest/gtest.h>

#include <thread>

namespace quarlin::test {

namespace {

using Texts = std::vector<std::string>;
using Thrown = std::optional<JavaException>;

constexpr const char* kPoint = "test/Point";

struct StandInThreads : testing::Test {
    StandInVm vm;

    void SetUp() override {
        vm.DefineClass(kPoint);
        vm.DefineClass("test/Other").StaticMethod("told", "()V");
    }
};

// --- exceptions ---

TEST_F(StandInThreads, CatchesCallsWithAnExceptionPending) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass error = call.Class("java/io/IOException");
    EXPECT_EQ(env->ThrowNew(error, "a \xED\xA0\xBD\xED\xB8\x80"), JNI_OK);
    EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", "a \xF0\x9F\x98\x80"}));
    env->FindClass("java/lang/String");
    EXPECT_EQ(vm.TakeViolations(), Texts({"FindClass: called with an exception pending: java/io/IOException"}));
    env->PushLocalFrame(4);
    env->PopLocalFrame(nullptr);
    env->DeleteLocalRef(env->ExceptionOccurred());
    env->ExceptionDescribe();
    EXPECT_FALSE(env->ExceptionCheck());
    EXPECT_EQ(vm.TakeViolations(), Texts());
}

TEST_F(StandInThreads, CatchesACallThatDoesNotAskForTheExceptionOfTheOneBefore) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass other = call.Class("test/Other");
    const jmethodID method = env->GetStaticMethodID(other, "told", "()V");
    env->CallStaticVoidMethod(other, method);
    env->NewStringUTF("x");
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"NewStringUTF: called without asking for the exception of CallStaticVoidMethod"}));
    env->CallStaticVoidMethod(other, method);
    env->ExceptionCheck();
    env->NewStringUTF("x");
    EXPECT_EQ(vm.TakeViolations(), Texts());
}

TEST_F(StandInThreads, CatchesWrongThrows) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    EXPECT_EQ(env->ThrowNew(call.Class(kPoint), "x"), JNI_ERR);
    EXPECT_EQ(env->ThrowNew(call.Class("java/io/IOException"), "\xFF"), JNI_OK);
    EXPECT_EQ(vm.TakeViolations(), Texts({"ThrowNew: not a class of throwables: test/Point",
                                          "ThrowNew: the message is not modified UTF-8"}));
    env->ExceptionClear();
    EXPECT_EQ(env->ThrowNew(call.Class("java/io/IOException"), nullptr), JNI_OK);
    EXPECT_EQ(call.Thrown(), Thrown({"java/io/IOException", std::nullopt}));
}

// --- threads ---

TEST_F(StandInThreads, KnowsWhichThreadsAreAttached) {
    std::thread([&] {
        void* env = &env;
        EXPECT_EQ(vm.Vm()->GetEnv(&env, JNI_VERSION_1_6), JNI_EDETACHED);
        EXPECT_EQ(env, nullptr);
        EXPECT_EQ(vm.Vm()->AttachCurrentThread(&env, nullptr), JNI_OK);
        EXPECT_TRUE(vm.IsAttached());
        void* again = nullptr;
        EXPECT_EQ(vm.Vm()->GetEnv(&again, JNI_VERSION_1_6), JNI_OK);
        EXPECT_EQ(again, env);
        EXPECT_EQ(vm.Vm()->GetEnv(&again, 0x00990000), JNI_EVERSION);
        EXPECT_EQ(vm.Vm()->AttachCurrentThreadAsDaemon(&again, nullptr), JNI_OK);
        EXPECT_EQ(again, env);
        EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 0, 1}));
        auto* const jni = static_cast<JNIEnv*>(env);
        jni->NewStringUTF("left behind");
        jni->FindClass("no/Such");
        EXPECT_EQ(vm.Vm()->DetachCurrentThread(), JNI_OK);
        EXPECT_EQ(vm.Vm()->DetachCurrentThread(), JNI_OK);
        EXPECT_FALSE(vm.IsAttached());
        EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
        EXPECT_EQ(vm.References().locals, 0);
        jni->GetVersion();
    }).join();
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>({{"java/lang/NoClassDefFoundError", "no/Such"}}));
    EXPECT_EQ(vm.TakeViolations(), Texts({"GetVersion: the environment of a thread that was detached"}));
}

TEST_F(StandInThreads, CatchesTheEnvironmentOfAnotherThread) {
    NativeCall call(vm);
    std::thread([&] { EXPECT_EQ(call.Env()->NewStringUTF("x"), nullptr); }).join();
    EXPECT_EQ(vm.TakeViolations(), Texts({"NewStringUTF: the environment of another thread"}));
}

TEST_F(StandInThreads, KeepsTheThreadOfAJavaCallerAttached) {
    NativeCall call(vm);
    EXPECT_EQ(vm.Vm()->DetachCurrentThread(), JNI_ERR);
    JavaVM* asked = nullptr;
    EXPECT_EQ(call.Env()->GetJavaVM(&asked), JNI_OK);
    EXPECT_EQ(asked, vm.Vm());
}

// --- failures to order ---

TEST_F(StandInThreads, FailsTheOrderedCallAlone) {
    vm.FailOn("NewByteArray", 2);
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    EXPECT_NE(env->NewByteArray(1), nullptr);
    EXPECT_EQ(env->NewByteArray(1), nullptr);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/OutOfMemoryError", "NewByteArray was ordered to fail"}));
    env->ExceptionClear();
    EXPECT_NE(env->NewByteArray(1), nullptr);
    EXPECT_EQ(vm.CallsOf("NewByteArray"), 3);
    EXPECT_TRUE(vm.TakeFailures());

    vm.FailOn("NewGlobalRef");
    EXPECT_EQ(env->NewGlobalRef(call.Class(kPoint)), nullptr);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    vm.FailOn("GetJavaVM", 1, JNI_ENOMEM);
    JavaVM* asked = vm.Vm();
    EXPECT_EQ(env->GetJavaVM(&asked), JNI_ENOMEM);
    EXPECT_EQ(asked, nullptr);
    vm.FailOn("GetEnv", 1, JNI_EVERSION);
    void* found = env;
    EXPECT_EQ(vm.Vm()->GetEnv(&found, JNI_VERSION_1_6), JNI_EVERSION);
    EXPECT_EQ(found, nullptr);
    vm.FailOn("CallStaticVoidMethod");
    const jclass other = call.Class("test/Other");
    env->CallStaticVoidMethod(other, env->GetStaticMethodID(other, "told", "()V"));
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
    vm.FailOn("NewObject", 9);
    EXPECT_FALSE(vm.TakeFailures());
}

}  // namespace

}  // namespace quarlin::test
