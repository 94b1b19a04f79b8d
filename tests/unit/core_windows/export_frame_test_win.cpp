// SPDX-License-Identifier: Apache-2.0
// The border of every exported function: each kind of exception, and the lock of a family.
#include "core/export_frame.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <new>
#include <stdexcept>
#include <string>

#include "support/failure.h"
#include "support/import_hook_win.h"

namespace quarlin {
namespace {

using test::Failure;

Failure FetchLastError() {
    return test::FetchLastErrorBy(&TakeQlLastError);
}

constexpr const char* kUnknown = "An unknown error occurred";

TEST(ExportFrame, SuccessErasesTheRecord) {
    SetQlLastError(QLERR_IO_ERROR, "older");
    EXPECT_EQ(Export([] {}), QLERR_OK);
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST(ExportFrame, OwnExceptionGivesItsCodeAndText) {
    SetQlLastError(QLERR_IO_ERROR, "older");
    EXPECT_EQ(Export([] { throw QuarlinException(QLERR_OP_UNSUPPORTED, "not on this machine"); }),
              QLERR_OP_UNSUPPORTED);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_OP_UNSUPPORTED, "not on this machine"}));
}

struct Derived : QuarlinException {
    using QuarlinException::QuarlinException;
};

TEST(ExportFrame, ExceptionDerivedFromTheOwnOneIsOne) {
    EXPECT_EQ(Export([] { throw Derived(QLERR_UHFRFID_NO_TAGS, ""); }), QLERR_UHFRFID_NO_TAGS);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_UHFRFID_NO_TAGS, ""}));
}

TEST(ExportFrame, AnyOtherExceptionIsAnUnknownError) {
    const auto expectUnknown = [](QLerr result) {
        EXPECT_EQ(result, QLERR_INTERNAL_ERROR);
        EXPECT_EQ(FetchLastError(), (Failure{QLERR_INTERNAL_ERROR, kUnknown}));
    };
    expectUnknown(Export([] { throw std::runtime_error("some text"); }));
    expectUnknown(Export([] { throw std::bad_alloc(); }));
    expectUnknown(Export([] { throw std::exception(); }));
    expectUnknown(Export([] { throw 42; }));
    expectUnknown(Export([] { throw "text"; }));
    expectUnknown(Export([] { static_cast<void>(std::string().at(1)); }));
}

TEST(ExportFrame, RequireThrowsOnlyWhenTheConditionFails) {
    EXPECT_EQ(Export([] { Require(true, QLERR_INVALID_ARGUMENT, "Pointer is NULL."); }), QLERR_OK);
    EXPECT_EQ(Export([] { Require(false, QLERR_INVALID_ARGUMENT, "Pointer is NULL."); }), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "Pointer is NULL."}));
}

// A family that records its successes too.
struct RecordAlways {
    static QLerr Succeeded() { return SetQlLastError(QLERR_OK, "QLERR_OK"); }
    static QLerr Failed(QLerr code, const char* message) noexcept { return ClearOnSuccess::Failed(code, message); }
};

TEST(ExportFrame, OutcomeIsTheFamilysOwn) {
    SetQlLastError(QLERR_IO_ERROR, "older");
    EXPECT_EQ(Export<RecordAlways>([] {}), QLERR_OK);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_OK, "QLERR_OK"}));
    EXPECT_EQ(Export<RecordAlways>([] { throw 42; }), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INTERNAL_ERROR, kUnknown}));
}

CSmartCritical* watchedLock;
int heldDuringOutcome;

struct WatchLock {
    static QLerr Succeeded() {
        heldDuringOutcome = watchedLock->LockCount();
        return QLERR_OK;
    }
    static QLerr Failed(QLerr code, const char*) noexcept {
        heldDuringOutcome = watchedLock->LockCount();
        return code;
    }
};

TEST(ExportFrameWithLock, HoldsItUntilTheOutcomeIsRecorded) {
    CSmartCritical lock;
    watchedLock = &lock;
    int heldDuringBody = 0;
    heldDuringOutcome = 0;
    EXPECT_EQ(ExportLocked<WatchLock>(lock, [&] { heldDuringBody = lock.LockCount(); }), QLERR_OK);
    EXPECT_EQ(heldDuringBody, 1);
    EXPECT_EQ(heldDuringOutcome, 1);
    EXPECT_EQ(lock.LockCount(), 0);

    heldDuringOutcome = 0;
    EXPECT_EQ(ExportLocked<WatchLock>(lock, [] { throw QuarlinException(QLERR_IO_ERROR, ""); }), QLERR_IO_ERROR);
    EXPECT_EQ(heldDuringOutcome, 1);
    EXPECT_EQ(lock.LockCount(), 0);
}

TEST(ExportFrameWithLock, MayBeEnteredAgainByItsThread) {
    CSmartCritical lock;
    int deepest = 0;
    const QLerr outer = ExportLocked(lock, [&] {
        EXPECT_EQ(ExportLocked(lock, [&] { deepest = lock.LockCount(); }), QLERR_OK);
        EXPECT_EQ(lock.LockCount(), 1);
    });
    EXPECT_EQ(outer, QLERR_OK);
    EXPECT_EQ(deepest, 2);
}

BOOL WINAPI RefuseSection(LPCRITICAL_SECTION, DWORD, DWORD) {
    return FALSE;
}

TEST(ExportFrameWithLock, ThatDoesNotExistRefusesToWorkWithoutIt) {
    const test::ImportHook hook("KERNEL32.dll", "InitializeCriticalSectionEx", &RefuseSection,
                                GetModuleHandleW(nullptr));
    CSmartCritical lock;
    bool ran = false;
    EXPECT_EQ(ExportLocked(lock, [&] { ran = true; }), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INTERNAL_ERROR, "Could not initialize critical section."}));
    EXPECT_FALSE(ran);
    EXPECT_EQ(lock.LockCount(), 0);
}

}  // namespace
}  // namespace quarlin
