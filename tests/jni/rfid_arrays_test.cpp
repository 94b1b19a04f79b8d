// SPDX-License-Identifier: Apache-2.0
// Every array argument of the RFID reader's native methods: how long it must be, when it changes, and that it is let
// go.
#include <cstdint>
#include <limits>

#include "methods_fixture.h"

#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {
namespace {

constexpr jint kMost = std::numeric_limits<jint>::max();
constexpr jint kLeast = std::numeric_limits<jint>::min();
constexpr jint kReader = 8;

// The arrays of a call. Of the numbers each method takes those that it has.
struct Arguments {
    JavaRef tagId;
    JavaRef length;
    JavaRef signal;
    jint tagLength = 0;
    JavaRef password;
    jint passwordLength = 4;
    JavaRef data;
    jint wordCount = 0;
};

using TagMethod = jint (*)(NativeCall& call, jclass self, const Arguments& given);

jint FirstTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetFirstTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), call.Pass<jintArray>(given.length),
        call.Pass<jintArray>(given.signal));
}

jint NextTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetNextTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), call.Pass<jintArray>(given.length),
        call.Pass<jintArray>(given.signal));
}

jint SelectTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SelectTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.tagId), given.tagLength);
}

jint ReadTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1ReadTag(
        call.Env(), self, kReader, 3, 255, call.Pass<jbyteArray>(given.password), given.passwordLength,
        call.Pass<jbyteArray>(given.data), given.wordCount);
}

jint WriteTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1WriteTag(
        call.Env(), self, kReader, 3, 255, call.Pass<jbyteArray>(given.password), given.passwordLength,
        call.Pass<jbyteArray>(given.data), given.wordCount);
}

jint LockTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1LockTag(
        call.Env(), self, kReader, 1, 2, call.Pass<jbyteArray>(given.password), given.passwordLength);
}

jint KillTag(NativeCall& call, jclass self, const Arguments& given) {
    return Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1KillTag(
        call.Env(), self, kReader, call.Pass<jbyteArray>(given.password), given.passwordLength);
}

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

constexpr const char* kTagTooShort = "length is beyond the end of tagId";
constexpr const char* kPasswordTooShort = "passwordLength is beyond the end of password";
constexpr const char* kDataTooShort = "wordCount is beyond the end of data";

const std::string kFirst = "QLUHFRFID_GetFirstTag";
const std::string kNext = "QLUHFRFID_GetNextTag";

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

// --- what is written, and where ---

class RfidTagMethods : public RfidMethods {
  protected:
    template <typename Method>
    jint Perform(NativeCall& call, Method method, const Arguments& arguments) {
        return method(call, Owner(call, kRfidNatives), arguments);
    }
    Arguments Inventory(std::size_t room, jint length) {
        Arguments arguments;
        arguments.tagId = vm_.Bytes(std::vector<std::uint8_t>(room, 0xEE));
        arguments.length = vm_.Ints({length, 55});
        arguments.signal = vm_.Ints({0, 66});
        return arguments;
    }
};

TEST_F(RfidTagMethods, InventoryWritesTheTagItsLengthAndItsSignal) {
    for (const auto& [function, run] : {std::pair<std::string, TagMethod>{kFirst, FirstTag}, {kNext, NextTag}}) {
        flat_.Gives(function, {std::vector<std::uint8_t>{0x30, 0x00, 0xFF, 0x80}, 4, -128});
        Arguments arguments = Inventory(7, 5);
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, run, arguments), 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(BytesOf(arguments.tagId), (std::vector<std::uint8_t>{0x30, 0x00, 0xFF, 0x80, 0xEE, 0xEE, 0xEE}));
        EXPECT_EQ(IntsOf(arguments.length), (std::vector<jint>{4, 55}));
        EXPECT_EQ(IntsOf(arguments.signal), (std::vector<jint>{-128, 66}));
        EXPECT_EQ(flat_.TakeCalls(), Calls({function + "(0x8, 5)"}));
    }
}

TEST_F(RfidTagMethods, InventoryThatFailsDropsWhatWasWritten) {
    for (const auto& [function, run] : {std::pair<std::string, TagMethod>{kFirst, FirstTag}, {kNext, NextTag}}) {
        flat_.Does(function, [this](void*, char* tagId, int* length, int* signal) {
            *tagId = 1;
            *length = 2;
            *signal = 3;
            flat_.LeaveError(QLERR_UHFRFID_NO_TAGS, kMessage);
            return QLERR_UHFRFID_NO_TAGS;
        });
        Arguments arguments = Inventory(7, 5);
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, run, arguments), 0);
        EXPECT_EQ(call.Thrown(),
                  (JavaException{kRfidException, std::string("Unexpected behaviour encountered,") + kMessage}));
        EXPECT_EQ(BytesOf(arguments.tagId), std::vector<std::uint8_t>(7, 0xEE));
        EXPECT_EQ(IntsOf(arguments.length), (std::vector<jint>{5, 55}));
        EXPECT_EQ(IntsOf(arguments.signal), (std::vector<jint>{0, 66}));
    }
}

// The library refuses numbers below 0; Java's arrays bound all others.
TEST_F(RfidTagMethods, InventoryTakesTheLengthFromTheArray) {
    for (const auto& [function, run] : {std::pair<std::string, TagMethod>{kFirst, FirstTag}, {kNext, NextTag}}) {
        for (const jint length : {0, -1, kLeast, 7}) {
            NativeCall call(vm_);
            EXPECT_EQ(Perform(call, run, Inventory(7, length)), 0);
            EXPECT_EQ(call.Thrown(), std::nullopt);
            EXPECT_EQ(flat_.TakeCalls(), Calls({function + "(0x8, " + std::to_string(length) + ")"}));
        }
        for (const jint length : {8, 255, 256, kMost}) {
            NativeCall call(vm_);
            EXPECT_EQ(Perform(call, run, Inventory(7, length)), 0);
            EXPECT_EQ(call.Thrown(), (JavaException{kIllegalArgument, kTagTooShort}));
            EXPECT_EQ(flat_.TakeCalls(), Calls());
            EXPECT_EQ(vm_.References().arrayPins, 0);
        }
    }
}

TEST_F(RfidTagMethods, SelectTakesAsManyBytesAsItIsTold) {
    const auto select = [this](jint length) {
        Arguments arguments;
        arguments.tagId = vm_.Bytes({0xE2, 0x00, 0x80});
        arguments.tagLength = length;
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, SelectTag, arguments), 0);
        return std::pair(call.Thrown(), flat_.TakeCalls());
    };
    EXPECT_EQ(select(0),
              (std::pair<std::optional<JavaException>, Calls>{std::nullopt, {"QLUHFRFID_SelectTag(0x8, [], 0)"}}));
    EXPECT_EQ(select(2).second, Calls({"QLUHFRFID_SelectTag(0x8, [e2 00], 2)"}));
    EXPECT_EQ(select(3).second, Calls({"QLUHFRFID_SelectTag(0x8, [e2 00 80], 3)"}));
    // As the library counts, which refuses them.
    EXPECT_EQ(select(-1).second, Calls({"QLUHFRFID_SelectTag(0x8, [], 4294967295)"}));
    EXPECT_EQ(select(kLeast).second, Calls({"QLUHFRFID_SelectTag(0x8, [], 2147483648)"}));
    for (const jint length : {4, 256, kMost}) {
        EXPECT_EQ(select(length).first, (JavaException{kIllegalArgument, kTagTooShort}));
    }
}

struct WithPassword {
    const char* name;
    TagMethod run;
    std::string before;  // of the password in the library's call
    std::string after;
};

TEST_F(RfidTagMethods, PasswordsMayBeOfAnyLengthWithinTheirArray) {
    const WithPassword methods[] = {
        {"ReadTag", ReadTag, "QLUHFRFID_ReadTag(0x8, 3, 255, ", ", 1)"},
        {"WriteTag", WriteTag, "QLUHFRFID_WriteTag(0x8, 3, 255, ", ", [01 02], 1)"},
        {"LockTag", LockTag, "QLUHFRFID_LockTag(0x8, 1, 2, ", ")"},
        {"KillTag", KillTag, "QLUHFRFID_KillTag(0x8, ", ")"},
    };
    for (const WithPassword& method : methods) {
        SCOPED_TRACE(method.name);
        const auto perform = [&](jint length) {
            Arguments arguments;
            arguments.password = vm_.Bytes({0xAA, 0xBB});
            arguments.passwordLength = length;
            arguments.data = vm_.Bytes({1, 2});
            arguments.wordCount = 1;
            NativeCall call(vm_);
            EXPECT_EQ(Perform(call, method.run, arguments), 0);
            EXPECT_EQ(BytesOf(arguments.password), (std::vector<std::uint8_t>{0xAA, 0xBB}));
            return std::pair(call.Thrown(), flat_.TakeCalls());
        };
        EXPECT_EQ(perform(2).second, Calls({method.before + "[aa bb], 2" + method.after}));
        EXPECT_EQ(perform(1).second, Calls({method.before + "[aa], 1" + method.after}));
        EXPECT_EQ(perform(0).second, Calls({method.before + "[], 0" + method.after}));
        EXPECT_EQ(perform(-1).second, Calls({method.before + "[], -1" + method.after}));
        EXPECT_EQ(perform(kLeast).second, Calls({method.before + "[], -2147483648" + method.after}));
        for (const jint length : {3, 4, kMost}) {
            const auto refused = perform(length);
            EXPECT_EQ(refused.first, (JavaException{kIllegalArgument, kPasswordTooShort}));
            EXPECT_EQ(refused.second, Calls());
        }
    }
}

// Two bytes for each word, and no number of words so large that twice as many seem few.
TEST_F(RfidTagMethods, WordsMustBeWithinTheirArray) {
    for (const TagMethod run : {TagMethod{ReadTag}, TagMethod{WriteTag}}) {
        const auto perform = [&](jint words) {
            Arguments arguments;
            arguments.password = vm_.Bytes({0});
            arguments.passwordLength = 1;
            arguments.data = vm_.Bytes(std::vector<std::uint8_t>(9, 7));
            arguments.wordCount = words;
            NativeCall call(vm_);
            EXPECT_EQ(Perform(call, run, arguments), 0);
            EXPECT_EQ(vm_.References().arrayPins, 0);
            return std::pair(call.Thrown(), flat_.TakeCalls().size());
        };
        for (const jint words : {0, 1, 4, -1, kLeast}) {
            EXPECT_EQ(perform(words), (std::pair<std::optional<JavaException>, std::size_t>{std::nullopt, 1})) << words;
        }
        for (const jint words : {5, 0x40000000, 0x40000001, kMost}) {
            EXPECT_EQ(perform(words), (std::pair<std::optional<JavaException>, std::size_t>{
                                          JavaException{kIllegalArgument, kDataTooShort}, 0}))
                << words;
        }
    }
}

TEST_F(RfidTagMethods, ReadingWritesTheWordsThatCame) {
    flat_.Gives("QLUHFRFID_ReadTag", {std::vector<std::uint8_t>{0xDE, 0xAD, 0xBE}});
    Arguments arguments;
    arguments.password = vm_.Bytes({1, 2, 3, 4});
    arguments.data = vm_.Bytes(std::vector<std::uint8_t>(6, 0xEE));
    arguments.wordCount = 2;
    NativeCall call(vm_);
    EXPECT_EQ(Perform(call, ReadTag, arguments), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(BytesOf(arguments.data), (std::vector<std::uint8_t>{0xDE, 0xAD, 0xBE, 0xEE, 0xEE, 0xEE}));
    EXPECT_EQ(BytesOf(arguments.password), (std::vector<std::uint8_t>{1, 2, 3, 4}));
}

TEST_F(RfidTagMethods, ReadingThatFailsDropsWhatWasWritten) {
    flat_.Does("QLUHFRFID_ReadTag", [](void*, unsigned int, unsigned int, unsigned char*, int, void* data, int) {
        *static_cast<unsigned char*>(data) = 0xDE;
        return QLERR_UHFRFID_ACCESS;
    });
    Arguments arguments;
    arguments.password = vm_.Bytes({1, 2, 3, 4});
    arguments.data = vm_.Bytes({5, 6});
    arguments.wordCount = 1;
    NativeCall call(vm_);
    EXPECT_EQ(Perform(call, ReadTag, arguments), 0);
    EXPECT_EQ(call.Thrown(),
              (JavaException{kRfidException, "Unexpected behaviour encountered,QLUHFRFID_ReadTag failed"}));
    EXPECT_EQ(BytesOf(arguments.data), (std::vector<std::uint8_t>{5, 6}));
}

// The functions take pointers that they could write through; Java's arrays do not change all the same.
TEST_F(RfidTagMethods, ArraysThatOnlyGoInDoNotChange) {
    flat_.Does("QLUHFRFID_SelectTag", [](void*, unsigned char* tagId, unsigned int) {
        *tagId = 0xFF;
        return QLERR_OK;
    });
    flat_.Does("QLUHFRFID_KillTag", [](void*, unsigned char* password, int) {
        *password = 0xFF;
        return QLERR_OK;
    });
    flat_.Does("QLUHFRFID_LockTag", [](void*, unsigned int, unsigned int, unsigned char* password, int) {
        *password = 0xFF;
        return QLERR_OK;
    });
    flat_.Does("QLUHFRFID_WriteTag",
               [](void*, unsigned int, unsigned int, unsigned char* password, int, unsigned char* data, int) {
                   *password = *data = 0xFF;
                   return QLERR_OK;
               });
    Arguments arguments;
    arguments.tagId = vm_.Bytes({1, 2, 3});
    arguments.tagLength = 3;
    arguments.password = vm_.Bytes({1, 2, 3, 4});
    arguments.data = vm_.Bytes({1, 2});
    arguments.wordCount = 1;
    NativeCall call(vm_);
    for (const TagMethod run : {TagMethod{SelectTag}, TagMethod{KillTag}, TagMethod{LockTag}, TagMethod{WriteTag}}) {
        EXPECT_EQ(Perform(call, run, arguments), 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
    }
    EXPECT_EQ(BytesOf(arguments.tagId), (std::vector<std::uint8_t>{1, 2, 3}));
    EXPECT_EQ(BytesOf(arguments.password), (std::vector<std::uint8_t>{1, 2, 3, 4}));
    EXPECT_EQ(BytesOf(arguments.data), (std::vector<std::uint8_t>{1, 2}));
}

TEST_F(RfidTagMethods, PassTheirNumbersAsTheLibraryCounts) {
    NativeCall call(vm_);
    jclass const self = Owner(call, kRfidNatives);
    auto* const password = call.Pass<jbyteArray>(vm_.Bytes({9}));
    auto* const data = call.Pass<jbyteArray>(vm_.Bytes({1, 2}));
    Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1ReadTag(call.Env(), self, -5, -1, kLeast, password, 1,
                                                                          data, 1);
    Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1WriteTag(call.Env(), self, -5, kLeast, -1, password,
                                                                           1, data, 1);
    Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1LockTag(call.Env(), self, kLeast, -1, kLeast,
                                                                          password, 1);
    Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1KillTag(call.Env(), self, kLeast, password, 1);
    Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1SelectTag(call.Env(), self, kLeast, data, 2);
    EXPECT_EQ(flat_.TakeCalls(),
              Calls({"QLUHFRFID_ReadTag(0xfffffffffffffffb, 4294967295, 2147483648, [09], 1, 1)",
                     "QLUHFRFID_WriteTag(0xfffffffffffffffb, 2147483648, 4294967295, [09], 1, [01 02], 1)",
                     "QLUHFRFID_LockTag(0xffffffff80000000, 4294967295, 2147483648, [09], 1)",
                     "QLUHFRFID_KillTag(0xffffffff80000000, [09], 1)",
                     "QLUHFRFID_SelectTag(0xffffffff80000000, [01 02], 2)"}));
}

TEST_F(RfidTagMethods, LetNoExceptionOfCppOutAndReleaseTheirArrays) {
    flat_.Does(kFirst, [](void*, char*, int*, int*) -> QLerr { throw std::runtime_error("inside"); });
    flat_.Does(kNext, [](void*, char*, int*, int*) -> QLerr { throw 7; });
    flat_.Does("QLUHFRFID_SelectTag", [](void*, unsigned char*, unsigned int) -> QLerr { throw 7; });
    flat_.Does("QLUHFRFID_ReadTag",
               [](void*, unsigned int, unsigned int, unsigned char*, int, void*, int) -> QLerr { throw 7; });
    flat_.Does("QLUHFRFID_WriteTag",
               [](void*, unsigned int, unsigned int, unsigned char*, int, unsigned char*, int) -> QLerr { throw 7; });
    flat_.Does("QLUHFRFID_LockTag", [](void*, unsigned int, unsigned int, unsigned char*, int) -> QLerr { throw 7; });
    flat_.Does("QLUHFRFID_KillTag", [](void*, unsigned char*, int) -> QLerr { throw 7; });
    for (const TagMethod run : {TagMethod{FirstTag}, TagMethod{NextTag}, TagMethod{SelectTag}, TagMethod{ReadTag},
                                TagMethod{WriteTag}, TagMethod{LockTag}, TagMethod{KillTag}}) {
        Arguments arguments = Inventory(7, 5);
        arguments.tagLength = 7;
        arguments.password = vm_.Bytes({1, 2, 3, 4});
        arguments.data = vm_.Bytes({1, 2});
        arguments.wordCount = 1;
        NativeCall call(vm_);
        EXPECT_EQ(Perform(call, run, arguments), 0);
        EXPECT_EQ(call.Thrown(), (JavaException{kRfidException, std::string("Unknown,") + kOwnFailure}));
        EXPECT_EQ(vm_.References().arrayPins, 0);
        for (const JavaRef& array :
             {arguments.tagId, arguments.length, arguments.signal, arguments.password, arguments.data}) {
            for (const jint mode : array->releaseModes) {
                EXPECT_EQ(mode, JNI_ABORT);
            }
        }
    }
}

// The same arrays again and again, and nothing piles up.
TEST_F(RfidTagMethods, LeaveNothingOverManyCalls) {
    flat_.Gives(kFirst, {std::vector<std::uint8_t>{1, 2}, 2, -60});
    NativeCall call(vm_);
    const Arguments arguments = Inventory(7, 5);
    jclass const self = Owner(call, kRfidNatives);
    const auto tagId = call.Pass<jbyteArray>(arguments.tagId);
    const auto length = call.Pass<jintArray>(arguments.length);
    const auto signal = call.Pass<jintArray>(arguments.signal);
    for (int round = 0; round < 1000; ++round) {
        arguments.signal->elements = std::vector<jint>{0};
        ASSERT_EQ(Java_com_norvane_quarlin_uhfrfid_UhfRfidNativeBase_QLUHFRFID_1GetFirstTag(call.Env(), self, kReader,
                                                                                            tagId, length, signal),
                  0);
    }
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(call.PeakLocals(), 0);
    EXPECT_EQ(vm_.References().arrayPins, 0);
}

}  // namespace
}  // namespace quarlin::test
