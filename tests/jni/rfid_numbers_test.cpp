// SPDX-License-Identifier: Apache-2.0
// The native methods of the RFID reader that take and give numbers alone.
#include <cstdint>
#include <limits>
#include <utility>

#include "methods_fixture.h"

#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"
#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {
namespace {

constexpr jint kLeast = std::numeric_limits<jint>::min();
constexpr jint kMost = std::numeric_limits<jint>::max();

// Java's number for a reader, and the handle that the library gets: widened with its sign.
struct Handle {
    std::uint32_t number;
    const char* handle;

    jint Java() const { return static_cast<jint>(number); }
};

constexpr Handle kHandles[] = {{0, "0x0"},
                               {4, "0x4"},
                               {0x7FFFFFFF, "0x7fffffff"},
                               {0x80000000, "0xffffffff80000000"},
                               {0x80001234, "0xffffffff80001234"},
                               {0xFFFFFFFF, "0xffffffffffffffff"}};

// One method, with the reader and the number that it is given.
struct Method {
    std::string function;  // of the library
    std::function<jint(JNIEnv*, jclass, jint reader, jint value)> method;
    bool takesValue;
    bool isSigned;
};

using OfReader = jint (*)(JNIEnv*, jclass, jint);
using OfValue = jint (*)(JNIEnv*, jclass, jint, jint);

Method Plain(std::string function, OfReader method) {
    return {std::move(function),
            [method](JNIEnv* env, jclass self, jint reader, jint) { return method(env, self, reader); }, false, false};
}

Method WithValue(std::string function, OfValue method, bool isSigned = false) {
    return {std::move(function), method, true, isSigned};
}

const Method kCommands[] = {
    Plain("QLUHFRFID_CloseReader", Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1CloseReader),
    WithValue("QLUHFRFID_SetPower", Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetPower),
    WithValue("QLUHFRFID_SetLinkFreqForQuery",
              Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetLinkFreqForQuery),
    WithValue("QLUHFRFID_SetMillerForQuery",
              Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetMillerForQuery),
    WithValue("QLUHFRFID_SetSessionForQuery",
              Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetSessionForQuery),
    WithValue("QLUHFRFID_SetQBeginForQuery",
              Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetQBeginForQuery),
    WithValue("QLUHFRFID_SetSensitivityForQuery",
              Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SetSensitivityForQuery, true),
};

const Method kQueries[] = {
    Plain("QLUHFRFID_GetPower", Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetPower),
    Plain("QLUHFRFID_GetLinkFreqForQuery",
          Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetLinkFreqForQuery),
    Plain("QLUHFRFID_GetMillerForQuery",
          Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetMillerForQuery),
    Plain("QLUHFRFID_GetSessionForQuery",
          Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetSessionForQuery),
    Plain("QLUHFRFID_GetQBeginForQuery",
          Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetQBeginForQuery),
    Plain("QLUHFRFID_GetSensitivityForQuery",
          Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetSensitivityForQuery),
};

std::string NameOf(const ::testing::TestParamInfo<Method>& info) {
    return info.param.function;
}

class RfidMethod : public RfidMethods, public ::testing::WithParamInterface<Method> {
  protected:
    jint Run(NativeCall& call, jint reader, jint value = 0) {
        return GetParam().method(call.Env(), Owner(call, kRfidNatives), reader, value);
    }
    std::string CallWith(const std::string& handle, const std::string& value = "0") const {
        return GetParam().function + "(" + handle + (GetParam().takesValue ? ", " + value : "") + ")";
    }
    // What the two kinds of methods have in common. Setters leave the number that they were given aside.
    void ExpectFailuresRaised() {
        for (const RaisedFailure& failure : RfidFailures()) {
            SCOPED_TRACE(failure.code);
            flat_.Fails(GetParam().function, failure.code, kMessage);
            NativeCall call(vm_);
            EXPECT_EQ(Run(call, 8), 0);
            EXPECT_EQ(call.Thrown(), failure.exception);
            EXPECT_EQ(flat_.Error(), std::nullopt);
            EXPECT_EQ(call.Locals(), 0);
            EXPECT_EQ(flat_.TakeCalls(), Calls({CallWith("0x8")}));
        }
    }
    void ExpectHandlesWidened() {
        for (const Handle& handle : kHandles) {
            NativeCall call(vm_);
            EXPECT_EQ(Run(call, handle.Java()), 0);
            EXPECT_EQ(call.Thrown(), std::nullopt);
            EXPECT_EQ(flat_.TakeCalls(), Calls({CallWith(handle.handle)}));
        }
        // The record of a success is nobody's affair.
        EXPECT_EQ(flat_.TakeHelperCalls(), Calls());
    }
    template <typename Body>
    void ExpectExceptionsContained(Body body) {
        for (const ThrownInside& thrown : ThrownInsideAFunction()) {
            SCOPED_TRACE(thrown.what);
            body(thrown.raise);
            NativeCall call(vm_);
            EXPECT_EQ(Run(call, 8), 0);
            EXPECT_EQ(call.Thrown(), (JavaException{kRfidException, std::string("Unknown,") + kOwnFailure}));
        }
    }
};

class RfidCommand : public RfidMethod {};

TEST_P(RfidCommand, WidensTheReadersHandleWithItsSign) {
    ExpectHandlesWidened();
}

TEST_P(RfidCommand, RaisesEachFailureAndConsumesItsRecord) {
    ExpectFailuresRaised();
}

TEST_P(RfidCommand, PassesItsNumberAsTheFunctionWantsIt) {
    for (const jint value : {0, 1, 640, -86, kLeast, kMost}) {
        NativeCall call(vm_);
        EXPECT_EQ(Run(call, 8, value), 0);
        const std::string text =
            GetParam().isSigned ? std::to_string(value) : std::to_string(static_cast<std::uint32_t>(value));
        EXPECT_EQ(flat_.TakeCalls(), Calls({CallWith("0x8", text)}));
    }
}

TEST_P(RfidCommand, LetsNoExceptionOfCppOut) {
    const std::string& function = GetParam().function;
    ExpectExceptionsContained([&](const std::function<void()>& raise) {
        const auto thrown = [raise] {
            raise();
            return QLERR_OK;
        };
        if (!GetParam().takesValue) {
            flat_.Does(function, [thrown](void*) { return thrown(); });
        } else if (function == "QLUHFRFID_SetPower") {
            flat_.Does(function, [thrown](void*, unsigned int) { return thrown(); });
        } else if (GetParam().isSigned) {
            flat_.Does(function, [thrown](void*, int*) { return thrown(); });
        } else {
            flat_.Does(function, [thrown](void*, unsigned int*) { return thrown(); });
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Natives, RfidCommand, ::testing::ValuesIn(kCommands), NameOf);

// The setters for queries: the function writes what the reader answered, and Java gets none of it.
class RfidQuerySetter : public RfidMethod {};

TEST_P(RfidQuerySetter, DropsTheValueWrittenBack) {
    flat_.Gives(GetParam().function, {77});
    NativeCall call(vm_);
    EXPECT_EQ(Run(call, 8, 3), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(flat_.TakeCalls(), Calls({CallWith("0x8", "3")}));
}

INSTANTIATE_TEST_SUITE_P(Natives, RfidQuerySetter, ::testing::ValuesIn(std::begin(kCommands) + 2, std::end(kCommands)),
                         NameOf);

class RfidQuery : public RfidMethod {};

TEST_P(RfidQuery, WidensTheReadersHandleWithItsSign) {
    ExpectHandlesWidened();
}

TEST_P(RfidQuery, RaisesEachFailureAndConsumesItsRecord) {
    ExpectFailuresRaised();
}

TEST_P(RfidQuery, GivesTheValue) {
    for (const std::int64_t value : {0LL, 1LL, 640LL, 2147483647LL, -86LL, -2147483648LL}) {
        flat_.Gives(GetParam().function, {value});
        NativeCall call(vm_);
        EXPECT_EQ(Run(call, 8), static_cast<jint>(value));
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
}

TEST_P(RfidQuery, GivesWhatAFailingFunctionHasWritten) {
    const auto fail = [this] {
        flat_.LeaveError(QLERR_UHFRFID_NOREPLY, kMessage);
        return QLERR_UHFRFID_NOREPLY;
    };
    if (GetParam().function == "QLUHFRFID_GetSensitivityForQuery") {
        flat_.Does(GetParam().function, [fail](void*, int* value) {
            *value = 5;
            return fail();
        });
    } else {
        flat_.Does(GetParam().function, [fail](void*, unsigned int* value) {
            *value = 5;
            return fail();
        });
    }
    NativeCall call(vm_);
    EXPECT_EQ(Run(call, 8), 5);
    EXPECT_EQ(call.Thrown(),
              (JavaException{kRfidException, std::string("Unexpected behaviour encountered,") + kMessage}));
}

TEST_P(RfidQuery, LetsNoExceptionOfCppOut) {
    const std::string& function = GetParam().function;
    ExpectExceptionsContained([&](const std::function<void()>& raise) {
        const auto thrown = [raise] {
            raise();
            return QLERR_OK;
        };
        if (function == "QLUHFRFID_GetSensitivityForQuery") {
            flat_.Does(function, [thrown](void*, int*) { return thrown(); });
        } else {
            flat_.Does(function, [thrown](void*, unsigned int*) { return thrown(); });
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Natives, RfidQuery, ::testing::ValuesIn(kQueries), NameOf);

// --- opening ---

class RfidOpening : public RfidMethods {
  protected:
    jint Open(NativeCall& call) {
        return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1OpenReader(call.Env(),
                                                                                        Owner(call, kRfidNatives));
    }
};

TEST_F(RfidOpening, GivesTheHandleInThirtyTwoBits) {
    for (const Handle& handle : kHandles) {
        // As the system hands it out on 64 bits: with its sign, or without.
        for (const std::int64_t given : {std::int64_t{handle.number}, std::int64_t{handle.Java()}}) {
            flat_.Gives("QLUHFRFID_OpenReader", {given});
            NativeCall call(vm_);
            const jint reader = Open(call);
            EXPECT_EQ(reader, handle.Java());
            EXPECT_EQ(call.Thrown(), std::nullopt);
            EXPECT_EQ(flat_.TakeCalls(), Calls({"QLUHFRFID_OpenReader()"}));

            Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1CloseReader(
                call.Env(), Owner(call, kRfidNatives), reader);
            EXPECT_EQ(flat_.TakeCalls(), Calls({std::string("QLUHFRFID_CloseReader(") + handle.handle + ")"}));
        }
    }
}

TEST_F(RfidOpening, RaisesEachFailureAndGivesWhatWasWritten) {
    for (const RaisedFailure& failure : RfidFailures()) {
        flat_.Does("QLUHFRFID_OpenReader", [&](void** handle) {
            EXPECT_EQ(*handle, nullptr);
            *handle = reinterpret_cast<void*>(std::intptr_t{-1});
            flat_.LeaveError(failure.code, kMessage);
            return failure.code;
        });
        NativeCall call(vm_);
        EXPECT_EQ(Open(call), -1);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
    }
    flat_.Fails("QLUHFRFID_OpenReader", QLERR_UHFRFID_DEVICENOTFOUND, kMessage);
    NativeCall call(vm_);
    EXPECT_EQ(Open(call), 0);
}

TEST_F(RfidOpening, LetsNoExceptionOfCppOut) {
    for (const ThrownInside& thrown : ThrownInsideAFunction()) {
        const auto raise = thrown.raise;
        flat_.Does("QLUHFRFID_OpenReader", [raise](void**) -> QLerr {
            raise();
            return QLERR_OK;
        });
        NativeCall call(vm_);
        EXPECT_EQ(Open(call), 0);
        EXPECT_EQ(call.Thrown(), (JavaException{kRfidException, std::string("Unknown,") + kOwnFailure}));
    }
}

}  // namespace
}  // namespace quarlin::test
