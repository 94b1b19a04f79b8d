// SPDX-License-Identifier: Apache-2.0
// What all methods of the barcode scanner have in common: each calls its function with what it was given, and tells
// Java of each failure in the same way.
#include "barcode_method.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

constexpr const char* kDeviceClass = "com/norvane/quarlin/bcr/BarcodeDeviceInfo";

template <typename Function, typename Method, typename... Given>
NativeMethod Row(const std::string& name, const std::string& call, Function* function, Method* method, Given... given) {
    return {name, call.substr(0, call.find('(')), call, ScriptFor(function), Barcode(method, given...)};
}

NativeMethod WithText(NativeMethod row, const std::string& containment) {
    row.containment = containment;
    return row;
}

// Each of the 28, once.
const std::vector<NativeMethod> kMethods{
    Row("Initialize", "QLBCR_Initialize()", QLBCR_Initialize, QL_BARCODE(Initialize)),
    Row("Uninitialize", "QLBCR_Uninitialize()", QLBCR_Uninitialize, QL_BARCODE(Uninitialize)),
    WithText(Row("Enable", "QLBCR_Enable()", QLBCR_Enable, QL_BARCODE(Enable)),
             "Java Wrapper:Unable to set callback for the device"),
    Row("Disable", "QLBCR_Disable()", QLBCR_Disable, QL_BARCODE(Disable)),
    Row("IsEnabled", "QLBCR_IsEnabled()", QLBCR_IsEnabled, QL_BARCODE(IsEnabled)),
    Row("StartScanning", "QLBCR_StartScanning()", QLBCR_StartScanning, QL_BARCODE(StartScanning)),
    Row("StopScanning", "QLBCR_StopScanning()", QLBCR_StopScanning, QL_BARCODE(StopScanning)),
    WithText(Row("GetBarcodeDevices", "QLBCR_GetBarcodeDevices(0)", QLBCR_GetBarcodeDevices,
                 Java_com_norvane_quarlin_bcr_QlBarcode_QLBCR_1GetBarcodeDevices, kDeviceClass, 0),
             "Java Wrapper: Error while trying to return barcode devices"),
    Row("SelectDevice", "QLBCR_SelectDevice(-3)", QLBCR_SelectDevice, QL_BARCODE(SelectDevice), -3),
    Row("GetNoOfBarcodeDevices", "QLBCR_dotNet_GetNoOfDevices()", QLBCR_dotNet_GetNoOfDevices,
        QL_BARCODE(GetNoOfBarcodeDevices)),
    Row("GetDeviceType", "QLBCR_GetDeviceType()", QLBCR_GetDeviceType, QL_BARCODE(GetDeviceType)),
    WithText(Row("GetDeviceName", "QLBCR_GetDeviceName(1024)", QLBCR_GetDeviceName, QL_BARCODE(GetDeviceName)),
             "Java Wrapper: Unable to return device name"),
    WithText(Row("GetDeviceFirmwareVersion", "QLBCR_GetDeviceFirmwareVersion(1024)", QLBCR_GetDeviceFirmwareVersion,
                 QL_BARCODE(GetDeviceFirmwareVersion)),
             "Java Wrapper: Unable to return firmware version"),
    Row("SetAllowExternalBarcodeDevice", "QLBCR_SetAllowExternalBarcodeDevice(1)", QLBCR_SetAllowExternalBarcodeDevice,
        QL_BARCODE(SetAllowExternalBarcodeDevice), JNI_TRUE),
    Row("EnableSymbology", "QLBCR_EnableSymbology(1, \"EAN_13\")", QLBCR_EnableSymbology, QL_BARCODE(EnableSymbology),
        JNI_TRUE, "EAN_13"),
    Row("EnableSymbologies", "QLBCR_EnableSymbologies(1, 37)", QLBCR_EnableSymbologies, QL_BARCODE(EnableSymbologies),
        JNI_TRUE, 37),
    Row("SetTriggerMode", "QLBCR_SetTriggerMode(2)", QLBCR_SetTriggerMode, QL_BARCODE(SetTriggerMode), 2),
    Row("SetHardwareTriggerEnabled", "QLBCR_SetHardwareTriggerEnabled(1)", QLBCR_SetHardwareTriggerEnabled,
        QL_BARCODE(SetHardwareTriggerEnabled), JNI_TRUE),
    Row("IsHardwareTriggerEnabled", "QLBCR_IsHardwareTriggerEnabled()", QLBCR_IsHardwareTriggerEnabled,
        QL_BARCODE(IsHardwareTriggerEnabled)),
    Row("SetSoundEnabled", "QLBCR_SetSoundEnabled(1)", QLBCR_SetSoundEnabled, QL_BARCODE(SetSoundEnabled), JNI_TRUE),
    Row("IsSoundEnabled", "QLBCR_IsSoundEnabled()", QLBCR_IsSoundEnabled, QL_BARCODE(IsSoundEnabled)),
    Row("SetSReadSuccessSoundFile", "QLBCR_SetReadSuccessSoundFile(\"C:\\Sounds\\läuten.wav\")",
        QLBCR_SetReadSuccessSoundFile, QL_BARCODE(SetSReadSuccessSoundFile), "C:\\Sounds\\läuten.wav"),
    Row("SetPrefixData", "QLBCR_SetPrefixData(1, \"<\")", QLBCR_SetPrefixData, QL_BARCODE(SetPrefixData), JNI_TRUE,
        "<"),
    Row("SetSuffixData", "QLBCR_SetSuffixData(1, \">\")", QLBCR_SetSuffixData, QL_BARCODE(SetSuffixData), JNI_TRUE,
        ">"),
    Row("GetPrefixData", "QLBCR_GetPrefixData()", QLBCR_GetPrefixData, QL_BARCODE(GetPrefixData)),
    Row("GetSuffixData", "QLBCR_GetSuffixData()", QLBCR_GetSuffixData, QL_BARCODE(GetSuffixData)),
    Row("SetDataEditingMode", "QLBCR_SetDataEditingMode(1, \"from\", \"to\", 2, -1)", QLBCR_SetDataEditingMode,
        QL_BARCODE(SetDataEditingMode), 1, "from", "to", 2, -1),
    Row("GetDataEditingMode", "QLBCR_GetDataEditingMode()", QLBCR_GetDataEditingMode, QL_BARCODE(GetDataEditingMode)),
};

std::string NameOf(const testing::TestParamInfo<NativeMethod>& row) {
    return row.param.name;
}

class BarcodeMethod : public NativeMethodTest, public testing::TestWithParam<NativeMethod> {};

INSTANTIATE_TEST_SUITE_P(Each, BarcodeMethod, testing::ValuesIn(kMethods), NameOf);

TEST(BarcodeMethods, AreAllInTheTable) {
    EXPECT_EQ(kMethods.size(), 28U);
}

TEST_P(BarcodeMethod, CallsItsFunctionWithWhatItWasGiven) {
    NativeCall call(vm);
    const Answer answer = GetParam().invoke(call);
    Calls expected{GetParam().call};
    if (GetParam().name == "Enable") {
        expected.push_back("QLBCR_SetCallback(function)");
    }
    EXPECT_EQ(flat.TakeCalls(), expected);
    EXPECT_EQ(answer.number, 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    // The object that goes back to Java, and nothing else.
    EXPECT_EQ(call.Locals(), answer.object ? 1 : 0);
}

TEST_P(BarcodeMethod, RaisesEachFailureAndConsumesTheLastError) {
    for (const QLerr code : kFailures) {
        SCOPED_TRACE(code);
        flat.Fails(GetParam().function, code, "It went wrong");
        NativeCall call(vm);
        const Answer answer = GetParam().invoke(call);
        EXPECT_EQ(call.Thrown(), BarcodeFailure(code, "It went wrong"));
        EXPECT_EQ(answer.number, 0);
        EXPECT_EQ(answer.object, nullptr);
        EXPECT_EQ(flat.Error(), std::nullopt);
        EXPECT_EQ(flat.TakeCalls(), Calls{GetParam().call});
    }
}

TEST_P(BarcodeMethod, RaisesTheCodeOfTheLastError) {
    GetParam().script(flat, GetParam().function, [this] {
        flat.LeaveError(QLERR_INVALID_STATE, "Not now");
        return QLERR_INTERNAL_ERROR;
    });
    NativeCall call(vm);
    GetParam().invoke(call);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INVALID_STATE, "Not now"));
}

TEST_P(BarcodeMethod, RaisesTheGroupsClassForAFailureThatLeftNoError) {
    GetParam().script(flat, GetParam().function, [this] {
        flat.LeaveError(QLERR_OK, "");
        return QLERR_IO_ERROR;
    });
    NativeCall call(vm);
    GetParam().invoke(call);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_OK, ""));
}

TEST_P(BarcodeMethod, LetsNoCppExceptionOut) {
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        GetParam().script(flat, GetParam().function, throws);
        NativeCall call(vm);
        const Answer answer = GetParam().invoke(call);
        EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INTERNAL_ERROR, GetParam().containment));
        EXPECT_EQ(answer.number, 0);
        EXPECT_EQ(answer.object, nullptr);
    }
}

// One Java method may call another one a million times.
TEST_P(BarcodeMethod, KeepsNoReferences) {
    NativeCall outer(vm);
    for (int times = 0; times < 100; ++times) {
        if (times == 50) {
            flat.Fails(GetParam().function, QLERR_IO_ERROR, "It went wrong");
        }
        NativeCall call(vm);
        GetParam().invoke(call);
        EXPECT_LE(call.PeakLocals(), 4);
    }
    EXPECT_EQ(vm.References().locals, 0);
}

}  // namespace

}  // namespace quarlin::test
