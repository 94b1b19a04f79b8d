// SPDX-License-Identifier: Apache-2.0
// The list of card readers as an array of objects.
#include "card_reader_method.h"
#include "text_forms.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <climits>
#include <memory>

namespace quarlin::test {

namespace {

constexpr const char* kFunction = "QLMSR_GetMagStripeDevices";
constexpr const char* kVendorClass = "com/norvane/quarlin/msr/MagStripeReader$MagStripeVendor";

void Put(wchar_t (&out)[150], const std::string& text) {
    const std::wstring wide = Widen(text);
    ASSERT_LT(wide.size(), 150U);
    std::copy(wide.begin(), wide.end(), out);
}

MagStripeReaderInfo Reader(int index, const std::string& name = "MAGTEK(USB)", const std::string& serial = "",
                           const std::string& software = "", int encrypts = 0) {
    MagStripeReaderInfo info{};
    info.index = index;
    Put(info.name, name);
    Put(info.serialNumber, serial);
    Put(info.softwareId, software);
    info.encryptionEnabled = encrypts;
    return info;
}

std::vector<MagStripeReaderInfo> Readers(int count) {
    std::vector<MagStripeReaderInfo> readers;
    for (int index = 0; index < count; ++index) {
        readers.push_back(Reader(index));
    }
    return readers;
}

class CardReaderList : public NativeMethodTest, public testing::Test {
  protected:
    // One list for each call; the last one stays.
    void Has(std::vector<std::vector<MagStripeReaderInfo>> lists) {
        flat.Does(kFunction, [lists, at = std::make_shared<std::size_t>(0)](MagStripeReaderInfo* readers, int* count) {
            const auto& list = lists[std::min((*at)++, lists.size() - 1)];
            const auto size = static_cast<int>(list.size());
            const int room = std::exchange(*count, size);
            if (room < size) {
                return QLERR_INVALID_ARGUMENT;
            }
            std::fill_n(readers, room, MagStripeReaderInfo{});
            std::copy(list.begin(), list.end(), readers);
            return QLERR_OK;
        });
    }
    void HasOne(const MagStripeReaderInfo& reader) { Has({{reader}}); }

    JavaRef List(NativeCall& call) { return CardReader(QL_CARD_READER(GetMagStripeReaders))(call).object; }

    // How many there are, for Java.
    std::size_t Count() {
        NativeCall call(vm);
        const JavaRef array = List(call);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        return array ? ObjectsOf(array).size() : SIZE_MAX;
    }

    // The only one's arguments: index, name, serial number, software identifier, encryption, vendor.
    JavaCall TheOnlyOne(NativeCall& call) {
        const JavaRef reader = ObjectsOf(List(call)).at(0);
        return {reader, reader->arguments, {}};
    }
};

TEST_F(CardReaderList, IsAnArrayOfReaders) {
    Has({{Reader(0, "MAGTEK(USB)", "B123", "21042840G01", 1), Reader(-7, "Zähler €", "", "漢字", 0)}});
    NativeCall call(vm);
    const JavaRef array = List(call);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->type->Name(), std::string("[L") + kCardReaderClass + ";");
    const auto readers = ObjectsOf(array);
    ASSERT_EQ(readers.size(), 2U);
    for (const JavaRef& reader : readers) {
        EXPECT_EQ(reader->type->Name(), kCardReaderClass);
    }
    const JavaCall first{readers[0], readers[0]->arguments, {}};
    EXPECT_EQ(first.Int(0), 0);
    EXPECT_EQ(first.Text(1), "MAGTEK(USB)");
    EXPECT_EQ(first.Text(2), "B123");
    EXPECT_EQ(first.Text(3), "21042840G01");
    EXPECT_TRUE(first.Bool(4));
    EXPECT_EQ(
        first.Object(5),
        std::get<JavaRef>(
            vm.Class(kVendorClass).FindField("MagTek", std::string("L") + kVendorClass + ";", true)->staticValue));
    EXPECT_NE(first.Object(5), nullptr);
    const JavaCall second{readers[1], readers[1]->arguments, {}};
    EXPECT_EQ(second.Int(0), -7);
    EXPECT_EQ(second.Text(1), "Zähler €");
    EXPECT_EQ(second.Text(2), "");
    EXPECT_EQ(second.Text(3), "漢字");
    EXPECT_FALSE(second.Bool(4));
    EXPECT_EQ(second.Object(5), first.Object(5));
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Locals(), 1);
}

TEST_F(CardReaderList, MayBeEmpty) {
    Has({{}});
    EXPECT_EQ(Count(), 0U);
}

TEST_F(CardReaderList, HasEveryReader) {
    Has({Readers(1)});
    EXPECT_EQ(Count(), 1U);
    Has({Readers(16)});
    EXPECT_EQ(Count(), 16U);
    EXPECT_EQ(flat.TakeCalls(), (Calls{"QLMSR_GetMagStripeDevices(16)", "QLMSR_GetMagStripeDevices(16)"}));
    Has({Readers(17)});
    EXPECT_EQ(Count(), 17U);
    EXPECT_EQ(flat.TakeCalls(), (Calls{"QLMSR_GetMagStripeDevices(16)", "QLMSR_GetMagStripeDevices(17)"}));
}

TEST_F(CardReaderList, MayGrowAndShrinkWhileItIsAskedFor) {
    Has({Readers(17), Readers(20), Readers(40), Readers(39)});
    EXPECT_EQ(Count(), 39U);
    EXPECT_EQ(flat.TakeCalls(), (Calls{"QLMSR_GetMagStripeDevices(16)", "QLMSR_GetMagStripeDevices(17)",
                                       "QLMSR_GetMagStripeDevices(20)", "QLMSR_GetMagStripeDevices(40)"}));
    Has({Readers(17), {}});
    EXPECT_EQ(Count(), 0U);
}

TEST_F(CardReaderList, IsNotAskedForAgainAfterAnotherFailure) {
    flat.Does(kFunction, [](MagStripeReaderInfo* /*readers*/, int* count) {
        *count = 17;
        return QLERR_INTERNAL_ERROR;
    });
    NativeCall call(vm);
    EXPECT_EQ(List(call), nullptr);
    EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INTERNAL_ERROR, "QLMSR_GetMagStripeDevices failed"));
    EXPECT_EQ(flat.TakeCalls().size(), 1U);
}

TEST_F(CardReaderList, FailsWithAnInvalidArgumentThatMoreRoomDoesNotMend) {
    for (const int count : {16, 0, -1}) {
        flat.Does(kFunction, [count](MagStripeReaderInfo* /*readers*/, int* out) {
            *out = count;
            return QLERR_INVALID_ARGUMENT;
        });
        NativeCall call(vm);
        EXPECT_EQ(List(call), nullptr);
        EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INVALID_ARGUMENT, "QLMSR_GetMagStripeDevices failed"));
        EXPECT_EQ(flat.TakeCalls().size(), 1U);
    }
}

TEST_F(CardReaderList, TrustsNoCountBeyondItsRoom) {
    for (const int count : {-1, INT_MIN}) {
        flat.Does(kFunction, [count](MagStripeReaderInfo* /*readers*/, int* out) {
            *out = count;
            return QLERR_OK;
        });
        EXPECT_EQ(Count(), 0U);
    }
    flat.Does(kFunction, [](MagStripeReaderInfo* /*readers*/, int* out) {
        *out = 17;
        return QLERR_OK;
    });
    EXPECT_EQ(Count(), 16U);
}

TEST_F(CardReaderList, HasEmptyNamesWhereTheyDoNotFit) {
    const auto times = [](int count, const std::string& text) {
        std::string whole;
        for (int i = 0; i < count; ++i) {
            whole += text;
        }
        return whole;
    };
    struct {
        std::string text;
        bool fits;
    } const rows[] = {
        {std::string(149, 'x'), true}, {times(74, "ÿ"), true},        {times(74, "ÿ") + "x", true},
        {times(75, "ÿ"), false},       {times(149, "ÿ"), false},      {times(49, "€"), true},
        {times(50, "€"), false},       {times(49, "€") + "xx", true}, {times(49, "€") + "xxx", false},
    };
    for (const auto& row : rows) {
        const std::string arrives = row.fits ? row.text : "";
        for (int place = 0; place < 3; ++place) {
            HasOne(Reader(0, place == 0 ? row.text : "a", place == 1 ? row.text : "b", place == 2 ? row.text : "c"));
            NativeCall call(vm);
            const JavaCall reader = TheOnlyOne(call);
            EXPECT_EQ(reader.Text(1), place == 0 ? arrives : "a");
            EXPECT_EQ(reader.Text(2), place == 1 ? arrives : "b");
            EXPECT_EQ(reader.Text(3), place == 2 ? arrives : "c");
            EXPECT_EQ(call.Thrown(), std::nullopt);
        }
    }
}

TEST_F(CardReaderList, IsConvertedByTheLibrarysOwnHelper) {
    HasOne(Reader(0, "n", "s", "i"));
    NativeCall call(vm);
    List(call);
    EXPECT_EQ(flat.TakeHelperCalls(), (Calls{"QLSTR_WideToNarrow(150, \"n\")", "QLSTR_WideToNarrow(150, \"s\")",
                                             "QLSTR_WideToNarrow(150, \"i\")"}));
}

TEST_F(CardReaderList, HasTextsOfJava) {
    HasOne(Reader(0, "\U0001F600"));
    NativeCall call(vm);
    EXPECT_EQ(TheOnlyOne(call).Text(1), "\U0001F600");
}

TEST_F(CardReaderList, TakesEveryNumberButZeroForEncryption) {
    for (const int encrypts : {0, 1, 2, 256, -1}) {
        HasOne(Reader(0, "n", "s", "i", encrypts));
        NativeCall call(vm);
        EXPECT_EQ(TheOnlyOne(call).Bool(4), encrypts != 0);
    }
}

TEST_F(CardReaderList, MayBeLongWithFewReferences) {
    Has({Readers(500)});
    NativeCall call(vm);
    EXPECT_EQ(ObjectsOf(List(call)).size(), 500U);
    EXPECT_LE(call.PeakLocals(), 10);
    EXPECT_EQ(call.Locals(), 1);
}

TEST_F(CardReaderList, IsWhatTheVmSaysWhenItRefuses) {
    Has({Readers(2)});
    struct {
        std::string entry;
        int nth;
        std::string error;
    } const rows[] = {
        {"FindClass", 1, "java/lang/NoClassDefFoundError"},  {"FindClass", 2, "java/lang/NoClassDefFoundError"},
        {"GetMethodID", 1, "java/lang/NoSuchMethodError"},   {"GetStaticFieldID", 1, "java/lang/NoSuchFieldError"},
        {"NewObjectArray", 1, "java/lang/OutOfMemoryError"}, {"NewStringUTF", 1, "java/lang/OutOfMemoryError"},
        {"NewStringUTF", 2, "java/lang/OutOfMemoryError"},   {"NewStringUTF", 6, "java/lang/OutOfMemoryError"},
        {"NewObject", 1, "java/lang/OutOfMemoryError"},      {"NewObject", 2, "java/lang/OutOfMemoryError"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry + " " + std::to_string(row.nth));
        vm.FailOn(row.entry, row.nth);
        NativeCall call(vm);
        EXPECT_EQ(List(call), nullptr);
        ASSERT_TRUE(call.Thrown());
        EXPECT_EQ(call.Thrown()->className, row.error);
        EXPECT_TRUE(vm.TakeFailures());
    }
}

TEST_F(CardReaderList, NeedsTheVendorsClassAlsoForNoReaders) {
    Has({{}});
    vm.HideClass(kVendorClass);
    NativeCall call(vm);
    EXPECT_EQ(List(call), nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{"java/lang/NoClassDefFoundError", kVendorClass}));
}

TEST(CardReaderListClasses, NeedTheVendorsConstant) {
    StandInVm vm;
    FlatLibrary flat;
    vm.DefineClass(kVendorClass).StaticField("Magtek", std::string("L") + kVendorClass + ";", JavaRef());
    vm.DefineClass(kCardReaderClass)
        .Constructor(std::string("(ILjava/lang/String;Ljava/lang/String;Ljava/lang/String;ZL") + kVendorClass + ";)V");
    flat.Gives(kFunction, {0});
    NativeCall call(vm);
    EXPECT_EQ(CardReader(QL_CARD_READER(GetMagStripeReaders))(call).object, nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{"java/lang/NoSuchFieldError", "MagTek"}));
}

}  // namespace

}  // namespace quarlin::test
