// SPDX-License-Identifier: Apache-2.0
// What the RFID reader's native methods make of arrays and lengths, and what they write.
#include <cstdint>
#include <stdexcept>

#include "rfid_tag_methods.h"

namespace quarlin::test {
namespace {

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
