// SPDX-License-Identifier: Apache-2.0
// What is left of the library when it is freed after Java has used it.
#include <gtest/gtest.h>

#include "barcode_support/listener_window_win.h"
#include "frame/leak_rounds_win.h"
#include "jni/java_scan_test_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

class JavaFreedLibrary : public JavaScanTest {
  protected:
    // From loading to freeing, with one scan.
    void Use() {
        Begin();
        machine_.ScanIntermec("text");
        receiver_.AwaitCount(1);
        receiver_.Clear();
        ASSERT_EQ(Disable(), JavaFailure());
        ASSERT_EQ(Uninitialize(), JavaFailure());
        library_.reset();
        ASSERT_TRUE(WaitUntil([] { return !IsLibraryLoaded(); }));
    }
};

TEST_F(JavaFreedLibrary, LeavesTheVmItsGlobalReferencesAlone) {
    const std::size_t threads = CountThreads();
    for (int round = 1; round <= 3; ++round) {
        Use();
        const ReferenceCounts references = vm_.References();
        EXPECT_EQ(references.globals, 2 * round);
        EXPECT_EQ(references.locals, 0);
        EXPECT_EQ(references.textPins, 0);
        EXPECT_EQ(references.arrayPins, 0);
        EXPECT_EQ(vm_.Threads().attached, 0);
        EXPECT_EQ(FindListenerWindow(), nullptr);
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
    }
}

TEST_F(JavaFreedLibrary, LeavesNoHandleOverManyRounds) {
    KeepImportsLoaded();
    for (int i = 0; i < 20; ++i) {
        Use();
    }
    const ResourceCount before = CountResources();
    for (int i = 0; i < 40; ++i) {
        Use();
    }
    const ResourceCount after = CountResources();
    // A lock of the test's own takes something when a thread has to wait for it for the first time.
    EXPECT_LE(after.handles, before.handles + 8);
    EXPECT_EQ(after.freeTlsSlots, before.freeTlsSlots);
}

// The scanner's thread keeps the library.
TEST_F(JavaFreedLibrary, GoesOnDeliveringUntilItIsUninitialised) {
    Begin();
    library_.reset();
    EXPECT_TRUE(IsLibraryLoaded());
    machine_.ScanIntermec("text");
    EXPECT_EQ(receiver_.AwaitCount(1), PlainScan("text"));
    Load();
    EXPECT_EQ(Disable(), JavaFailure());
    EXPECT_EQ(Uninitialize(), JavaFailure());
    library_.reset();
    EXPECT_TRUE(WaitUntil([] { return !IsLibraryLoaded(); }));
}

}  // namespace
}  // namespace quarlin::test
