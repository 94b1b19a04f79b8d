// SPDX-License-Identifier: Apache-2.0
// Each symbology, enabled and disabled by value and by name, as the engine receives it.
#include <cctype>
#include <ostream>
#include <string>

#include "barcode/intermec_test_win.h"
#include "barcode_support/symbologies.h"

namespace quarlin::test {
namespace {

constexpr const char* kRefused = "Symbology could not enabled/disabled";
constexpr const char* kUnknownName = "The argument of symbology is invalid";

std::string NameOfSymbology(const ::testing::TestParamInfo<Symbology>& info) {
    std::string name = std::to_string(info.param.value) + "_";
    for (const wchar_t* letter = info.param.name; *letter != L'\0'; ++letter) {
        name += std::isalnum(static_cast<int>(*letter)) != 0 ? static_cast<char>(*letter) : '_';
    }
    return name;
}

class IntermecSymbology : public EnabledIntermec, public ::testing::WithParamInterface<Symbology> {
  protected:
    static std::string Disabling() { return std::string("SetupWrite ") + GetParam().intermecId + " 00"; }
    static std::string Enabling() {
        // ISBT takes the place of the symbologies that it would be mistaken for.
        constexpr std::int32_t kIsbt = 3;
        return GetParam().value == kIsbt ? "SetupWrite 43 41 01 43 40 00 43 42 00"
                                         : std::string("SetupWrite ") + GetParam().intermecId + " 01";
    }
};

TEST_P(IntermecSymbology, IsSwitchedByValueAndByName) {
    const auto value = static_cast<unsigned int>(GetParam().value);
    for (const std::uint8_t enable : {std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{255}}) {
        EXPECT_SUCCESS(QLBCR_EnableSymbologies(enable, value));
        EXPECT_EQ(Engine().TakeTexts(), Texts{Enabling()}) << int{enable};
        EXPECT_SUCCESS(QLBCR_EnableSymbology(enable, GetParam().name));
        EXPECT_EQ(Engine().TakeTexts(), Texts{Enabling()}) << int{enable};
    }
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(0, value));
    EXPECT_EQ(Engine().TakeTexts(), Texts{Disabling()});
    EXPECT_SUCCESS(QLBCR_EnableSymbology(0, GetParam().name));
    EXPECT_EQ(Engine().TakeTexts(), Texts{Disabling()});
}

TEST_P(IntermecSymbology, IsRefusedByTheEngine) {
    const auto value = static_cast<unsigned int>(GetParam().value);
    // The upper half of the register is dirty; the engine's status is the lower one.
    for (const std::uint16_t status : {std::uint16_t{1}, std::uint16_t{0x8000}, std::uint16_t{0xFFFF}}) {
        Engine().Refuse(IntermecFunction::kSetupWrite, status);
        EXPECT_FAILURE(QLBCR_EnableSymbologies(1, value), QLERR_INTERNAL_ERROR, kRefused);
        EXPECT_FAILURE(QLBCR_EnableSymbology(0, GetParam().name), QLERR_INTERNAL_ERROR, kRefused);
        EXPECT_EQ(Engine().TakeTexts(), (Texts{Enabling(), Disabling()}));
    }
    Engine().Obey();
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, value));
}

INSTANTIATE_TEST_SUITE_P(All, IntermecSymbology, ::testing::ValuesIn(kSymbologies), NameOfSymbology);

TEST_F(EnabledIntermec, KnowsEverySymbologyOnce) {
    ASSERT_EQ(kSymbologies.size(), 47U);
    for (std::size_t i = 0; i < kSymbologies.size(); ++i) {
        EXPECT_EQ(kSymbologies[i].value, static_cast<std::int32_t>(i));
    }
}

TEST_F(EnabledIntermec, DoesNotKnowOtherValues) {
    for (const unsigned int value : {47U, 48U, 255U, 256U, 0x10000U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_FAILURE(QLBCR_EnableSymbologies(1, value), QLERR_INTERNAL_ERROR, kRefused) << value;
        EXPECT_FAILURE(QLBCR_EnableSymbologies(0, value), QLERR_INTERNAL_ERROR, kRefused) << value;
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(EnabledIntermec, DoesNotKnowOtherNames) {
    for (const wchar_t* const name : {L"",
                                      L" ",
                                      L"qr",
                                      L"Qr",
                                      L"QR ",
                                      L" QR",
                                      L"QR2",
                                      L"Q",
                                      L"MicroPDF417",
                                      L"MicroPDF  417",
                                      L"EAN.UCCComposite_AB",
                                      L"EAN.UCC Composite_AB ",
                                      L"EAN_UCC Composite_AB",
                                      L"CODE39",
                                      L"Code 39",
                                      L"codabar",
                                      L"Codabar\n",
                                      L"0",
                                      L"47",
                                      L"Code128\u00e4",
                                      L"\u0443"}) {
        EXPECT_FAILURE(QLBCR_EnableSymbology(1, name), QLERR_INVALID_ARGUMENT, kUnknownName)
            << ::testing::PrintToString(name);
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(EnabledIntermec, KeepsTheSymbologiesThatTheEngineHas) {
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_CODE_128));
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_EAN_128));
    EXPECT_SUCCESS(QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_ISBT));
    EXPECT_EQ(Engine().Use()->Value(0x4341), 1);
    EXPECT_EQ(Engine().Use()->Value(0x4340), 0);
    EXPECT_EQ(Engine().Use()->Value(0x4342), 0);
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Engine().Use()->Value(0x4341), 1);
}

}  // namespace
}  // namespace quarlin::test
