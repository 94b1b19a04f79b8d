// SPDX-License-Identifier: Apache-2.0
// The native method that fills a battery's description.
#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "methods_fixture.h"

#include "com_norvane_quarlin_device_DeviceManager.h"

namespace quarlin::test {
namespace {

constexpr const char* kBatteryInfo = "com/norvane/quarlin/device/BatteryInfo";

const std::vector<std::string> kNumbers = {"Chemistry",
                                           "PowerState",
                                           "RemainingCapacity",
                                           "FullChargedCapacity",
                                           "DesignedCapacity",
                                           "Voltage",
                                           "Rate",
                                           "TotalChargeIndex",
                                           "Temperature",
                                           "BatteryHealth",
                                           "LastRecalibrationDate",
                                           "EnvironmentStatus"};

// As much of a text as the record has room for; nothing says where it ends.
void Put(wchar_t (&to)[12], std::u16string_view text) {
    std::fill(std::begin(to), std::end(to), L'\0');
    std::transform(text.begin(), text.end(), to, [](char16_t unit) { return static_cast<wchar_t>(unit); });
}

BatteryInfo Record(std::u16string_view name, std::u16string_view id) {
    BatteryInfo info{};
    Put(info.BatteryName, name);
    Put(info.BatteryID, id);
    info.Chemistry = 1;
    info.PowerState = -2;
    info.RemainingCapacity = 3;
    info.FullChargedCapacity = 4;
    info.DesignedCapacity = 5;
    info.Voltage = 2147483647;
    info.Rate = -2147483647 - 1;
    info.TotalChargeIndex = 8;
    info.Temperature = 9;
    info.BatteryHealth = 10;
    info.LastRecalibrationDate = 11;
    info.EnvironmentStatus = 12;
    return info;
}

class BatteryDescription : public NativeMethods {
  protected:
    BatteryDescription() {
        JavaClass& type = vm_.DefineClass(kBatteryInfo);
        for (const std::string& name : kNumbers) {
            type.Field(name, "I");
        }
        type.Fields("Ljava/lang/String;", {"BatteryName", "BatteryID"});
    }

    void Give(const BatteryInfo& record, QLerr result = QLERR_OK) {
        flat_.Does("QLDEVICE_GetBatteryInfo", [this, record, result](int, BatteryInfo* info) {
            static const BatteryInfo zero{};
            EXPECT_TRUE(std::equal(reinterpret_cast<const char*>(info), reinterpret_cast<const char*>(info + 1),
                                   reinterpret_cast<const char*>(&zero)));
            *info = record;
            if (result != QLERR_OK) {
                flat_.LeaveError(result, kMessage);
            }
            return result;
        });
    }
    jint Ask(NativeCall& call, const JavaRef& object, jint battery = 1) {
        return Java_com_norvane_quarlin_device_DeviceManager_QLDEVICE_1GetBatteryInfo(
            call.Env(), Owner(call, kDeviceManager), battery, call.Pass(object));
    }
    static std::vector<jint> NumbersOf(const JavaRef& object) {
        std::vector<jint> numbers;
        for (const std::string& name : kNumbers) {
            numbers.push_back(object->Int(name));
        }
        return numbers;
    }
    static std::u16string Characters(const JavaRef& object, std::string_view field) {
        const JavaRef& text = object->Object(field);
        return text == nullptr ? u"(null)" : text->characters;
    }
    // The texts as Java has them, all twelve characters.
    void ExpectTexts(std::u16string_view name, std::u16string_view id) {
        Give(Record(name, id));
        const JavaRef object = vm_.New(kBatteryInfo);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, object), 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(Characters(object, "BatteryName"), name);
        EXPECT_EQ(Characters(object, "BatteryID"), id);
    }
};

TEST_F(BatteryDescription, IsFilledWithEveryFieldOfTheRecord) {
    Give(Record(u"ABCDEFGHIJKL", u"abcdefghijkl"));
    const JavaRef object = vm_.New(kBatteryInfo);
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, object), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(NumbersOf(object), (std::vector<jint>{1, -2, 3, 4, 5, 2147483647, -2147483647 - 1, 8, 9, 10, 11, 12}));
    EXPECT_EQ(object->Text("BatteryName"), "ABCDEFGHIJKL");
    EXPECT_EQ(object->Text("BatteryID"), "abcdefghijkl");
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(flat_.TakeCalls(), Calls({"QLDEVICE_GetBatteryInfo(1)"}));
}

TEST_F(BatteryDescription, HasTextsOfTwelveCharactersWhateverTheyAre) {
    using namespace std::string_view_literals;
    ExpectTexts(u"BAT\0\0\0\0\0\0\0\0\0"sv, u"\0\0\0\0\0\0\0\0\0\0\0\0"sv);
    ExpectTexts(u"\0middl\0of\0it"sv, u"no end here!"sv);
    ExpectTexts(u"\u00E4\u20AC\uFFFF\uFEFF\u0001       "sv,
                u"\U0001F50B\U0001F50B\U0001F50B\U0001F50B\U0001F50B\U0001F50B"sv);
    // Halves of characters, in the wrong order and alone.
    const std::u16string halves = {0xDC00, 0xD800, u'a',   0xD800, 0xD800, u'b',
                                   0xDFFF, u'c',   0xDBFF, u'd',   u'e',   0xD800};
    ExpectTexts(halves, halves);
}

TEST_F(BatteryDescription, IsOfTheBatteryAskedFor) {
    for (const jint battery : {2, 0, -1, 2147483647, -2147483647 - 1}) {
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, vm_.New(kBatteryInfo), battery), 0);
        EXPECT_EQ(flat_.TakeCalls(), Calls({"QLDEVICE_GetBatteryInfo(" + std::to_string(battery) + ")"}));
    }
}

TEST_F(BatteryDescription, StaysAsItIsAfterAFailure) {
    for (const RaisedFailure& failure : ResultFailures()) {
        Give(Record(u"ABCDEFGHIJKL", u"abcdefghijkl"), failure.code);
        const JavaRef object = vm_.New(kBatteryInfo);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, object), failure.code);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(NumbersOf(object), std::vector<jint>(12));
        EXPECT_EQ(object->Object("BatteryName"), nullptr);
        EXPECT_EQ(object->Object("BatteryID"), nullptr);
    }
}

TEST_F(BatteryDescription, IsAnArgumentThatMustBeThere) {
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, nullptr), 0);
    EXPECT_EQ(call.Thrown(), (JavaException{kIllegalArgument, "info cannot be NULL"}));
    EXPECT_EQ(flat_.TakeCalls(), Calls());
}

TEST_F(BatteryDescription, WithoutAFieldIsAnErrorOfTheVm) {
    for (int nth = 1; nth <= 14; ++nth) {
        Give(Record(u"ABCDEFGHIJKL", u"abcdefghijkl"));
        vm_.FailOn("GetFieldID", nth);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, vm_.New(kBatteryInfo)), 0);
        ASSERT_NE(call.Thrown(), std::nullopt) << nth;
        EXPECT_EQ(call.Thrown()->className, "java/lang/NoSuchFieldError");
        EXPECT_TRUE(vm_.TakeFailures());
        EXPECT_EQ(call.Locals(), 0);
    }
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, vm_.New("java/lang/Object")), 0);
    ASSERT_NE(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Thrown()->className, "java/lang/NoSuchFieldError");
}

TEST_F(BatteryDescription, LeavesTheErrorOfAVmWithoutMemory) {
    for (const int nth : {1, 2}) {
        vm_.FailOn("NewString", nth);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, vm_.New(kBatteryInfo)), 0);
        ASSERT_NE(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Thrown()->className, kOutOfMemory);
        EXPECT_TRUE(vm_.TakeFailures());
    }
}

TEST_F(BatteryDescription, LetsNoExceptionOfCppOut) {
    for (const ThrownInside& thrown : ThrownInsideAFunction()) {
        const auto raise = thrown.raise;
        flat_.Does("QLDEVICE_GetBatteryInfo", [raise](int, BatteryInfo*) -> QLerr {
            raise();
            return QLERR_OK;
        });
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, vm_.New(kBatteryInfo)), 0);
        EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
    }
}

}  // namespace
}  // namespace quarlin::test
