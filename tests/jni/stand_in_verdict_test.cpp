// SPDX-License-Identifier: Apache-2.0
// What a test leaves unseen in the stand-ins fails it.
#include "flat_library.h"
#include "stand_in_vm.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

TEST(StandInVerdict, AViolationThatIsNotTakenFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            StandInVm vm;
            NativeCall call(vm);
            call.Env()->NewStringUTF("\xFF");
        },
        "violation: NewStringUTF: bytes that are not modified UTF-8");
}

TEST(StandInVerdict, AFailureThatIsOrderedAndNeverReachedFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            StandInVm vm;
            vm.FailOn("NewByteArray", 2);
            NativeCall call(vm);
            call.Env()->NewByteArray(1);
        },
        "never called to fail: NewByteArray");
}

TEST(StandInVerdict, TheUseOfAVmThatIsGoneFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            JavaVM* gone = nullptr;
            {
                StandInVm vm;
                gone = vm.Vm();
            }
            void* env = nullptr;
            EXPECT_EQ(gone->AttachCurrentThread(&env, nullptr), JNI_ERR);
        },
        "a stand-in VM that is gone was used: AttachCurrentThread");
}

TEST(StandInVerdict, AProblemOfTheLibraryThatIsNotTakenFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            FlatLibrary flat;
            QLGPS_GetMaxSat(nullptr);
        },
        "QLGPS_GetMaxSat: a null pointer for a value");
}

TEST(StandInVerdict, ACallWithoutALibraryFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(QLBCR_Enable(), "an export was called without a FlatLibrary");
}

}  // namespace

}  // namespace quarlin::test
