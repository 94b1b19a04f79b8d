// SPDX-License-Identifier: Apache-2.0
// Triggers, firmware and reading sessions.
#include <climits>
#include <string>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"

namespace quarlin::test {
namespace {

constexpr std::uint16_t kStatuses[] = {1, 0x0100, 0x8000, 0xFFFF};
constexpr const char* kNoVersion = "Unable get firmware version.";
constexpr std::size_t kAnswerRoom = 4096;

using HoneywellTrigger = EnabledHoneywell;

TEST_F(HoneywellTrigger, ModeZeroIsTheCommandThatEndsInThree) {
    EXPECT_SUCCESS(QLBCR_SetTriggerMode(0));
    EXPECT_EQ(Engine().TakeTexts(), Texts{"SendMenuCommand TRGMOD3"});
}

TEST_F(HoneywellTrigger, EveryOtherModeIsTheCommandThatEndsInZero) {
    for (const unsigned int mode : {1U, 2U, 3U, 256U, 0x80000000U, UINT_MAX}) {
        EXPECT_SUCCESS(QLBCR_SetTriggerMode(mode));
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SendMenuCommand TRGMOD0"}) << mode;
    }
}

TEST_F(HoneywellTrigger, ModeIsRefused) {
    for (const std::uint16_t status : kStatuses) {
        Engine().Refuse(HoneywellFunction::kSendMenuCommand, status);
        EXPECT_FAILURE(QLBCR_SetTriggerMode(1), QLERR_INTERNAL_ERROR, "Unable set trigger mode.") << status;
        EXPECT_EQ(BarcodeState(), 2);
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_SetTriggerMode(1));
}

TEST_F(HoneywellTrigger, ModeNeedsAConnection) {
    EXPECT_SUCCESS(QLBCR_Disable());
    Engine().TakeCalls();
    EXPECT_FAILURE(QLBCR_SetTriggerMode(1), QLERR_INVALID_STATE, "Not connected.");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(HoneywellTrigger, OfTheScannerItselfCannotBeSwitched) {
    for (const unsigned int enable : {0U, 1U, UINT_MAX}) {
        EXPECT_FAILURE(QLBCR_SetHardwareTriggerEnabled(enable), QLERR_OP_UNSUPPORTED, "Not Supported.");
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(HoneywellTrigger, OfTheScannerItselfNeedsAnEnabledDeviceFirst) {
    unsigned char on = 77;
    ASSERT_SUCCESS(QLBCR_Disable());
    for (const char* const text : {kNotEnabled, kNotInitialized}) {
        Engine().TakeCalls();
        for (const unsigned int enable : {0U, 1U}) {
            EXPECT_FAILURE(QLBCR_SetHardwareTriggerEnabled(enable), QLERR_INVALID_STATE, text);
        }
        EXPECT_FAILURE(QLBCR_IsHardwareTriggerEnabled(&on), QLERR_INVALID_STATE, text);
        EXPECT_EQ(on, 77);
        EXPECT_EQ(Engine().TakeTexts(), Texts{});
        if (BarcodeState() == 1) {
            ASSERT_SUCCESS(QLBCR_Uninitialize());
        }
    }
}

TEST_F(HoneywellTrigger, OfTheScannerItselfIsAlwaysOn) {
    unsigned char enabled = 77;
    EXPECT_SUCCESS(QLBCR_IsHardwareTriggerEnabled(&enabled));
    EXPECT_EQ(enabled, 1);
    EXPECT_FAILURE(QLBCR_IsHardwareTriggerEnabled(nullptr), QLERR_INVALID_ARGUMENT, "pEnable cannot be NULL");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

class HoneywellFirmware : public EnabledHoneywell {
  protected:
    // With a buffer that is large enough for any answer, and the same by size alone.
    static std::string Version() {
        unsigned int needed = 0;
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(nullptr, &needed));
        std::string text(kAnswerRoom + 1, '?');
        auto size = static_cast<unsigned int>(text.size());
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(text.data(), &size));
        EXPECT_EQ(size, needed);
        if (size == 0 || size > text.size()) {
            ADD_FAILURE() << size;
            return {};
        }
        EXPECT_EQ(text[size - 1], '\0');
        EXPECT_EQ(text.find_first_not_of('?', size), std::string::npos);
        return text.substr(0, size - 1);
    }
};

TEST_F(HoneywellFirmware, IsTheWholeAnswer) {
    EXPECT_EQ(Version(), "N6603 CE000064AAA");
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].function, static_cast<std::uint32_t>(HoneywellFunction::kGetFirmwareVersion));
    EXPECT_EQ(calls[0].arguments[1], 4096);
}

TEST_F(HoneywellFirmware, EndsWhereItsLengthSaysNotWhereOlderBytesDo) {
    const std::string longest(kAnswerRoom, 'v');
    Engine().Use()->SetVersion(longest.data(), longest.size());
    EXPECT_EQ(Version(), longest);
    Engine().Use()->SetVersion("AB", 2);
    EXPECT_EQ(Version(), "AB");
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR));
    Engine().Use()->SetVersion("C", 1);
    EXPECT_EQ(Version(), "C");
    Engine().Use()->SetVersion("", 0);
    EXPECT_EQ(Version(), "");
}

TEST_F(HoneywellFirmware, DoesNotEndAtAZero) {
    using namespace std::string_literals;
    Engine().Use()->SetVersion("AB\0CD", 5);
    EXPECT_EQ(Version(), "AB\0CD"s);
}

TEST_F(HoneywellFirmware, NeverGoesBeyondTheBuffer) {
    for (const std::uint32_t claimed : {4097U, 65536U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        Engine().AnswerInstead(HoneywellFunction::kGetFirmwareVersion, std::string(kAnswerRoom, 'v'), claimed);
        EXPECT_EQ(Version(), std::string(kAnswerRoom, 'v')) << claimed;
    }
    Engine().AnswerHonestly();
    EXPECT_EQ(Version(), "N6603 CE000064AAA");
}

TEST_F(HoneywellFirmware, IsRefused) {
    for (const std::uint16_t status : kStatuses) {
        Engine().Refuse(HoneywellFunction::kGetFirmwareVersion, status);
        char buffer[64] = "untouched";
        unsigned int size = sizeof buffer;
        EXPECT_FAILURE(QLBCR_GetDeviceFirmwareVersion(buffer, &size), QLERR_INTERNAL_ERROR, kNoVersion) << status;
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(size, sizeof buffer);
        EXPECT_EQ(BarcodeState(), 2);
    }
}

TEST_F(HoneywellFirmware, NeedsRoom) {
    char buffer[18] = "untouched";
    unsigned int size = 17;
    EXPECT_FAILURE(QLBCR_GetDeviceFirmwareVersion(buffer, &size), QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(size, 17U);
    size = 18;
    EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(buffer, &size));
    EXPECT_STREQ(buffer, "N6603 CE000064AAA");
    EXPECT_EQ(size, 18U);
}

using HoneywellAbout = EnabledHoneywell;

TEST_F(HoneywellAbout, TellsItsRecord) {
    unsigned int type = 77;
    EXPECT_SUCCESS(QLBCR_GetDeviceType(&type));
    EXPECT_EQ(type, 1U);
    char name[32] = "";
    unsigned int size = sizeof name;
    EXPECT_SUCCESS(QLBCR_GetDeviceName(name, &size));
    EXPECT_STREQ(name, "Honeywell MiniDB");
    EXPECT_EQ(size, 17U);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

using HoneywellSession = EnabledHoneywell;

TEST_F(HoneywellSession, IsStartedOnceAndStoppedEachTime) {
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
    EXPECT_EQ(Engine().Use()->reading, 1U);
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_SUCCESS(QLBCR_StopScanning());
    EXPECT_SUCCESS(QLBCR_StopScanning());
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"StopReadingSession 0 0", "StopReadingSession 0 0"}));
    EXPECT_EQ(Engine().Use()->reading, 0U);
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
}

TEST_F(HoneywellSession, ThatIsRefusedIsNotStarted) {
    for (const std::uint16_t status : kStatuses) {
        Engine().Refuse(HoneywellFunction::kStartReadingSession, status);
        EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INTERNAL_ERROR, "Unable turn on barcode decoding.") << status;
        EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
}

TEST_F(HoneywellSession, CanBeStartedAgainAfterARefusedStop) {
    for (const std::uint16_t status : kStatuses) {
        EXPECT_SUCCESS(QLBCR_StartScanning());
        Engine().Refuse(HoneywellFunction::kStopReadingSession, status);
        EXPECT_FAILURE(QLBCR_StopScanning(), QLERR_INTERNAL_ERROR, "Unable turn off barcode decoding.") << status;
        EXPECT_EQ(Engine().TakeTexts(), (Texts{"StartReadingSession 0 1", "StopReadingSession 0 0"}));
    }
}

TEST_F(HoneywellSession, EndsWithTheConnection) {
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"StartReadingSession 0 1", "Disconnect 0"}));
    EXPECT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    // The callback is still set.
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
}

TEST_F(HoneywellSession, NeedsACallback) {
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INVALID_STATE, "CallBack is not set.");
    EXPECT_FAILURE(QLBCR_StopScanning(), QLERR_INVALID_STATE, "CallBack is not set.");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

}  // namespace
}  // namespace quarlin::test
