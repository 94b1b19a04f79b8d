// SPDX-License-Identifier: Apache-2.0
#include "native_method.h"

#include "com_norvane_quarlin_bcr_CoreNatives.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

const char* StandardClass(QLerr code) {
    switch (code) {
        case QLERR_INVALID_ARGUMENT:
            return "java/lang/IllegalArgumentException";
        case QLERR_INVALID_STATE:
            return "java/lang/IllegalStateException";
        case QLERR_IO_ERROR:
            return "java/io/IOException";
        case QLERR_OP_UNSUPPORTED:
            return "java/lang/UnsupportedOperationException";
        default:
            return nullptr;
    }
}

}  // namespace

JavaException BarcodeFailure(QLerr code, const std::string& message) {
    if (const char* const standard = StandardClass(code)) {
        return {standard, message};
    }
    switch (code) {
        case QLERR_OK:
            return {kBarcodeException, ""};
        case QLERR_INTERNAL_ERROR:
            return {kBarcodeException, "Unknown," + message};
        case QLERR_BUFFER_OVERFLOW:
            return {kBarcodeException, "QLERR_BUFFER_OVERFLOW," + message};
        default:
            return {kBarcodeException, "Unexpected behaviour encountered," + message};
    }
}

JavaException PlainFailure(QLerr code, const std::string& message) {
    if (const char* const standard = StandardClass(code)) {
        return {standard, message};
    }
    if (code == QLERR_BUFFER_OVERFLOW) {
        return BufferOverflow(message);
    }
    return {"java/lang/RuntimeException", message};
}

NativeMethodTest::NativeMethodTest() {
    const std::string barcode = "com/norvane/quarlin/bcr/";
    vm.DefineClass("com/norvane/quarlin/Library");
    vm.DefineException(kBarcodeException);
    vm.DefineClass(barcode + "CoreNatives");
    vm.DefineClass(barcode + "QlBarcode")
        .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V");
    vm.DefineClass(barcode + "FixData")
        .Constructor("()V")
        .Field("bAsTop", "Z")
        .Field("strFixData", "Ljava/lang/String;");
    vm.DefineClass(barcode + "EditModeData")
        .Constructor("()V")
        .Fields("I", {"iEditMode", "iStart", "iEnd"})
        .Fields("Ljava/lang/String;", {"strTarget", "strCont"});
    vm.DefineClass(barcode + "BarcodeDeviceInfo")
        .Constructor("()V")
        .Field("deviceName", "Ljava/lang/String;")
        .Fields("I", {"index", "iDeviceType", "iInternalNoofDevices"});

    const std::string reader = "com/norvane/quarlin/msr/MagStripeReader";
    const std::string vendor = reader + "$MagStripeVendor";
    vm.DefineClass(vendor);
    vm.Class(vendor).StaticField("MagTek", "L" + vendor + ";", vm.New(vendor));
    vm.DefineClass("com/norvane/quarlin/msr/MagStripeData");
    vm.DefineClass(reader)
        .Constructor("(ILjava/lang/String;Ljava/lang/String;Ljava/lang/String;ZL" + vendor + ";)V")
        .StaticMethod("onMagStripeSwipe", "(Lcom/norvane/quarlin/msr/MagStripeData;)V");

    NativeCall call(vm);
    EXPECT_EQ(Java_com_norvane_quarlin_bcr_CoreNatives_nInit(call.Env(), call.Class(barcode + "CoreNatives"),
                                                             call.Class(kBarcodeException),
                                                             call.Class(barcode + "QlBarcode")),
              JNI_TRUE);
    globals_ = vm.References().globals;
}

NativeMethodTest::~NativeMethodTest() {
    const ReferenceCounts left = vm.References();
    EXPECT_EQ(left.globals, globals_);
    EXPECT_EQ(left.locals, 0);
    EXPECT_EQ(left.textPins, 0);
    EXPECT_EQ(left.arrayPins, 0);
}

}  // namespace quarlin::test
