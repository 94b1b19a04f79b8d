// SPDX-License-Identifier: Apache-2.0
// The codes that are the same whatever the symbology.
#include "bcr/setup_frame.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Row {
    const char* name;
    bcr::SetupFrame frame;
    Bytes expected;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

const std::vector<Row> kRows{
    {"DecodingOn", bcr::DecodingFrame(true), {0x20, 0x40, 0x01}},
    {"DecodingOff", bcr::DecodingFrame(false), {0x20, 0x40, 0x00}},
    {"TriggerMode0", bcr::TriggerModeFrame(0), {0x70, 0x40, 0x00}},
    {"TriggerMode1", bcr::TriggerModeFrame(1), {0x70, 0x40, 0x01}},
    {"TriggerMode2", bcr::TriggerModeFrame(2), {0x70, 0x40, 0x01}},
    {"TriggerMode256", bcr::TriggerModeFrame(256), {0x70, 0x40, 0x01}},
    {"TriggerModeHighestBit", bcr::TriggerModeFrame(0x80000000), {0x70, 0x40, 0x01}},
    {"HardwareTriggerOn", bcr::HardwareTriggerFrame(true), {0x70, 0x41, 0x01}},
    {"HardwareTriggerOff", bcr::HardwareTriggerFrame(false), {0x70, 0x41, 0x00}},
    {"HardwareTriggerQuery", bcr::kHardwareTriggerQuery, {0x70, 0x41}},
    {"FirmwareQuery", bcr::kFirmwareQuery, {0x30, 0xC0}},
    {"DataModeQuery", bcr::kDataModeQuery, {0x73, 0x4E}},
    {"DataMode0", bcr::DataModeFrame(0), {0x73, 0x4E, 0x00}},
    {"DataMode1", bcr::DataModeFrame(1), {0x73, 0x4E, 0x01}},
    {"DataMode2", bcr::DataModeFrame(2), {0x73, 0x4E, 0x02}},
    {"LinkOn", bcr::LinkFrame(true), {0x73, 0x40, 0x01}},
    {"LinkOff", bcr::LinkFrame(false), {0x73, 0x40, 0x00}},
    {"PrepareLink", bcr::kPrepareLink, {0x50, 0x40, 0x00}},
    {"ResetLink", bcr::kResetLink, {0x30, 0x02}},
};

class BarcodeSetupFrame : public testing::TestWithParam<Row> {};

TEST_P(BarcodeSetupFrame, HasItsBytes) {
    const auto bytes = GetParam().frame.Bytes();
    EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeSetupFrame, testing::ValuesIn(kRows),
                         [](const auto& test) { return test.param.name; });

// The digit runs against the mode: that is what the engine wants.
TEST(BarcodeTriggerMode, OfAHoneywellEngineIsZeroForAllButZero) {
    EXPECT_STREQ(bcr::TriggerModeCommand(0), "TRGMOD3");
    for (const std::uint32_t mode : {1U, 2U, 3U, 256U, 0x10000U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_STREQ(bcr::TriggerModeCommand(mode), "TRGMOD0") << mode;
    }
}

}  // namespace
}  // namespace quarlin::test
