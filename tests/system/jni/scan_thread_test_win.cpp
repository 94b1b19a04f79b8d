// SPDX-License-Identifier: Apache-2.0
// The listener's thread and the VM: attached for one delivery, left alone when it is attached already.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "captured_output.h"
#include "jni/java_scan_test_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

JavaVM* vmOfCallbacks = nullptr;

void AttachThread(const QLBCR_BARCODE_DATA*) {
    void* env = nullptr;
    vmOfCallbacks->AttachCurrentThread(&env, nullptr);
}

void DetachThread(const QLBCR_BARCODE_DATA*) {
    vmOfCallbacks->DetachCurrentThread();
}

class JavaListener : public JavaScanTest {
  protected:
    void SetUp() override {
        Begin();
        vmOfCallbacks = vm_.Vm();
    }
    // The native callback that Java's enabling sets; any other one goes.
    void DeliverToJava() {
        ASSERT_EQ(Disable(), JavaFailure());
        ASSERT_EQ(Enable(), JavaFailure());
    }
    // A scan that reaches a callback of the test's own.
    void ScanTo(QLBCR_Callback callback) {
        ASSERT_EQ(library_->QLBCR_SetCallback(callback), QLERR_OK);
        machine_.ScanIntermec("not for Java");
    }
};

TEST_F(JavaListener, ThatIsAttachedAlreadyDropsScansAndSaysSo) {
    ScanTo(&AttachThread);
    Await("the thread to be attached", [&] { return vm_.Threads().attached == 1; });
    DeliverToJava();
    CapturedOutput output;
    const int asked = vm_.CallsOf("GetEnv");
    machine_.ScanIntermec("dropped");
    machine_.ScanIntermec("dropped too");
    Await("both scans", [&] { return vm_.CallsOf("GetEnv") == asked + 2; });
    ScanTo(&DetachThread);
    Await("the thread to be detached", [&] { return vm_.Threads().attached == 0; });
    EXPECT_EQ(output.Take(), "Get JVM failed: 0\nGet JVM failed: 0\n");
    EXPECT_EQ(receiver_.Count(), 0U);
    EXPECT_EQ(vm_.Threads().attaches, 1);

    DeliverToJava();
    machine_.ScanIntermec("heard");
    EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("heard"));
}

TEST_F(JavaListener, SaysNothingWhenItDelivers) {
    CapturedOutput output;
    machine_.ScanIntermec("heard");
    receiver_.AwaitCount(1);
    EXPECT_EQ(output.Take(), "");
}

TEST_F(JavaListener, SaysWhyItCannotAttach) {
    struct Case {
        const char* entry;
        jint code;
        const char* output;
    };
    for (const Case& failure : {Case{"GetEnv", JNI_EVERSION, "Version of JVM not supported"},
                                {"GetEnv", JNI_ERR, "Get JVM failed: -1\n"},
                                {"AttachCurrentThread", JNI_ENOMEM, "Failed to attach JVM"}}) {
        receiver_.Clear();
        CapturedOutput output;
        vm_.FailOn(failure.entry, 1, failure.code);
        machine_.ScanIntermec("dropped");
        // The one behind it comes after it on the same thread.
        machine_.ScanIntermec("heard");
        EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("heard"));
        EXPECT_EQ(output.Take(), failure.output);
        EXPECT_TRUE(vm_.TakeFailures());
    }
}

TEST_F(JavaListener, GoesOnAfterAnExceptionOfTheCallback) {
    receiver_.DoInside([] { throw JavaThrow{"java/lang/IllegalStateException", "no listener"}; });
    machine_.ScanIntermec("one");
    machine_.ScanIntermec("two");
    receiver_.AwaitCount(2);
    receiver_.DoInside({});
    machine_.ScanIntermec("three");
    EXPECT_EQ(receiver_.AwaitCount(3), PlainScan("three"));
    const JavaException thrown{"java/lang/IllegalStateException", "no listener"};
    EXPECT_EQ(vm_.TakeUncaught(), (std::vector<JavaException>{thrown, thrown}));
}

TEST_F(JavaListener, GoesOnWhenTheVmHasNoMemoryForAScan) {
    for (const char* const entry : {"NewStringUTF", "NewByteArray"}) {
        receiver_.Clear();
        vm_.FailOn(entry);
        machine_.ScanIntermec("lost");
        machine_.ScanIntermec("heard");
        EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("heard"));
        const std::vector<JavaException> uncaught = vm_.TakeUncaught();
        ASSERT_EQ(uncaught.size(), 1U);
        EXPECT_EQ(uncaught[0].className, "java/lang/OutOfMemoryError");
    }
}

TEST_F(JavaListener, RefusesCallsThatWouldEndItsOwnDelivery) {
    std::vector<JavaFailure> failures;
    receiver_.DoInside([&] {
        failures.push_back(Disable());
        failures.push_back(Uninitialize());
    });
    machine_.ScanIntermec("text");
    receiver_.AwaitCount(1);
    const JavaException refused{"java/lang/IllegalStateException", "The call is not allowed inside the callback."};
    EXPECT_EQ(failures, (std::vector<JavaFailure>{{0, refused}, {0, refused}}));
}

TEST_F(JavaListener, MayAskTheScannerInsideADelivery) {
    std::atomic<int> enabled = -1;
    receiver_.DoInside([&] {
        NativeCall call(vm_);
        enabled = QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1IsEnabled)(call.Env(), call.Class(kScannerNatives));
        EXPECT_EQ(call.Thrown(), std::nullopt);
    });
    machine_.ScanIntermec("text");
    receiver_.AwaitCount(1);
    EXPECT_EQ(enabled, 1);
}

}  // namespace
}  // namespace quarlin::test
