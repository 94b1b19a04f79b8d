// SPDX-License-Identifier: Apache-2.0
// Each symbology, enabled and disabled, by its value and by its name: the menu commands that reach the engine.
#include <cctype>
#include <string>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "barcode_support/symbologies.h"

namespace quarlin::test {
namespace {

constexpr const char* kRefused = "Symbology could not enabled/disabled";
constexpr const char* kNotSupported = "Not Supported.";
constexpr const char* kMenu = "SendMenuCommand ";
constexpr unsigned int kIssn = 12;
constexpr unsigned int kBpo = 39;

Texts MenuCalls(const std::vector<std::string>& commands) {
    Texts texts;
    for (const std::string& command : commands) {
        texts.push_back(kMenu + command);
    }
    return texts;
}

std::string NameOfSymbology(const ::testing::TestParamInfo<Symbology>& info) {
    std::string name = std::to_string(info.param.value) + "_";
    for (const wchar_t* letter = info.param.name; *letter != L'\0'; ++letter) {
        name += std::isalnum(static_cast<int>(*letter)) != 0 ? static_cast<char>(*letter) : '_';
    }
    return name;
}

class HoneywellSymbologyTable : public EnabledHoneywell, public ::testing::WithParamInterface<Symbology> {
  protected:
    // Which has been switched; the engine got these commands, whole and without a terminator.
    void ExpectSent(QLerr result, const std::vector<std::string>& commands) {
        if (commands.empty()) {
            EXPECT_FAILURE(result, QLERR_OP_UNSUPPORTED, kNotSupported);
        } else {
            EXPECT_SUCCESS(result);
        }
        const std::vector<EngineCall> calls = Engine().TakeCalls();
        ASSERT_EQ(calls.size(), commands.size());
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(calls[i].function, static_cast<std::uint32_t>(HoneywellFunction::kSendMenuCommand));
            EXPECT_EQ(RequestOf(calls[i]), commands[i]);
            EXPECT_EQ(calls[i].requestLength, commands[i].size());
        }
    }
};

TEST_P(HoneywellSymbologyTable, IsSwitchedByValueAndByName) {
    const Symbology& symbology = GetParam();
    const auto value = static_cast<unsigned int>(symbology.value);
    ExpectSent(QLBCR_EnableSymbologies(1, value), symbology.honeywellEnable);
    ExpectSent(QLBCR_EnableSymbology(1, symbology.name), symbology.honeywellEnable);
    ExpectSent(QLBCR_EnableSymbologies(0, value), symbology.honeywellDisable);
    ExpectSent(QLBCR_EnableSymbology(0, symbology.name), symbology.honeywellDisable);
}

INSTANTIATE_TEST_SUITE_P(Table, HoneywellSymbologyTable, ::testing::ValuesIn(kSymbologies), NameOfSymbology);

constexpr std::uint16_t kStatuses[] = {1, 0x0100, 0x8000, 0xFFFF};

using HoneywellSymbology = EnabledHoneywell;

TEST(HoneywellSymbologies, AreAllInTheTable) {
    ASSERT_EQ(kSymbologies.size(), 47U);
    for (std::size_t i = 0; i < kSymbologies.size(); ++i) {
        EXPECT_EQ(kSymbologies[i].value, static_cast<std::int32_t>(i));
    }
}

TEST_F(HoneywellSymbology, IsSentWithRoomForAnAnswerAndATimeout) {
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR));
    const std::vector<EngineCall> calls = Engine().TakeCalls();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].arguments[0], 4096);
    EXPECT_NE(calls[0].arguments[1], 0);
    EXPECT_NE(calls[0].arguments[2], 0);
    EXPECT_EQ(calls[0].arguments[3], 1500);
}

TEST_F(HoneywellSymbology, EnablesForAnyFlagOtherThanZero) {
    for (const int value : {1, 2, 128, 255}) {
        const auto flag = static_cast<unsigned char>(value);
        EXPECT_SUCCESS(QLBCR_EnableSymbologies(flag, BARCODE_SYMBOLOGY_AZTEC));
        EXPECT_SUCCESS(QLBCR_EnableSymbology(flag, L"Aztec"));
        EXPECT_EQ(Engine().TakeTexts(), MenuCalls({"AZTENA1", "AZTENA1"})) << value;
    }
}

TEST_F(HoneywellSymbology, IsNotKnownByAnotherValue) {
    for (const unsigned int value : {47U, 48U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        for (const bool enable : {false, true}) {
            EXPECT_FAILURE(QLBCR_EnableSymbologies(enable, value), QLERR_INTERNAL_ERROR, kRefused) << value;
        }
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(HoneywellSymbology, IsKnownByItsNameToTheLetter) {
    for (const wchar_t* const name : {L"", L"qr", L"QR ", L" QR", L"MicroPDF417", L"EAN.UCC Composite AB", L"Code 39",
                                      L"codabar", L"UPC_E2", L"QRQ"}) {
        EXPECT_FAILURE(QLBCR_EnableSymbology(1, name), QLERR_INVALID_ARGUMENT, "The argument of symbology is invalid");
    }
    EXPECT_FAILURE(QLBCR_EnableSymbology(1, nullptr), QLERR_INVALID_ARGUMENT, "Symbology cannot be NULL");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(HoneywellSymbology, FailsWhenTheEngineRefuses) {
    for (const std::uint16_t status : kStatuses) {
        Engine().Refuse(HoneywellFunction::kSendMenuCommand, status, 2);
        EXPECT_FAILURE(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR), QLERR_INTERNAL_ERROR, kRefused) << status;
        EXPECT_FAILURE(QLBCR_EnableSymbology(0, L"QR"), QLERR_INTERNAL_ERROR, kRefused) << status;
        EXPECT_SUCCESS(QLBCR_EnableSymbology(0, L"QR"));
        EXPECT_EQ(Engine().TakeTexts(), MenuCalls({"QRCENA1", "QRCENA0", "QRCENA0"}));
    }
}

TEST_F(HoneywellSymbology, IgnoresTheAnswerWhateverItsLength) {
    for (const std::uint32_t claimed : {0U, 5U, 4096U, 4097U, 0xFFFFFFFFU}) {
        Engine().AnswerInstead(HoneywellFunction::kSendMenuCommand, std::string(4096, '\x15'), claimed, 1);
        EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR)) << claimed;
    }
}

// A pair looks at the status that was stored before it.
class HoneywellPair : public EnabledHoneywell, public ::testing::WithParamInterface<unsigned int> {
  protected:
    static Texts Both() {
        return GetParam() == kIssn ? MenuCalls({"E13ISR1", "E13ISS1"}) : MenuCalls({"POSTAL7", "RMMISC1"});
    }
    static Texts First() { return {Both()[0]}; }
    static QLerr EnablePair() { return QLBCR_EnableSymbologies(1, GetParam()); }
    // Leaves a failing status behind, by a command.
    void FailBefore() {
        Engine().Refuse(HoneywellFunction::kSendMenuCommand, 9, 1);
        EXPECT_FAILURE(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR), QLERR_INTERNAL_ERROR, kRefused);
        Engine().TakeCalls();
    }
    // The next `skip` commands are obeyed, then one is refused.
    void RefuseAfter(std::uint32_t skip) { Engine().Refuse(HoneywellFunction::kSendMenuCommand, 9, 1, skip); }
};

TEST_P(HoneywellPair, IsSentWhollyAfterASuccess) {
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
}

TEST_P(HoneywellPair, StopsAfterTheFirstCommandWhenTheCallBeforeHadFailed) {
    FailBefore();
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), First());
    // Its own status is the stored one now.
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
}

TEST_P(HoneywellPair, GoesOnWhenItsFirstCommandFails) {
    RefuseAfter(0);
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
    // What the last command returned is what is stored.
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
}

TEST_P(HoneywellPair, FailsWhenItsSecondCommandFails) {
    RefuseAfter(1);
    EXPECT_FAILURE(EnablePair(), QLERR_INTERNAL_ERROR, kRefused);
    EXPECT_EQ(Engine().TakeTexts(), Both());
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), First());
}

TEST_P(HoneywellPair, FailsWithTheFirstCommandWhenTheCallBeforeHadFailedToo) {
    FailBefore();
    RefuseAfter(0);
    EXPECT_FAILURE(EnablePair(), QLERR_INTERNAL_ERROR, kRefused);
    EXPECT_EQ(Engine().TakeTexts(), First());
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), First());
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
}

TEST_P(HoneywellPair, IsStoppedByAFailureOfAnyKind) {
    const auto stop = [this](HoneywellFunction function, QLerr (*call)()) {
        Engine().Refuse(function, 0x8000, 1);
        EXPECT_EQ(call(), QLERR_INTERNAL_ERROR);
        FetchLastError();
        Engine().TakeCalls();
        EXPECT_SUCCESS(EnablePair());
        EXPECT_EQ(Engine().TakeTexts(), First()) << sim::kHoneywellFunctionNames[static_cast<std::size_t>(function)];
    };
    stop(HoneywellFunction::kSendMenuCommand, [] { return QLBCR_SetTriggerMode(1); });
    stop(HoneywellFunction::kStartReadingSession, [] { return QLBCR_StartScanning(); });
    stop(HoneywellFunction::kStopReadingSession, [] { return QLBCR_StopScanning(); });
    stop(HoneywellFunction::kGetFirmwareVersion, [] {
        unsigned int size = 0;
        return QLBCR_GetDeviceFirmwareVersion(nullptr, &size);
    });
    stop(HoneywellFunction::kDisconnect, [] { return QLBCR_Disable(); });
}

TEST_P(HoneywellPair, IsNotStoppedByWhatTheEngineWasNotAsked) {
    EXPECT_FAILURE(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_EAN_128_IRREGULAR), QLERR_OP_UNSUPPORTED,
                   kNotSupported);
    EXPECT_FAILURE(QLBCR_SetHardwareTriggerEnabled(1), QLERR_OP_UNSUPPORTED, kNotSupported);
    EXPECT_FAILURE(QLBCR_EnableSymbologies(1, 47), QLERR_INTERNAL_ERROR, kRefused);
    EXPECT_SUCCESS(EnablePair());
    EXPECT_EQ(Engine().TakeTexts(), Both());
}

std::string NameOfPair(const ::testing::TestParamInfo<unsigned int>& info) {
    return info.param == kIssn ? "EanIssn" : "BpoCode";
}

INSTANTIATE_TEST_SUITE_P(Pairs, HoneywellPair, ::testing::Values(kIssn, kBpo), NameOfPair);

}  // namespace
}  // namespace quarlin::test
