// SPDX-License-Identifier: Apache-2.0
// The methods of the card reader, and the two functions that some of them call one after the other.
#include "card_reader_method.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

// --- one function ---

const std::vector<NativeMethod> kMethods{
    {"SelectDevice", "QLMSR_SelectDevice", "QLMSR_SelectDevice(-3)", ScriptFor(QLMSR_SelectDevice),
     CardReader(QL_CARD_READER(SelectDevice), -3)},
    {"IsEnabled", "QLMSR_IsEnabled", "QLMSR_IsEnabled()", ScriptFor(QLMSR_IsEnabled),
     CardReader(QL_CARD_READER(IsEnabled))},
    {"GetMagStripeReaders", "QLMSR_GetMagStripeDevices", "QLMSR_GetMagStripeDevices(16)",
     ScriptFor(QLMSR_GetMagStripeDevices), CardReader(QL_CARD_READER(GetMagStripeReaders))},
};

// What the method returns besides the exception: the code itself, where it returns a number that is one.
std::int64_t ReturnedFor(const NativeMethod& method, QLerr code) {
    return method.name == "SelectDevice" ? code : 0;
}

class CardReaderMethod : public NativeMethodTest, public testing::TestWithParam<NativeMethod> {};

INSTANTIATE_TEST_SUITE_P(Each, CardReaderMethod, testing::ValuesIn(kMethods),
                         [](const testing::TestParamInfo<NativeMethod>& row) { return row.param.name; });

TEST_P(CardReaderMethod, RaisesEachFailureAndConsumesTheLastError) {
    for (const QLerr code : kFailures) {
        flat.Fails(GetParam().function, code, "It went wrong");
        NativeCall call(vm);
        const Answer answer = GetParam().invoke(call);
        EXPECT_EQ(call.Thrown(), PlainFailure(code, "It went wrong"));
        EXPECT_EQ(answer.number, ReturnedFor(GetParam(), code));
        EXPECT_EQ(answer.object, nullptr);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat.Error(), std::nullopt);
        EXPECT_EQ(flat.TakeCalls(), Calls{GetParam().call});
    }
}

// The result says which class; the last error, whose code may be another one, has the text.
TEST_P(CardReaderMethod, RaisesTheResultWithTheLastErrorsText) {
    GetParam().script(flat, GetParam().function, [this] {
        flat.LeaveError(QLERR_INVALID_STATE, "Not now");
        return QLERR_IO_ERROR;
    });
    NativeCall call(vm);
    GetParam().invoke(call);
    EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_IO_ERROR, "Not now"));
}

TEST_P(CardReaderMethod, LeavesTheVmsOwnErrorAndTheLastErrorWhereTheClassIsMissing) {
    vm.HideClass("java/io/IOException");
    flat.Fails(GetParam().function, QLERR_IO_ERROR, "It went wrong");
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).number, ReturnedFor(GetParam(), QLERR_IO_ERROR));
    EXPECT_EQ(call.Thrown(), (JavaException{"java/lang/NoClassDefFoundError", "java/io/IOException"}));
    EXPECT_EQ(flat.Error(), (FlatError{QLERR_IO_ERROR, "It went wrong"}));
}

TEST_P(CardReaderMethod, CutsALongMessage) {
    flat.Fails(GetParam().function, QLERR_INTERNAL_ERROR, std::string(248, 'x') + "ä");
    NativeCall call(vm);
    GetParam().invoke(call);
    EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INTERNAL_ERROR, std::string(248, 'x') + "\uFFFD"));
    EXPECT_EQ(flat.Error(), std::nullopt);
}

TEST_P(CardReaderMethod, LetsNoCppExceptionOut) {
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        GetParam().script(flat, GetParam().function, throws);
        NativeCall call(vm);
        const Answer answer = GetParam().invoke(call);
        EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INTERNAL_ERROR, "An unknown error occurred"));
        EXPECT_EQ(answer.number, 0);
        EXPECT_EQ(answer.object, nullptr);
    }
}

class CardReaderValues : public NativeMethodTest, public testing::Test {};

TEST_F(CardReaderValues, AnIndexKeepsItsBits) {
    for (const jint index : {0, 1, -1, INT32_MIN, INT32_MAX}) {
        NativeCall call(vm);
        EXPECT_EQ(CardReader(QL_CARD_READER(SelectDevice), index)(call).number, 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(flat.TakeCalls(), Calls{"QLMSR_SelectDevice(" + std::to_string(index) + ")"});
    }
}

TEST_F(CardReaderValues, ReadersAreEnabledWhenTheLibrarySaysSo) {
    for (const std::int64_t enabled : {0, 1}) {
        flat.Gives("QLMSR_IsEnabled", {enabled});
        NativeCall call(vm);
        EXPECT_EQ(CardReader(QL_CARD_READER(IsEnabled))(call).number, enabled);
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
}

TEST_F(CardReaderValues, GoBackWithAnExceptionToo) {
    flat.Does("QLMSR_IsEnabled", [](bool* enabled) {
        *enabled = true;
        return QLERR_INTERNAL_ERROR;
    });
    NativeCall call(vm);
    EXPECT_EQ(CardReader(QL_CARD_READER(IsEnabled))(call).number, 1);
    EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INTERNAL_ERROR, "QLMSR_IsEnabled failed"));
}

// --- two functions ---

struct TwoSteps {
    std::string name;
    Invoke invoke;
    std::string first;
    std::string firstCall;
    Script firstScript;
    std::string second;
    std::string secondCall;
    Script secondScript;
};

void PrintTo(const TwoSteps& steps, std::ostream* stream) {
    *stream << steps.name;
}

// Without the identifier, which is told by what was enabled before.
std::string WithoutNumber(std::string call) {
    const std::size_t begin = call.find_first_of("0123456789");
    return begin == std::string::npos ? call : call.substr(0, begin) + ")";
}

class CardReaderSteps : public NativeMethodTest, public testing::TestWithParam<TwoSteps> {
  protected:
    void ExpectBothCalled() {
        Calls calls = flat.TakeCalls();
        for (std::string& call : calls) {
            call = WithoutNumber(call);
        }
        EXPECT_EQ(calls, (Calls{GetParam().firstCall, GetParam().secondCall}));
    }
};

INSTANTIATE_TEST_SUITE_P(Each, CardReaderSteps,
                         testing::Values(TwoSteps{"Enable", CardReader(QL_CARD_READER(Enable)), "QLMSR_Enable",
                                                  "QLMSR_Enable()", ScriptFor(QLMSR_Enable), "QLMSR_AddCallback",
                                                  "QLMSR_AddCallback(function)", ScriptFor(QLMSR_AddCallback)},
                                         TwoSteps{"Disable", CardReader(QL_CARD_READER(Disable)), "QLMSR_Disable",
                                                  "QLMSR_Disable()", ScriptFor(QLMSR_Disable), "QLMSR_RemoveCallback",
                                                  "QLMSR_RemoveCallback()", ScriptFor(QLMSR_RemoveCallback)},
                                         TwoSteps{"Uninitialize", CardReader(QL_CARD_READER(Uninitialize)),
                                                  "QLMSR_ClearCallbacks", "QLMSR_ClearCallbacks()",
                                                  ScriptFor(QLMSR_ClearCallbacks), "QLMSR_Uninitialize",
                                                  "QLMSR_Uninitialize()", ScriptFor(QLMSR_Uninitialize)}),
                         [](const testing::TestParamInfo<TwoSteps>& row) { return row.param.name; });

TEST_P(CardReaderSteps, CallBothFunctions) {
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).number, 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Locals(), 0);
    ExpectBothCalled();
}

TEST_P(CardReaderSteps, GoOnAfterAFailureOfTheFirst) {
    for (const QLerr code : kFailures) {
        flat.Fails(GetParam().first, code, "First");
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).number, code);
        EXPECT_EQ(call.Thrown(), PlainFailure(code, "First"));
        EXPECT_EQ(flat.Error(), std::nullopt);
        ExpectBothCalled();
    }
}

TEST_P(CardReaderSteps, RaiseAFailureOfTheSecond) {
    for (const QLerr code : kFailures) {
        flat.Fails(GetParam().second, code, "Second");
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).number, code);
        EXPECT_EQ(call.Thrown(), PlainFailure(code, "Second"));
        EXPECT_EQ(flat.Error(), std::nullopt);
        ExpectBothCalled();
    }
}

TEST_P(CardReaderSteps, RaiseTheLaterOfTwoFailures) {
    flat.Fails(GetParam().first, QLERR_INVALID_STATE, "First");
    for (const QLerr code : kFailures) {
        flat.Fails(GetParam().second, code, "Second");
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).number, code);
        EXPECT_EQ(call.Thrown(), PlainFailure(code, "Second"));
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat.Error(), std::nullopt);
        ExpectBothCalled();
    }
}

// The first failure was raised, with its message taken, before the second function was called.
TEST_P(CardReaderSteps, RaiseTheFirstFailureBeforeTheSecondFunction) {
    flat.Fails(GetParam().first, QLERR_INVALID_STATE, "First");
    std::optional<JavaException> pending;
    GetParam().secondScript(flat, GetParam().second, [&] {
        pending = vm.Pending();
        return QLERR_OK;
    });
    NativeCall call(vm);
    GetParam().invoke(call);
    EXPECT_EQ(pending, PlainFailure(QLERR_INVALID_STATE, "First"));
}

TEST_P(CardReaderSteps, LetNoCppExceptionOut) {
    const JavaException failure = PlainFailure(QLERR_INTERNAL_ERROR, "An unknown error occurred");
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        GetParam().firstScript(flat, GetParam().first, throws);
        {
            NativeCall call(vm);
            EXPECT_EQ(GetParam().invoke(call).number, 0);
            EXPECT_EQ(call.Thrown(), failure);
            ExpectBothCalled();
        }
        GetParam().secondScript(flat, GetParam().second, throws);
        {
            NativeCall call(vm);
            EXPECT_EQ(GetParam().invoke(call).number, 0);
            EXPECT_EQ(call.Thrown(), failure);
            ExpectBothCalled();
        }
        GetParam().firstScript(flat, GetParam().first, [] { return QLERR_OK; });
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).number, 0);
        EXPECT_EQ(call.Thrown(), failure);
        ExpectBothCalled();
        GetParam().secondScript(flat, GetParam().second, [] { return QLERR_OK; });
    }
}

}  // namespace

}  // namespace quarlin::test
