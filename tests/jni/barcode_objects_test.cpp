// SPDX-License-Identifier: Apache-2.0
// Texts and objects that methods of the barcode scanner hand to Java.
#include "barcode_method.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

// --- texts ---

struct TextMethod {
    std::string name;
    std::string function;
    Invoke invoke;
};

void PrintTo(const TextMethod& method, std::ostream* stream) {
    *stream << method.name;
}

class BarcodeText : public NativeMethodTest, public testing::TestWithParam<TextMethod> {};

INSTANTIATE_TEST_SUITE_P(Each, BarcodeText,
                         testing::Values(TextMethod{"DeviceName", "QLBCR_GetDeviceName",
                                                    Barcode(QL_BARCODE(GetDeviceName))},
                                         TextMethod{"FirmwareVersion", "QLBCR_GetDeviceFirmwareVersion",
                                                    Barcode(QL_BARCODE(GetDeviceFirmwareVersion))}),
                         [](const testing::TestParamInfo<TextMethod>& row) { return row.param.name; });

TEST_P(BarcodeText, IsWhatTheLibrarySays) {
    for (const std::string& text :
         {std::string(), std::string("Intermec EA30"), std::string("Zähler 5 € \U0001F600"), std::string(1023, 'x')}) {
        flat.Gives(GetParam().function, {text, static_cast<std::int64_t>(text.size() + 1)});
        NativeCall call(vm);
        EXPECT_EQ(TextOf(GetParam().invoke(call).object), text);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 1);
    }
}

TEST_P(BarcodeText, HasReplacementsForBytesThatAreNoText) {
    flat.Gives(GetParam().function, {std::string("a\xFF\xC3z\xE2\x82"), 7});
    NativeCall call(vm);
    EXPECT_EQ(TextOf(GetParam().invoke(call).object), "a\uFFFD\uFFFDz\uFFFD\uFFFD");
}

TEST_P(BarcodeText, IsNullWhenTheVmCannotMakeIt) {
    vm.FailOn("NewStringUTF");
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).object, nullptr);
    ASSERT_TRUE(call.Thrown());
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
}

// --- objects of the binding's own classes ---

struct Step {
    std::string entry;
    int nth;
    std::string error;
};

// What the VM can refuse on the way to an object with so many fields and texts.
std::vector<Step> Steps(int fields, int texts) {
    std::vector<Step> steps{{"FindClass", 1, "java/lang/NoClassDefFoundError"},
                            {"GetMethodID", 1, "java/lang/NoSuchMethodError"},
                            {"NewObject", 1, "java/lang/OutOfMemoryError"}};
    for (int nth = 1; nth <= fields; ++nth) {
        steps.push_back({"GetFieldID", nth, "java/lang/NoSuchFieldError"});
    }
    for (int nth = 1; nth <= texts; ++nth) {
        steps.push_back({"NewStringUTF", nth, "java/lang/OutOfMemoryError"});
    }
    return steps;
}

class BarcodeFixedText : public NativeMethodTest, public testing::TestWithParam<TextMethod> {
  protected:
    static constexpr const char* kClass = "com/norvane/quarlin/bcr/FixData";
};

INSTANTIATE_TEST_SUITE_P(
    Each, BarcodeFixedText,
    testing::Values(TextMethod{"Prefix", "QLBCR_GetPrefixData", Barcode(QL_BARCODE(GetPrefixData))},
                    TextMethod{"Suffix", "QLBCR_GetSuffixData", Barcode(QL_BARCODE(GetSuffixData))}),
    [](const testing::TestParamInfo<TextMethod>& row) { return row.param.name; });

TEST_P(BarcodeFixedText, IsAnObjectWithWhatTheLibrarySays) {
    struct {
        std::int64_t asTop;
        std::string text;
    } const rows[] = {
        {0, ""}, {1, "<"}, {0, "Zähler €"}, {2, "x"}, {256, std::string(127, 'x')}, {0xFFFFFFFF, "\U0001F600"}};
    for (const auto& row : rows) {
        flat.Gives(GetParam().function, {row.asTop, row.text});
        NativeCall call(vm);
        const JavaRef data = GetParam().invoke(call).object;
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(data->type->Name(), kClass);
        EXPECT_EQ(data->constructor, "()V");
        EXPECT_EQ(data->Bool("bAsTop"), row.asTop != 0);
        EXPECT_EQ(data->Text("strFixData"), row.text);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 1);
    }
}

TEST_P(BarcodeFixedText, IsWhatTheVmSaysWhenItRefuses) {
    for (const Step& step : Steps(2, 1)) {
        SCOPED_TRACE(step.entry + " " + std::to_string(step.nth));
        vm.FailOn(step.entry, step.nth);
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).object, nullptr);
        ASSERT_TRUE(call.Thrown());
        EXPECT_EQ(call.Thrown()->className, step.error);
        EXPECT_TRUE(vm.TakeFailures());
    }
}

// The object is made before the result is looked at.
TEST_P(BarcodeFixedText, IsMadeAlsoWhenTheLibraryFails) {
    flat.Fails(GetParam().function, QLERR_INVALID_STATE, "The device is not initialized");
    const int made = vm.CallsOf("NewObject");
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).object, nullptr);
    EXPECT_EQ(vm.CallsOf("NewObject"), made + 1);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INVALID_STATE, "The device is not initialized"));
}

TEST_P(BarcodeFixedText, TellsOfTheVmsRefusalBeforeTheLibrarysFailure) {
    const FlatError failure{QLERR_INVALID_STATE, "The device is not initialized"};
    flat.Fails(GetParam().function, failure.code, failure.message);
    vm.HideClass(kClass);
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).object, nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{"java/lang/NoClassDefFoundError", kClass}));
    EXPECT_EQ(flat.Error(), failure);
}

class BarcodeEditMode : public NativeMethodTest, public testing::Test {
  protected:
    static constexpr const char* kClass = "com/norvane/quarlin/bcr/EditModeData";

    JavaRef Get(NativeCall& call) { return Barcode(QL_BARCODE(GetDataEditingMode))(call).object; }
};

TEST_F(BarcodeEditMode, IsAnObjectWithWhatTheLibrarySays) {
    flat.Gives("QLBCR_GetDataEditingMode", {1, "Ziel ä", std::string(127, 'x'), 3, -1});
    NativeCall call(vm);
    const JavaRef data = Get(call);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->type->Name(), kClass);
    EXPECT_EQ(data->constructor, "()V");
    EXPECT_EQ(data->Int("iEditMode"), 1);
    EXPECT_EQ(data->Text("strTarget"), "Ziel ä");
    EXPECT_EQ(data->Text("strCont"), std::string(127, 'x'));
    EXPECT_EQ(data->Int("iStart"), 3);
    EXPECT_EQ(data->Int("iEnd"), -1);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Locals(), 1);
}

TEST_F(BarcodeEditMode, KeepsTheBitsOfAMode) {
    flat.Gives("QLBCR_GetDataEditingMode", {0xFFFFFFFF, "", "", INT32_MIN, INT32_MAX});
    NativeCall call(vm);
    const JavaRef data = Get(call);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->Int("iEditMode"), -1);
    EXPECT_EQ(data->Int("iStart"), INT32_MIN);
    EXPECT_EQ(data->Int("iEnd"), INT32_MAX);
}

TEST_F(BarcodeEditMode, IsWhatTheVmSaysWhenItRefuses) {
    for (const Step& step : Steps(5, 2)) {
        SCOPED_TRACE(step.entry + " " + std::to_string(step.nth));
        vm.FailOn(step.entry, step.nth);
        NativeCall call(vm);
        EXPECT_EQ(Get(call), nullptr);
        ASSERT_TRUE(call.Thrown());
        EXPECT_EQ(call.Thrown()->className, step.error);
        EXPECT_TRUE(vm.TakeFailures());
    }
}

TEST_F(BarcodeEditMode, IsNotMadeWhenTheLibraryFails) {
    flat.Fails("QLBCR_GetDataEditingMode", QLERR_INVALID_STATE, "The device is not initialized");
    vm.HideClass(kClass);
    const int made = vm.CallsOf("NewObject");
    NativeCall call(vm);
    EXPECT_EQ(Get(call), nullptr);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INVALID_STATE, "The device is not initialized"));
    EXPECT_EQ(vm.CallsOf("NewObject"), made);
}

}  // namespace

}  // namespace quarlin::test
