// SPDX-License-Identifier: Apache-2.0
// The list of barcode devices as an array of objects.
#include "barcode_method.h"

#include <gtest/gtest.h>
#include <climits>

namespace quarlin::test {

namespace {

class BarcodeDevices : public NativeMethodTest, public testing::Test {
  protected:
    static constexpr const char* kFunction = "QLBCR_GetBarcodeDevices";
    static constexpr const char* kClass = "com/norvane/quarlin/bcr/BarcodeDeviceInfo";

    // The library has these devices: fills them in when there is room, and counts them.
    void Has(std::vector<QLBCR_DEVICE_INFO> devices) {
        flat.Does(kFunction, [devices](QLBCR_DEVICE_INFO* records, int* count) {
            const int room = *count;
            if (room != 0 && room < static_cast<int>(devices.size())) {
                return QLERR_BUFFER_OVERFLOW;
            }
            // All the room that is promised is there.
            for (int index = 0; index < room; ++index) {
                records[index] = index < static_cast<int>(devices.size()) ? devices[static_cast<std::size_t>(index)]
                                                                          : QLBCR_DEVICE_INFO{};
            }
            *count = static_cast<int>(devices.size());
            return QLERR_OK;
        });
    }

    static JavaRef List(NativeCall& call, jclass type, jint capacity) {
        return call.Returned(Java_com_norvane_quarlin_bcr_QlBarcode_QLBCR_1GetBarcodeDevices(
            call.Env(), call.Class("com/norvane/quarlin/bcr/QlBarcode"), type, capacity));
    }
    static JavaRef List(NativeCall& call, jint capacity) { return List(call, call.Class(kClass), capacity); }

    // What listing raises.
    std::optional<JavaException> Thrown(jint capacity, const std::string& className = kClass) {
        NativeCall call(vm);
        EXPECT_EQ(List(call, call.Class(className), capacity), nullptr);
        return call.Thrown();
    }
};

const QLBCR_DEVICE_INFO kFirst{0, 1, "Intermec EA30", 2, 1, {}};
const QLBCR_DEVICE_INFO kSecond{-7, 0, "Z\xC3\xA4hler\xFF", 0, 0, {}};
const QLBCR_DEVICE_INFO kNameless{INT_MAX, INT_MIN, nullptr, 0, 0, {}};

TEST_F(BarcodeDevices, AreObjectsOfTheCallersClass) {
    Has({kFirst, kSecond, kNameless});
    NativeCall call(vm);
    const JavaRef array = List(call, 5);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->type->Name(), std::string("[L") + kClass + ";");
    const auto devices = ObjectsOf(array);
    ASSERT_EQ(devices.size(), 3U);
    EXPECT_EQ(devices[0]->Text("deviceName"), "Intermec EA30");
    EXPECT_EQ(devices[0]->Int("index"), 0);
    EXPECT_EQ(devices[0]->Int("iDeviceType"), 1);
    EXPECT_EQ(devices[1]->Text("deviceName"), "Zähler\uFFFD");
    EXPECT_EQ(devices[1]->Int("index"), -7);
    EXPECT_EQ(devices[1]->Int("iDeviceType"), 0);
    EXPECT_EQ(devices[2]->Object("deviceName"), nullptr);
    EXPECT_EQ(devices[2]->Int("index"), INT_MAX);
    EXPECT_EQ(devices[2]->Int("iDeviceType"), INT_MIN);
    for (const JavaRef& device : devices) {
        EXPECT_EQ(device->type->Name(), kClass);
        EXPECT_EQ(device->constructor, "()V");
        EXPECT_EQ(device->Int("iInternalNoofDevices"), 3);
    }
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLBCR_GetBarcodeDevices(5)"});
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Locals(), 1);
}

TEST_F(BarcodeDevices, MayBeOneOrNone) {
    Has({kFirst});
    NativeCall call(vm);
    ASSERT_EQ(ObjectsOf(List(call, 1)).size(), 1U);
    EXPECT_EQ(ObjectsOf(List(call, 1))[0]->Int("iInternalNoofDevices"), 1);
    Has({});
    EXPECT_EQ(ObjectsOf(List(call, 1)).size(), 0U);
    EXPECT_EQ(ObjectsOf(List(call, 0)).size(), 0U);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_F(BarcodeDevices, AreCountedAloneWithoutCapacity) {
    Has({kFirst, kSecond});
    NativeCall call(vm);
    const auto devices = ObjectsOf(List(call, 0));
    ASSERT_EQ(devices.size(), 2U);
    for (const JavaRef& device : devices) {
        EXPECT_EQ(device->Object("deviceName"), nullptr);
        EXPECT_EQ(device->Int("index"), 0);
        EXPECT_EQ(device->Int("iInternalNoofDevices"), 2);
    }
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLBCR_GetBarcodeDevices(0)"});
}

TEST_F(BarcodeDevices, AreTooManyForASmallCapacity) {
    Has({kFirst, kSecond});
    for (const jint capacity : {1, -1, INT_MIN}) {
        EXPECT_EQ(Thrown(capacity), BarcodeFailure(QLERR_BUFFER_OVERFLOW, "QLBCR_GetBarcodeDevices failed"));
        EXPECT_EQ(flat.TakeCalls(), Calls{"QLBCR_GetBarcodeDevices(" + std::to_string(capacity) + ")"});
    }
}

TEST_F(BarcodeDevices, AreNoneWhenTheLibraryLeavesANegativeCount) {
    NativeCall call(vm);
    EXPECT_EQ(ObjectsOf(List(call, -1)).size(), 0U);
    EXPECT_EQ(call.Thrown(), std::nullopt);
}

TEST_F(BarcodeDevices, AreNotAskedForWithoutMemoryForThem) {
    const JavaException failure =
        BarcodeFailure(QLERR_INTERNAL_ERROR, "Java Wrapper: Error while trying to return barcode devices");
    EXPECT_EQ(Thrown(INT_MAX), failure);
    EXPECT_EQ(Thrown(1'000'001), failure);
    EXPECT_EQ(flat.TakeCalls(), Calls{});
}

TEST_F(BarcodeDevices, MayBeManyWithFewReferences) {
    std::vector<QLBCR_DEVICE_INFO> many(1000, kFirst);
    Has(many);
    NativeCall call(vm);
    EXPECT_EQ(ObjectsOf(List(call, 100000)).size(), 1000U);
    EXPECT_LE(call.PeakLocals(), 8);
}

TEST_F(BarcodeDevices, NeedAClass) {
    NativeCall call(vm);
    EXPECT_EQ(List(call, nullptr, 1), nullptr);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INVALID_ARGUMENT, "deviceClass cannot be NULL"));
    EXPECT_EQ(flat.TakeCalls(), Calls{});
}

TEST_F(BarcodeDevices, NeedAConstructorWithoutArguments) {
    Has({});
    vm.DefineClass("app/Device").Constructor("(I)V");
    EXPECT_EQ(Thrown(1, "app/Device"), (JavaException{"java/lang/NoSuchMethodError", "<init>"}));
}

TEST_F(BarcodeDevices, NeedEachFieldWithItsType) {
    struct {
        std::string missing;
        std::string otherType;
    } const rows[] = {{"deviceName", "Ljava/lang/Object;"},
                      {"index", "J"},
                      {"iDeviceType", "S"},
                      {"iInternalNoofDevices", "Ljava/lang/String;"}};
    Has({kFirst});
    int number = 0;
    for (const auto& row : rows) {
        for (const std::string& type : {std::string(), row.otherType}) {
            const std::string name = "app/Device" + std::to_string(++number);
            JavaClass& device = vm.DefineClass(name).Constructor("()V");
            for (const char* const field : {"deviceName", "index", "iDeviceType", "iInternalNoofDevices"}) {
                const std::string right = std::string(field) == "deviceName" ? "Ljava/lang/String;" : "I";
                const std::string signature = row.missing == field ? type : right;
                if (!signature.empty()) {
                    device.Field(field, signature);
                }
            }
            EXPECT_EQ(Thrown(1, name), (JavaException{"java/lang/NoSuchFieldError", row.missing}));
        }
    }
}

TEST_F(BarcodeDevices, MayHaveFieldsOfAParent) {
    Has({kFirst});
    vm.DefineClass("app/Device", kClass).Constructor("()V");
    NativeCall call(vm);
    EXPECT_EQ(ObjectsOf(List(call, call.Class("app/Device"), 1)).at(0)->Text("deviceName"), "Intermec EA30");
}

TEST_F(BarcodeDevices, AreWhatTheVmSaysWhenItRefuses) {
    Has({kFirst, kSecond});
    for (const auto& [entry, nth] : std::vector<std::pair<std::string, int>>{
             {"NewObjectArray", 1}, {"NewObject", 1}, {"NewObject", 2}, {"NewStringUTF", 2}}) {
        SCOPED_TRACE(entry);
        vm.FailOn(entry, nth);
        const auto thrown = Thrown(2);
        ASSERT_TRUE(thrown);
        EXPECT_EQ(thrown->className, "java/lang/OutOfMemoryError");
        EXPECT_TRUE(vm.TakeFailures());
    }
}

TEST_F(BarcodeDevices, AreWhatTheCallersConstructorThrows) {
    Has({kFirst});
    vm.DefineClass("app/Device").Constructor("()V", [](JavaCall& /*call*/) -> void {
        throw JavaThrow{"java/lang/IllegalStateException", "No devices here"};
    });
    EXPECT_EQ(Thrown(1, "app/Device"), (JavaException{"java/lang/IllegalStateException", "No devices here"}));
}

}  // namespace

}  // namespace quarlin::test
