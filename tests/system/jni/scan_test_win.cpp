// SPDX-License-Identifier: Apache-2.0
// Scans of the machine's engines on their way into Java, and what the scanner's failures are called there.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jni/java_scan_test_win.h"
#include "support/machine_state_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

class JavaScans : public JavaScanTest {};

TEST_F(JavaScans, OfAnIntermecEngineArriveOnItsListenersThread) {
    Begin();
    machine_.ScanIntermec("4006381333931", "]E0");
    EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("4006381333931", "]E0"));
    machine_.ScanIntermec("second");
    EXPECT_EQ(receiver_.AwaitCount(2), PlainScan("second"));

    const std::vector<DWORD> threads = receiver_.Threads();
    EXPECT_NE(threads[0], GetCurrentThreadId());
    EXPECT_EQ(threads[0], threads[1]);
    const ThreadCounts counts = vm_.Threads();
    EXPECT_EQ(counts.attaches, 2);
    EXPECT_EQ(counts.detaches, 2);
    EXPECT_EQ(counts.daemons, 0);
    EXPECT_EQ(vm_.References().locals, 0);
}

class JavaHoneywellScans : public JavaScanTest {
  protected:
    JavaHoneywellScans() : JavaScanTest(ScannerSetup::MiniDb()) {}
};

TEST_F(JavaHoneywellScans, ArriveOnTheirListenersThread) {
    Begin();
    machine_.ScanHoneywell("first", "]C1ab");
    EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("first", "]C1ab"));
    machine_.ScanHoneywell("second", "]E0--");
    EXPECT_EQ(receiver_.AwaitCount(2), PlainScan("second", "]E0--"));
    EXPECT_EQ(vm_.Threads().attaches, 2);
    EXPECT_EQ(vm_.Threads().detaches, 2);
}

// The bytes are exact whatever they are; the text is one that a VM takes.
TEST_F(JavaScans, OfAnyBytesHaveATextThatJavaTakes) {
    Begin();
    std::string bytes;
    for (int value = 1; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    machine_.ScanIntermec(bytes, "]\xFFz");
    const JavaScan scan = receiver_.AwaitCount(1);
    EXPECT_EQ(scan.bytes, bytes);
    EXPECT_EQ(scan.length, 255);
    EXPECT_EQ(scan.symbologyBytes, "]\xFFz");
    EXPECT_EQ(scan.symbologyLength, 3);
    std::string text = bytes.substr(0, 0x7F);
    for (int value = 0x80; value < 256; ++value) {
        text += "\xEF\xBF\xBD";
    }
    EXPECT_EQ(scan.text, text);
    EXPECT_EQ(scan.symbology, "]\xEF\xBF\xBDz");
}

// Java's text ends where C's does; the bytes do not.
TEST_F(JavaScans, WithAZeroByteKeepAllBytes) {
    Begin();
    const std::string bytes("ab\0cd", 5);
    machine_.ScanIntermec(bytes);
    const JavaScan scan = receiver_.AwaitCount(1);
    EXPECT_EQ(scan.bytes, bytes);
    EXPECT_EQ(scan.length, 5);
    EXPECT_EQ(scan.text, "ab");
}

TEST_F(JavaScans, ComeWithTheTextsThatTheLibraryPutsAroundThem) {
    Begin();
    {
        NativeCall call(vm_);
        EXPECT_EQ(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1SetPrefixData)(
                      call.Env(), call.Class(kScannerNatives), JNI_TRUE, call.Text("<\xE2\x82\xAC")),
                  0);
        EXPECT_EQ(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1SetSuffixData)(
                      call.Env(), call.Class(kScannerNatives), JNI_FALSE, call.Text(">")),
                  0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
    machine_.ScanIntermec("code");
    EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("<\xE2\x82\xAC"
                                                 "code>"));
}

TEST_F(JavaScans, EndWhenTheScannerIsDisabledAndGoOnWhenItIsEnabled) {
    Begin();
    for (std::size_t round = 1; round <= 5; ++round) {
        machine_.ScanIntermec("text");
        receiver_.AwaitCount(round);
        ASSERT_EQ(Disable(), JavaFailure());
        ASSERT_EQ(Enable(), JavaFailure());
    }
    EXPECT_EQ(receiver_.Count(), 5U);
}

TEST_F(JavaScans, OfThousandsLeaveNothingBehind) {
    constexpr std::size_t kWarmUp = 100;
    constexpr std::size_t kScans = 5000;
    constexpr std::size_t kUnderWay = 8;
    Begin();
    std::size_t sent = 0;
    const auto scanTo = [&](std::size_t count) {
        for (; sent < count; ++sent) {
            machine_.ScanIntermec("scan " + std::to_string(sent), "]C0");
            Await("scans in Java", [&] { return receiver_.Count() + kUnderWay > sent; });
        }
        receiver_.AwaitCount(count);
    };
    scanTo(kWarmUp);
    const std::size_t handles = CountOpenHandles();
    const ReferenceCounts references = vm_.References();
    scanTo(kScans);
    // A lock of the test's own takes a handle when a thread has to wait for it for the first time.
    EXPECT_LE(CountOpenHandles(), handles + 4);
    EXPECT_EQ(vm_.References(), references);
    EXPECT_EQ(references.globals, 2);
    EXPECT_EQ(references.locals, 0);
    EXPECT_LE(references.peakLocals, 8);
    EXPECT_EQ(vm_.Threads().attaches, static_cast<int>(kScans));
    EXPECT_EQ(vm_.Threads().detaches, static_cast<int>(kScans));
    const std::vector<JavaScan> scans = receiver_.Scans();
    ASSERT_EQ(scans.size(), kScans);
    for (std::size_t i = 0; i < kScans; ++i) {
        ASSERT_EQ(scans[i], PlainScan("scan " + std::to_string(i), "]C0"));
    }
}

// --- failures, with the library's own texts ---

constexpr const char* kIllegalState = "java/lang/IllegalStateException";

TEST_F(JavaScans, FailuresAreJavasExceptionsWithTheLibrarysTexts) {
    Load();
    Init();
    const JavaFailure notInitialized{0, JavaException{kIllegalState, "The device is not initialized"}};
    EXPECT_EQ(Enable(), notInitialized);
    EXPECT_EQ(Disable(), notInitialized);
    ASSERT_EQ(Initialize(), JavaFailure());
    EXPECT_EQ(Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1StartScanning)),
              (JavaFailure{0, JavaException{kIllegalState, "The device is not enabled"}}));
    ASSERT_EQ(Enable(), JavaFailure());
    EXPECT_EQ(Enable(), (JavaFailure{0, JavaException{kIllegalState, "The device is already enabled"}}));
    // Each was asked for, so that none is left.
    EXPECT_EQ(library_->FetchLastError(), Failure());
}

TEST_F(JavaScans, EngineThatIsNotThereIsTheBindingsOwnException) {
    Load();
    Init();
    // Looks for scanners, so that one is known.
    ASSERT_EQ(Run(QUARLIN_NATIVE(*library_, bcr_QlBarcode_nQLBCR_1GetNoOfBarcodeDevices)), (JavaFailure{1, {}}));
    {
        const EnvironmentGuard withoutEngine(L"PATH", L"C:\\windows\\system32");
        EXPECT_EQ(Initialize(), (JavaFailure{0, JavaException{kScannerException, "Unknown,Unable to load ISDC.dll."}}));
    }
    EXPECT_EQ(Initialize(), JavaFailure());
}

}  // namespace
}  // namespace quarlin::test
