// SPDX-License-Identifier: Apache-2.0
// Triggers and the firmware's version, frame by frame.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "barcode/intermec_test_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr const char* kNoTriggerMode = "Unable set trigger mode.";
constexpr const char* kNoTriggerOn = "Unable enable hardware trigger.";
constexpr const char* kNoTriggerOff = "Unable disable hardware trigger.";
constexpr const char* kNoTriggerStatus = "Unable get hardware trigger status.";
constexpr const char* kNoFirmware = "Unable get firmware version.";

class IntermecTrigger : public EnabledIntermec {
  protected:
    // 77 when the call has left it alone.
    int HardwareTrigger() {
        unsigned char enabled = 77;
        EXPECT_SUCCESS(QLBCR_IsHardwareTriggerEnabled(&enabled));
        return enabled;
    }
};

TEST_F(IntermecTrigger, HasTwoModes) {
    EXPECT_SUCCESS(QLBCR_SetTriggerMode(0));
    EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupWrite 70 40 00"});
    for (const unsigned int mode : {1U, 2U, 256U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_SUCCESS(QLBCR_SetTriggerMode(mode));
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupWrite 70 40 01"}) << mode;
    }
    Engine().Refuse(IntermecFunction::kSetupWrite);
    EXPECT_FAILURE(QLBCR_SetTriggerMode(0), QLERR_INTERNAL_ERROR, kNoTriggerMode);
    EXPECT_FAILURE(QLBCR_SetTriggerMode(1), QLERR_INTERNAL_ERROR, kNoTriggerMode);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(IntermecTrigger, IsSwitched) {
    EXPECT_SUCCESS(QLBCR_SetHardwareTriggerEnabled(0));
    EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupWrite 70 41 00"});
    EXPECT_EQ(HardwareTrigger(), 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupRead 70 41"});
    for (const unsigned int enable : {1U, 2U, 256U, 0x80000000U}) {
        EXPECT_SUCCESS(QLBCR_SetHardwareTriggerEnabled(enable));
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupWrite 70 41 01"}) << enable;
        EXPECT_EQ(HardwareTrigger(), 1);
        EXPECT_EQ(Engine().TakeTexts(), Texts{"SetupRead 70 41"});
    }
    Engine().Refuse(IntermecFunction::kSetupWrite);
    EXPECT_FAILURE(QLBCR_SetHardwareTriggerEnabled(1), QLERR_INTERNAL_ERROR, kNoTriggerOn);
    EXPECT_FAILURE(QLBCR_SetHardwareTriggerEnabled(0), QLERR_INTERNAL_ERROR, kNoTriggerOff);
    EXPECT_EQ(HardwareTrigger(), 1);
    EXPECT_EQ(BarcodeState(), 2);
}

TEST_F(IntermecTrigger, IsOnForEveryValueButZero) {
    for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{255}}) {
        Engine().Use()->Set(sim::kIntermecHardwareTrigger, value);
        EXPECT_EQ(HardwareTrigger(), value != 0 ? 1 : 0);
    }
}

TEST_F(IntermecTrigger, IsNotKnownWhenTheEngineRefuses) {
    Engine().Refuse(IntermecFunction::kSetupRead, 0x8000);
    unsigned char enabled = 77;
    EXPECT_FAILURE(QLBCR_IsHardwareTriggerEnabled(&enabled), QLERR_INTERNAL_ERROR, kNoTriggerStatus);
    EXPECT_EQ(enabled, 77);
    EXPECT_EQ(BarcodeState(), 2);
}

// An answer without a value: what older answers have left in the buffer does not count.
TEST_F(IntermecTrigger, IsNotKnownFromAnAnswerThatIsTooShort) {
    EXPECT_EQ(HardwareTrigger(), 1);
    for (const std::string_view answer : {""sv, "\x70"sv, "\x70\x41"sv}) {
        Engine().AnswerInstead(IntermecFunction::kSetupRead, answer);
        unsigned char enabled = 77;
        EXPECT_FAILURE(QLBCR_IsHardwareTriggerEnabled(&enabled), QLERR_INTERNAL_ERROR, kNoTriggerStatus);
        EXPECT_EQ(enabled, 77);
    }
    // The bytes are there, but the engine does not say so.
    Engine().AnswerInstead(IntermecFunction::kSetupRead, "\x70\x41\x01"sv, 2);
    unsigned char enabled = 77;
    EXPECT_FAILURE(QLBCR_IsHardwareTriggerEnabled(&enabled), QLERR_INTERNAL_ERROR, kNoTriggerStatus);
    Engine().AnswerHonestly();
    EXPECT_EQ(HardwareTrigger(), 1);
}

TEST_F(IntermecTrigger, IsKnownWhateverLengthTheEngineClaims) {
    for (const std::uint32_t claimed : {3U, 4U, 4096U, 4097U, 0x80000000U, 0xFFFFFFFFU}) {
        Engine().AnswerInstead(IntermecFunction::kSetupRead, "\x70\x41\x00\x01\x01\x01"sv, claimed);
        EXPECT_EQ(HardwareTrigger(), 0) << claimed;
        Engine().AnswerInstead(IntermecFunction::kSetupRead, "\x70\x41\x05"sv, claimed);
        EXPECT_EQ(HardwareTrigger(), 1) << claimed;
    }
}

class IntermecFirmware : public EnabledIntermec {
  protected:
    // What the function gives, and that its size is right; '#' is behind it.
    std::string Version() {
        unsigned int size = 0;
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(nullptr, &size));
        EXPECT_EQ(Engine().TakeTexts(), Texts{"StatusRead 30 C0"});
        std::string buffer(size + 16, '#');
        unsigned int room = size;
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(buffer.data(), &room));
        EXPECT_EQ(Engine().TakeTexts(), Texts{"StatusRead 30 C0"});
        EXPECT_EQ(room, size);
        EXPECT_EQ(buffer.substr(size), std::string(16, '#'));
        EXPECT_EQ(buffer[size - 1], '\0');
        return buffer.substr(0, size - 1);
    }
    void Answer(std::string_view bytes, std::optional<std::uint32_t> claimed = {}) {
        Engine().AnswerInstead(IntermecFunction::kStatusRead, bytes, claimed);
    }
};

TEST_F(IntermecFirmware, IsReadFromTheEngine) {
    EXPECT_EQ(Version(), "EA30 3.21.007");
    Engine().Use()->SetVersion("1", 1);
    // Of the longer text before nothing is left.
    EXPECT_EQ(Version(), "1");
}

TEST_F(IntermecFirmware, IsCopiedIntoAnyRoomThatIsEnough) {
    constexpr unsigned int kSize = 14;
    for (const unsigned int room : {kSize, kSize + 1, 40U}) {
        std::string buffer(40, '#');
        unsigned int size = room;
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(buffer.data(), &size));
        EXPECT_EQ(size, kSize);
        EXPECT_EQ(buffer, "EA30 3.21.007" + std::string(1, '\0') + std::string(40 - kSize, '#'));
    }
    for (const unsigned int room : {0U, 1U, kSize - 1}) {
        std::string buffer(40, '#');
        unsigned int size = room;
        EXPECT_FAILURE(QLBCR_GetDeviceFirmwareVersion(buffer.data(), &size), QLERR_BUFFER_OVERFLOW,
                       "Buffer size too small");
        EXPECT_EQ(size, room);
        EXPECT_EQ(buffer, std::string(40, '#'));
    }
}

TEST_F(IntermecFirmware, IsEmptyWhenTheAnswerHoldsNone) {
    EXPECT_EQ(Version(), "EA30 3.21.007");
    for (const std::string_view answer : {""sv, "\x30"sv, "\x30\xC0"sv, "\x30\xC0\x00"sv, "\x30\xC0\x00\x00"sv}) {
        Answer(answer);
        EXPECT_EQ(Version(), "") << answer.size();
    }
    Answer("\x30\xC0\x00\x00written, not told"sv, 4);
    EXPECT_EQ(Version(), "");
    Answer("\x30\xC0\x00\x00written, not told"sv, 0);
    EXPECT_EQ(Version(), "");
}

TEST_F(IntermecFirmware, GoesByTheAnswersLength) {
    Answer("\x30\xC0\x01\x02half told"sv, 8);
    EXPECT_EQ(Version(), "half");
    Answer("\x30\xC0\x00\x00zero\0inside"sv);
    EXPECT_EQ(Version(), std::string("zero\0inside", 11));
    Answer("\x30\xC0\x00\x00zero behind\0"sv);
    EXPECT_EQ(Version(), std::string("zero behind\0", 12));
    Answer("\x30\xC0\x00\x00\xFF\x80\x01"sv);
    EXPECT_EQ(Version(), "\xFF\x80\x01");
}

TEST_F(IntermecFirmware, IsNeverLongerThanTheBufferForAnswers) {
    constexpr std::size_t kRoom = 4096;
    const std::string full = "\x30\xC0"s + std::string(2, '\0') + std::string(kRoom - 4, 'v');
    for (const std::uint32_t claimed : {4096U, 4097U, 5000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        Answer(full, claimed);
        EXPECT_EQ(Version(), std::string(kRoom - 4, 'v')) << claimed;
    }
}

TEST_F(IntermecFirmware, IsRefused) {
    Engine().Refuse(IntermecFunction::kStatusRead, 0xFFFF);
    std::string buffer(40, '#');
    unsigned int size = 40;
    EXPECT_FAILURE(QLBCR_GetDeviceFirmwareVersion(buffer.data(), &size), QLERR_INTERNAL_ERROR, kNoFirmware);
    EXPECT_EQ(size, 40U);
    EXPECT_EQ(buffer, std::string(40, '#'));
    size = 0;
    EXPECT_FAILURE(QLBCR_GetDeviceFirmwareVersion(nullptr, &size), QLERR_INTERNAL_ERROR, kNoFirmware);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(BarcodeState(), 2);
}

// Engines that succeed and write nothing, not even a length.
std::uint32_t AnswerNothing(const std::uint8_t*, std::uint32_t, std::uint8_t*, std::uint32_t, std::uint32_t*) {
    return 0;
}

std::uint32_t FetchNothing(std::uint8_t*, std::uint32_t, std::uint32_t*) {
    return 0;
}

template <typename Function>
FARPROC AddressOf(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI FindSilentOnes(HMODULE module, const char* name) {
    if (name == "StatusRead"sv) {
        return AddressOf(&AnswerNothing);
    }
    return name == "GetBarcodeDataEx"sv ? AddressOf(&FetchNothing) : GetProcAddress(module, name);
}

class IntermecSilence : public IntermecTest {};

TEST_F(IntermecSilence, IsNotTakenForAnOlderAnswer) {
    {
        const ImportHook hook("kernel32.dll", "GetProcAddress", &FindSilentOnes);
        ASSERT_SUCCESS(QLBCR_Initialize());
    }
    ASSERT_SUCCESS(QLBCR_Enable());
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback()));
    for (int round = 0; round < 2; ++round) {
        // Leaves nine bytes of answer in the buffer.
        ASSERT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_ISBT));
        unsigned int size = 0;
        EXPECT_SUCCESS(QLBCR_GetDeviceFirmwareVersion(nullptr, &size));
        EXPECT_EQ(size, 1U);
        machine_.ScanIntermec("not fetched");
        // Whoever asks the window has been served after it.
        Engine().AwaitFetched();
        SendMessageTimeoutW(FindListenerWindow(), WM_NULL, 0, 0, SMTO_NORMAL, kDeadline, nullptr);
        EXPECT_EQ(log_.Count(), 0U);
    }
}

}  // namespace
}  // namespace quarlin::test
