// SPDX-License-Identifier: Apache-2.0
// Numbers and truth values on their way through the methods of the barcode scanner.
#include "barcode_method.h"

#include <gtest/gtest.h>
#include <climits>

namespace quarlin::test {

namespace {

struct Value {
    std::string name;
    std::string function;
    Invoke invoke;
    // What the library says, and what Java gets.
    std::int64_t given;
    std::int64_t answered;
    // Writes the value and fails.
    std::function<void(FlatLibrary& flat)> failsWithValue;
};

void PrintTo(const Value& value, std::ostream* stream) {
    *stream << value.name;
}

template <typename Native, typename Method>
Value ValueRow(const std::string& name, const std::string& function, QLerr (*)(Native*), Method* method,
               std::int64_t given, std::int64_t answered) {
    const auto fails = [function, given](FlatLibrary& flat) {
        flat.Does(function, [given](Native* value) {
            *value = static_cast<Native>(given);
            return QLERR_IO_ERROR;
        });
    };
    return {name, function, Barcode(method), given, answered, fails};
}

class BarcodeValue : public NativeMethodTest, public testing::TestWithParam<Value> {};

const std::vector<Value> kValues{
    ValueRow("IsEnabled0", "QLBCR_IsEnabled", QLBCR_IsEnabled, QL_BARCODE(IsEnabled), 0, 0),
    ValueRow("IsEnabled1", "QLBCR_IsEnabled", QLBCR_IsEnabled, QL_BARCODE(IsEnabled), 1, 1),
    ValueRow("IsEnabled256", "QLBCR_IsEnabled", QLBCR_IsEnabled, QL_BARCODE(IsEnabled), 256, 1),
    ValueRow("IsEnabledAllBits", "QLBCR_IsEnabled", QLBCR_IsEnabled, QL_BARCODE(IsEnabled), 0xFFFFFFFF, 1),
    ValueRow("IsSoundEnabled0", "QLBCR_IsSoundEnabled", QLBCR_IsSoundEnabled, QL_BARCODE(IsSoundEnabled), 0, 0),
    ValueRow("IsSoundEnabled1", "QLBCR_IsSoundEnabled", QLBCR_IsSoundEnabled, QL_BARCODE(IsSoundEnabled), 1, 1),
    ValueRow("IsSoundEnabled255", "QLBCR_IsSoundEnabled", QLBCR_IsSoundEnabled, QL_BARCODE(IsSoundEnabled), 255, 1),
    ValueRow("IsHardwareTriggerEnabled0", "QLBCR_IsHardwareTriggerEnabled", QLBCR_IsHardwareTriggerEnabled,
             QL_BARCODE(IsHardwareTriggerEnabled), 0, 0),
    ValueRow("IsHardwareTriggerEnabled1", "QLBCR_IsHardwareTriggerEnabled", QLBCR_IsHardwareTriggerEnabled,
             QL_BARCODE(IsHardwareTriggerEnabled), 1, 1),
    ValueRow("IsHardwareTriggerEnabled128", "QLBCR_IsHardwareTriggerEnabled", QLBCR_IsHardwareTriggerEnabled,
             QL_BARCODE(IsHardwareTriggerEnabled), 128, 1),
    ValueRow("GetDeviceType1", "QLBCR_GetDeviceType", QLBCR_GetDeviceType, QL_BARCODE(GetDeviceType), 1, 1),
    ValueRow("GetDeviceTypeAllBits", "QLBCR_GetDeviceType", QLBCR_GetDeviceType, QL_BARCODE(GetDeviceType), 0xFFFFFFFF,
             -1),
    ValueRow("GetNoOfBarcodeDevices2", "QLBCR_dotNet_GetNoOfDevices", QLBCR_dotNet_GetNoOfDevices,
             QL_BARCODE(GetNoOfBarcodeDevices), 2, 2),
    ValueRow("GetNoOfBarcodeDevicesNegative", "QLBCR_dotNet_GetNoOfDevices", QLBCR_dotNet_GetNoOfDevices,
             QL_BARCODE(GetNoOfBarcodeDevices), INT_MIN, INT_MIN),
};

INSTANTIATE_TEST_SUITE_P(Each, BarcodeValue, testing::ValuesIn(kValues),
                         [](const testing::TestParamInfo<Value>& row) { return row.param.name; });

TEST_P(BarcodeValue, IsWhatTheLibrarySays) {
    flat.Gives(GetParam().function, {GetParam().given});
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).number, GetParam().answered);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_P(BarcodeValue, GoesBackWithAnExceptionToo) {
    GetParam().failsWithValue(flat);
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).number, GetParam().answered);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_IO_ERROR, GetParam().function + " failed"));
}

// --- what goes in ---

class BarcodeArguments : public NativeMethodTest, public testing::Test {};

TEST_F(BarcodeArguments, TruthIsWhateverIsNotZero) {
    struct {
        Invoke (*invoke)(jboolean value);
        std::string call;
    } const rows[] = {
        {[](jboolean value) { return Barcode(QL_BARCODE(SetAllowExternalBarcodeDevice), value); },
         "QLBCR_SetAllowExternalBarcodeDevice(#)"},
        {[](jboolean value) { return Barcode(QL_BARCODE(EnableSymbology), value, "QR"); },
         "QLBCR_EnableSymbology(#, \"QR\")"},
        {[](jboolean value) { return Barcode(QL_BARCODE(EnableSymbologies), value, 3); },
         "QLBCR_EnableSymbologies(#, 3)"},
        {[](jboolean value) { return Barcode(QL_BARCODE(SetHardwareTriggerEnabled), value); },
         "QLBCR_SetHardwareTriggerEnabled(#)"},
        {[](jboolean value) { return Barcode(QL_BARCODE(SetSoundEnabled), value); }, "QLBCR_SetSoundEnabled(#)"},
        {[](jboolean value) { return Barcode(QL_BARCODE(SetPrefixData), value, "x"); },
         "QLBCR_SetPrefixData(#, \"x\")"},
        {[](jboolean value) { return Barcode(QL_BARCODE(SetSuffixData), value, "x"); },
         "QLBCR_SetSuffixData(#, \"x\")"},
    };
    for (const auto& row : rows) {
        for (const int value : {0, 1, 2, 0x80, 0xFF}) {
            NativeCall call(vm);
            row.invoke(static_cast<jboolean>(value))(call);
            std::string expected = row.call;
            expected.replace(expected.find('#'), 1, value == 0 ? "0" : "1");
            EXPECT_EQ(flat.TakeCalls(), Calls{expected});
        }
    }
}

TEST_F(BarcodeArguments, NumbersKeepTheirBits) {
    struct {
        Invoke invoke;
        std::string call;
    } const rows[] = {
        {Barcode(QL_BARCODE(SelectDevice), INT_MIN), "QLBCR_SelectDevice(-2147483648)"},
        {Barcode(QL_BARCODE(SelectDevice), INT_MAX), "QLBCR_SelectDevice(2147483647)"},
        {Barcode(QL_BARCODE(SetTriggerMode), -1), "QLBCR_SetTriggerMode(4294967295)"},
        {Barcode(QL_BARCODE(EnableSymbologies), JNI_FALSE, -2), "QLBCR_EnableSymbologies(0, 4294967294)"},
        {Barcode(QL_BARCODE(SetDataEditingMode), -1, "a", "b", INT_MIN, INT_MAX),
         "QLBCR_SetDataEditingMode(4294967295, \"a\", \"b\", -2147483648, 2147483647)"},
    };
    for (const auto& row : rows) {
        NativeCall call(vm);
        row.invoke(call);
        EXPECT_EQ(flat.TakeCalls(), Calls{row.call});
    }
}

}  // namespace

}  // namespace quarlin::test
