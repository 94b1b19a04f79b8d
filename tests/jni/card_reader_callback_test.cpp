// SPDX-License-Identifier: Apache-2.0
// The classes and the callback of the card reader, which are kept for the process.
#include "card_reader_method.h"
#include "jni/card_delivery.h"
#include "missing_method_notice.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

// What disabling removes before any test of the process has enabled a reader.
class FirstDisabling : public testing::Environment {
  public:
    void SetUp() override {
        StandInVm vm;
        FlatLibrary flat;
        vm.DefineClass(kCardReaderClass);
        NativeCall call(vm);
        CardReader(QL_CARD_READER(Disable))(call);
        calls_ = flat.TakeCalls();
    }

    static Calls calls_;
};

Calls FirstDisabling::calls_;

const testing::Environment* const kFirstDisabling = testing::AddGlobalTestEnvironment(new FirstDisabling);

class CardReaderCallback : public NativeMethodTest, public testing::Test {
  protected:
    jint Enable() { return Perform(QL_CARD_READER(Enable)); }
    jint Disable() { return Perform(QL_CARD_READER(Disable)); }

    // What disabling asks the library to remove.
    std::string Removed() {
        flat.TakeCalls();
        Disable();
        return flat.TakeCalls().at(1);
    }

  private:
    jint Perform(jint (*method)(JNIEnv*, jclass)) {
        NativeCall call(vm);
        return static_cast<jint>(CardReader(method)(call).number);
    }
};

TEST_F(CardReaderCallback, HasTheIdentifierZeroAtFirst) {
    ASSERT_NE(kFirstDisabling, nullptr);
    EXPECT_EQ(FirstDisabling::calls_, (Calls{"QLMSR_Disable()", "QLMSR_RemoveCallback(0)"}));
}

TEST_F(CardReaderCallback, DeliversSwipesIntoJava) {
    Enable();
    EXPECT_EQ(flat.CardCallback(), &jni::DeliverCardSwipe);
}

TEST_F(CardReaderCallback, IsRemovedByTheIdentifierThatItGot) {
    for (const std::int64_t id : {17LL, 0xFFFFFFFFLL, 0LL, 3LL}) {
        flat.Gives("QLMSR_AddCallback", {id});
        Enable();
        EXPECT_EQ(Removed(), "QLMSR_RemoveCallback(" + std::to_string(id) + ")");
        // Removing does not forget it.
        EXPECT_EQ(Removed(), "QLMSR_RemoveCallback(" + std::to_string(id) + ")");
    }
}

TEST_F(CardReaderCallback, KeepsItsIdentifierWhenTheNextOneIsRefused) {
    flat.Gives("QLMSR_AddCallback", {21});
    Enable();
    flat.Fails("QLMSR_AddCallback", QLERR_INVALID_ARGUMENT, "Refused");
    Enable();
    EXPECT_EQ(Removed(), "QLMSR_RemoveCallback(21)");
    flat.Does("QLMSR_AddCallback", [](QLMSR_Callback /*callback*/, unsigned int* /*id*/) -> QLerr { throw 42; });
    Enable();
    EXPECT_EQ(Removed(), "QLMSR_RemoveCallback(21)");
}

TEST_F(CardReaderCallback, IsAddedAlsoWhenEnablingFails) {
    flat.Fails("QLMSR_Enable", QLERR_INVALID_STATE, "Not now");
    flat.Gives("QLMSR_AddCallback", {22});
    Enable();
    EXPECT_EQ(Removed(), "QLMSR_RemoveCallback(22)");
}

// --- initialising ---

class CardReaderInit : public NativeMethodTest, public testing::Test {
  protected:
    CardReaderInit() {
        vm.DefineClass("app/First");
        TakeMissingMethodNotices();
    }

    // Null names are null references.
    jint Init(const char* first, const char* second) {
        NativeCall call(vm);
        const auto classOf = [&](const char* name) { return name == nullptr ? nullptr : call.Class(name); };
        const jint result =
            QL_CARD_READER(Initialize)(call.Env(), call.Class(kCardReaderClass), classOf(first), classOf(second));
        thrown_ = call.Thrown();
        EXPECT_EQ(call.Locals(), 0);
        return result;
    }

    std::optional<JavaException> thrown_;
};

TEST_F(CardReaderInit, KeepsBothClassesForEver) {
    for (int times = 0; times < 10; ++times) {
        EXPECT_EQ(Init("app/First", kCardReaderClass), 0);
        EXPECT_EQ(thrown_, std::nullopt);
        EXPECT_EQ(flat.TakeCalls(), Calls{"QLMSR_Initialize()"});
    }
    EXPECT_EQ(TakeMissingMethodNotices(), 0);
    ExpectGlobals(20);
}

TEST_F(CardReaderInit, ShowsThatTheMethodIsMissingAndGoesOn) {
    vm.DefineClass("app/Callback")
        .StaticMethod("onMagStripeSwipe", "()V")
        .Method("onMagStripeSwipe", "(Lcom/norvane/quarlin/msr/MagStripeData;)V");
    EXPECT_EQ(Init(kCardReaderClass, "app/Callback"), 0);
    EXPECT_EQ(thrown_, std::nullopt);
    EXPECT_EQ(TakeMissingMethodNotices(), 1);
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLMSR_Initialize()"});
    ExpectGlobals(2);
}

TEST_F(CardReaderInit, TakesNullClasses) {
    EXPECT_EQ(Init(nullptr, kCardReaderClass), 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 0);
    EXPECT_EQ(Init("app/First", nullptr), 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 1);
    EXPECT_EQ(flat.TakeCalls(), (Calls{"QLMSR_Initialize()", "QLMSR_Initialize()"}));
    ExpectGlobals(2);
}

TEST_F(CardReaderInit, KeepsNothingWithoutAVmAndGoesOn) {
    vm.FailOn("GetJavaVM");
    EXPECT_EQ(Init("app/First", "app/First"), 0);
    EXPECT_EQ(TakeMissingMethodNotices(), 0);
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLMSR_Initialize()"});
}

TEST_F(CardReaderInit, RaisesEachFailure) {
    for (const QLerr code : kFailures) {
        flat.Fails("QLMSR_Initialize", code, "It went wrong");
        EXPECT_EQ(Init("app/First", kCardReaderClass), code);
        EXPECT_EQ(thrown_, PlainFailure(code, "It went wrong"));
        EXPECT_EQ(flat.Error(), std::nullopt);
        ExpectGlobals(2);
    }
}

TEST_F(CardReaderInit, LetsNoCppExceptionOut) {
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        ScriptFor(QLMSR_Initialize)(flat, "QLMSR_Initialize", throws);
        EXPECT_EQ(Init("app/First", kCardReaderClass), 0);
        EXPECT_EQ(thrown_, PlainFailure(QLERR_INTERNAL_ERROR, "An unknown error occurred"));
        ExpectGlobals(2);
    }
}

}  // namespace

}  // namespace quarlin::test
