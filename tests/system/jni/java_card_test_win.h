// SPDX-License-Identifier: Apache-2.0
// A simulated card reader, used from Java.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "card/test_reader_win.h"
#include "jni/java_library_win.h"
#include "stand_in_vm.h"
#include "support/wait_win.h"

#include "com_norvane_quarlin_msr_MagStripeReader.h"

namespace quarlin::test {

inline constexpr const char* kCardReader = "com/norvane/quarlin/msr/MagStripeReader";
inline constexpr const char* kVendor = "com/norvane/quarlin/msr/MagStripeReader$MagStripeVendor";
inline constexpr const char* kSwipe = "com/norvane/quarlin/msr/MagStripeData";
inline constexpr const char* kTrack = "com/norvane/quarlin/msr/MagStripeTrackData";
inline constexpr const char* kSwipeReceiver = "com/norvane/quarlin/msr/SwipeReceiver";

class JavaCardTest : public ::testing::Test {
  protected:
    using Method = jint(JNIEnv*, jclass);

    JavaCardTest() {
        vm_.DefineClass(kVendor);
        magTek_ = vm_.New(kVendor);
        vm_.Class(kVendor).StaticField("MagTek", std::string("L") + kVendor + ";", magTek_);
        vm_.DefineClass(kCardReader)
            .Constructor(std::string("(ILjava/lang/String;Ljava/lang/String;Ljava/lang/String;ZL") + kVendor + ";)V");
        vm_.DefineClass(kTrack).Constructor("(II[B)V");
        vm_.DefineClass(kSwipe).Constructor(std::string("([L") + kTrack + ";[L" + kTrack + ";[BZZ)V");
        vm_.DefineClass(kSwipeReceiver)
            .StaticMethod("onMagStripeSwipe", std::string("(L") + kSwipe + ";)V", [this](const JavaCall& call) {
                const std::lock_guard guard(lock_);
                swipes_.push_back(call.Object(0));
                threads_.push_back(GetCurrentThreadId());
            });
    }
    ~JavaCardTest() override {
        if (library_ != nullptr) {
            library_->QLMSR_Uninitialize();
        }
    }

    // What Java is thrown.
    std::optional<JavaException> Run(Method* method) {
        NativeCall call(vm_);
        result_ = method(call.Env(), call.Class(kCardReader));
        return call.Thrown();
    }
    std::optional<JavaException> Initialize(const char* receiver = kSwipeReceiver) {
        NativeCall call(vm_);
        result_ = QUARLIN_NATIVE(*library_, msr_MagStripeReader_QLMSR_1Initialize)(
            call.Env(), call.Class(kCardReader), call.Class(kCardReader), call.Class(receiver));
        return call.Thrown();
    }
    std::optional<JavaException> Enable() { return Run(QUARLIN_NATIVE(*library_, msr_MagStripeReader_QLMSR_1Enable)); }
    std::optional<JavaException> Disable() {
        return Run(QUARLIN_NATIVE(*library_, msr_MagStripeReader_QLMSR_1Disable));
    }
    std::optional<JavaException> Uninitialize() {
        return Run(QUARLIN_NATIVE(*library_, msr_MagStripeReader_QLMSR_1Uninitialize));
    }
    std::vector<JavaRef> Readers() {
        NativeCall call(vm_);
        const JavaRef array = call.Returned(QUARLIN_NATIVE(*library_, msr_MagStripeReader_QLMSR_1GetMagStripeReaders)(
            call.Env(), call.Class(kCardReader)));
        EXPECT_EQ(call.Thrown(), std::nullopt);
        return array == nullptr ? std::vector<JavaRef>() : ObjectsOf(array);
    }
    // Loaded, initialised, the reader known and enabled.
    void Begin() {
        library_ = std::make_unique<JavaLibrary>();
        ASSERT_EQ(Initialize(), std::nullopt);
        ASSERT_EQ(Readers().size(), 1U);
        ASSERT_EQ(Enable(), std::nullopt);
    }
    std::size_t Count() const {
        const std::lock_guard guard(lock_);
        return swipes_.size();
    }
    // Waits until so many have come and the reader's thread is detached again. Gives the last of them.
    JavaRef AwaitCount(std::size_t count) {
        Await("swipes in Java", [&] { return Count() >= count; });
        Await("the end of the delivery", [&] { return vm_.Threads().attached == 0; });
        const std::lock_guard guard(lock_);
        return swipes_.at(count - 1);
    }
    std::vector<DWORD> Threads() const {
        const std::lock_guard guard(lock_);
        return threads_;
    }

    const CardReaderTurn turn_;
    StandInVm vm_;
    JavaRef magTek_;
    std::unique_ptr<JavaLibrary> library_;
    jint result_ = 0;

  private:
    mutable std::mutex lock_;
    std::vector<JavaRef> swipes_;
    std::vector<DWORD> threads_;
};

}  // namespace quarlin::test
