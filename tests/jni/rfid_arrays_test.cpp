// SPDX-License-Identifier: Apache-2.0
// Every array argument of the RFID reader's native methods: how long it must be, when it changes, and that it is let
// go.
#include <cstdint>

#include "rfid_tag_methods.h"

namespace quarlin::test {
namespace {

// One array of one method.
struct ArrayArgument {
    std::string name;  // of the test
    std::string function;
    TagMethod run;
    JavaRef Arguments::*array;
    bool ofInts;
    std::size_t needed;  // elements
    std::string refusal;
    // What the library sees when the array is as long as needed, and when it is null.
    std::string whole;
    std::string null;
    // What the library complains about when it gets the null pointer.
    std::vector<std::string> problems;
    bool written;
};

// The arrays that an inventory takes: tagId of 3 bytes.
ArrayArgument OfInventory(const std::string& function, TagMethod run, const std::string& name,
                          JavaRef Arguments::*array, bool ofInts, std::size_t needed, const std::string& refusal,
                          const std::string& length, std::vector<std::string> problems) {
    return {function + "_" + name,
            function,
            run,
            array,
            ofInts,
            needed,
            refusal,
            function + "(0x8, 3)",
            function + "(0x8, " + length + ")",
            std::move(problems),
            true};
}

std::vector<ArrayArgument> MakeArrays() {
    std::vector<ArrayArgument> arrays;
    for (const auto& [function, run] : {std::pair<std::string, TagMethod>{kFirst, FirstTag}, {kNext, NextTag}}) {
        const std::string problem = function + ": a null pointer for a value";
        arrays.push_back(OfInventory(function, run, "tagId", &Arguments::tagId, false, 3, kTagTooShort, "3", {}));
        arrays.push_back(OfInventory(function, run, "length", &Arguments::length, true, 1, "length has no element",
                                     "null", {problem}));
        arrays.push_back(
            OfInventory(function, run, "signal", &Arguments::signal, true, 1, "signal has no element", "3", {problem}));
    }
    arrays.insert(arrays.end(), {{"QLUHFRFID_SelectTag_tagId",
                                  "QLUHFRFID_SelectTag",
                                  SelectTag,
                                  &Arguments::tagId,
                                  false,
                                  3,
                                  kTagTooShort,
                                  "QLUHFRFID_SelectTag(0x8, [01 02 03], 3)",
                                  "QLUHFRFID_SelectTag(0x8, null, 3)",
                                  {},
                                  false},
                                 {"QLUHFRFID_ReadTag_password",
                                  "QLUHFRFID_ReadTag",
                                  ReadTag,
                                  &Arguments::password,
                                  false,
                                  4,
                                  kPasswordTooShort,
                                  "QLUHFRFID_ReadTag(0x8, 3, 255, [01 02 03 04], 4, 2)",
                                  "QLUHFRFID_ReadTag(0x8, 3, 255, null, 4, 2)",
                                  {},
                                  false},
                                 {"QLUHFRFID_ReadTag_data",
                                  "QLUHFRFID_ReadTag",
                                  ReadTag,
                                  &Arguments::data,
                                  false,
                                  4,
                                  kDataTooShort,
                                  "QLUHFRFID_ReadTag(0x8, 3, 255, [01 02 03 04], 4, 2)",
                                  "QLUHFRFID_ReadTag(0x8, 3, 255, [01 02 03 04], 4, 2)",
                                  {},
                                  true},
                                 {"QLUHFRFID_WriteTag_password",
                                  "QLUHFRFID_WriteTag",
                                  WriteTag,
                                  &Arguments::password,
                                  false,
                                  4,
                                  kPasswordTooShort,
                                  "QLUHFRFID_WriteTag(0x8, 3, 255, [01 02 03 04], 4, [01 02 03 04], 2)",
                                  "QLUHFRFID_WriteTag(0x8, 3, 255, null, 4, [01 02 03 04], 2)",
                                  {},
                                  false},
                                 {"QLUHFRFID_WriteTag_data",
                                  "QLUHFRFID_WriteTag",
                                  WriteTag,
                                  &Arguments::data,
                                  false,
                                  4,
                                  kDataTooShort,
                                  "QLUHFRFID_WriteTag(0x8, 3, 255, [01 02 03 04], 4, [01 02 03 04], 2)",
                                  "QLUHFRFID_WriteTag(0x8, 3, 255, [01 02 03 04], 4, null, 2)",
                                  {},
                                  false},
                                 {"QLUHFRFID_LockTag_password",
                                  "QLUHFRFID_LockTag",
                                  LockTag,
                                  &Arguments::password,
                                  false,
                                  4,
                                  kPasswordTooShort,
                                  "QLUHFRFID_LockTag(0x8, 1, 2, [01 02 03 04], 4)",
                                  "QLUHFRFID_LockTag(0x8, 1, 2, null, 4)",
                                  {},
                                  false},
                                 {"QLUHFRFID_KillTag_password",
                                  "QLUHFRFID_KillTag",
                                  KillTag,
                                  &Arguments::password,
                                  false,
                                  4,
                                  kPasswordTooShort,
                                  "QLUHFRFID_KillTag(0x8, [01 02 03 04], 4)",
                                  "QLUHFRFID_KillTag(0x8, null, 4)",
                                  {},
                                  false}});
    return arrays;
}

const std::vector<ArrayArgument>& Arrays() {
    static const std::vector<ArrayArgument> arrays = MakeArrays();
    return arrays;
}

const std::vector<jint> kReleasedUnchanged = {JNI_ABORT};
const std::vector<jint> kReleasedWithChanges = {0};

class RfidArray : public RfidMethods, public ::testing::WithParamInterface<ArrayArgument> {
  protected:
    // As long as the method needs them. The bytes count up from 1.
    Arguments Whole() {
        Arguments whole;
        whole.tagId = vm_.Bytes({1, 2, 3});
        whole.length = vm_.Ints({3});
        whole.signal = vm_.Ints({0});
        whole.tagLength = 3;
        whole.password = vm_.Bytes({1, 2, 3, 4});
        whole.data = vm_.Bytes({1, 2, 3, 4});
        whole.wordCount = 2;
        return whole;
    }
    // The method's arguments, where the array under test is so long.
    Arguments WithLength(std::size_t length) {
        Arguments arguments = Whole();
        if (GetParam().ofInts) {
            std::vector<jint> values(length);
            if (length > 0 && GetParam().array == &Arguments::length) {
                values[0] = 3;
            }
            Tested(arguments) = vm_.Ints(values);
        } else {
            std::vector<std::uint8_t> bytes(length);
            for (std::size_t i = 0; i < length; ++i) {
                bytes[i] = static_cast<std::uint8_t>(i + 1);
            }
            Tested(arguments) = vm_.Bytes(bytes);
        }
        return arguments;
    }
    static JavaRef& Tested(Arguments& arguments) { return arguments.*GetParam().array; }
    jint Perform(NativeCall& call, const Arguments& arguments) {
        return GetParam().run(call, Owner(call, kRfidNatives), arguments);
    }
    // What every call does to an array that it is given, whatever becomes of the call.
    void ExpectReleased(Arguments& arguments, const std::vector<jint>& modes) {
        EXPECT_EQ(Tested(arguments)->releaseModes, modes);
        EXPECT_EQ(vm_.References().arrayPins, 0);
    }
};

TEST_P(RfidArray, IsTakenWhenItIsAsLongAsNeededOrLonger) {
    for (const std::size_t more : {0U, 1U, 300U}) {
        Arguments arguments = WithLength(GetParam().needed + more);
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, arguments), 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().whole}));
        ExpectReleased(arguments, GetParam().written ? kReleasedWithChanges : kReleasedUnchanged);
    }
}

TEST_P(RfidArray, IsRefusedWhenItIsTooShort) {
    for (std::size_t length = 0; length < GetParam().needed; ++length) {
        Arguments arguments = WithLength(length);
        const auto before = Tested(arguments)->elements;
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, arguments), 0);
        EXPECT_EQ(call.Thrown(), (JavaException{kIllegalArgument, GetParam().refusal}));
        EXPECT_EQ(Tested(arguments)->elements, before);
        EXPECT_EQ(vm_.References().arrayPins, 0);
        EXPECT_EQ(call.Locals(), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls());
    }
}

// The library says what it thinks of it.
TEST_P(RfidArray, IsANullPointerWhenItIsNull) {
    Arguments arguments = Whole();
    Tested(arguments) = nullptr;
    NativeCall call(vm_);
    EXPECT_EQ(Perform(call, arguments), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().null}));
    EXPECT_EQ(flat_.TakeProblems(), GetParam().problems);
    EXPECT_EQ(vm_.References().arrayPins, 0);
}

TEST_P(RfidArray, DoesNotChangeAfterAFailure) {
    for (const RaisedFailure& failure : RfidFailures()) {
        flat_.Fails(GetParam().function, failure.code, kMessage);
        Arguments arguments = Whole();
        const auto before = Tested(arguments)->elements;
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, arguments), 0);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(Tested(arguments)->elements, before);
        ExpectReleased(arguments, kReleasedUnchanged);
        EXPECT_EQ(call.Locals(), 0);
    }
}

TEST_P(RfidArray, MayFailToBePinned) {
    const std::string entry = GetParam().ofInts ? "GetIntArrayElements" : "GetByteArrayElements";
    // Of the arrays of its kind each is the one that fails once.
    for (const int nth : {1, 2}) {
        const int before = vm_.CallsOf(entry);
        vm_.FailOn(entry, nth);
        Arguments arguments = Whole();
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, arguments), 0);
        if (!vm_.TakeFailures()) {
            EXPECT_EQ(nth, 2);
            EXPECT_EQ(vm_.CallsOf(entry), before + 1);
            EXPECT_EQ(flat_.TakeCalls(), Calls({GetParam().whole}));
            continue;
        }
        ASSERT_NE(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Thrown()->className, kOutOfMemory);
        EXPECT_EQ(vm_.References().arrayPins, 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls());
    }
}

INSTANTIATE_TEST_SUITE_P(Natives, RfidArray, ::testing::ValuesIn(Arrays()),
                         [](const auto& array) { return array.param.name; });

}  // namespace
}  // namespace quarlin::test
