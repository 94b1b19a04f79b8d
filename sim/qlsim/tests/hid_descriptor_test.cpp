// SPDX-License-Identifier: Apache-2.0
#include "hid/report_descriptor.h"

#include <gtest/gtest.h>

#include "memory_hid_socket.h"

namespace quarlin::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A boot keyboard as the HID standard prints it: bits, padding, two pages.
const Bytes kKeyboard = {0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0x05, 0x07, 0x19, 0xE0, 0x29, 0xE7, 0x15, 0x00, 0x25, 0x01,
                         0x75, 0x01, 0x95, 0x08, 0x81, 0x02, 0x95, 0x01, 0x75, 0x08, 0x81, 0x01, 0x95, 0x05, 0x75, 0x01,
                         0x05, 0x08, 0x19, 0x01, 0x29, 0x05, 0x91, 0x02, 0x95, 0x01, 0x75, 0x03, 0x91, 0x01, 0x95, 0x06,
                         0x75, 0x08, 0x15, 0x00, 0x25, 0x65, 0x05, 0x07, 0x19, 0x00, 0x29, 0x65, 0x81, 0x00, 0xC0};

TEST(ReportDescriptor, IsByteForByteWhatAVendorWouldWrite) {
    const Bytes expected = {0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08,
                            0x09, 0x20, 0x96, 0x77, 0x03, 0x81, 0x02, 0x09, 0x21, 0x95, 0x18, 0xB1, 0x02, 0xC0};
    EXPECT_EQ(expected, VendorReportDescriptor({{HidReportKind::kInput, 0, 887}, {HidReportKind::kFeature, 0, 24}}));
}

TEST(ReportDescriptor, LengthsCountTheIdByteAndOfSeveralReportsTheLongest) {
    const auto lengths = MeasureReportDescriptor(VendorReportDescriptor(
        {{HidReportKind::kInput, 1, 7}, {HidReportKind::kInput, 2, 300}, {HidReportKind::kOutput, 3, 64}}));
    ASSERT_TRUE(lengths);
    EXPECT_EQ(301u, lengths->input);
    EXPECT_EQ(65u, lengths->output);
    EXPECT_EQ(0u, lengths->feature);
}

TEST(ReportDescriptor, BitsAndPaddingAreMeasured) {
    const auto lengths = MeasureReportDescriptor(kKeyboard);
    ASSERT_TRUE(lengths);
    EXPECT_EQ(9u, lengths->input);
    EXPECT_EQ(2u, lengths->output);
    EXPECT_EQ(0u, lengths->feature);
}

TEST(ReportDescriptor, WhatIsBrokenHasNoLengths) {
    const Bytes good = VendorReportDescriptor({{HidReportKind::kInput, 0, 887}});
    for (std::size_t kept = 0; kept < good.size(); ++kept) {
        EXPECT_FALSE(MeasureReportDescriptor(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(kept))))
            << kept;
    }
    EXPECT_FALSE(MeasureReportDescriptor(Bytes{0xC0})) << "an end without a collection";
    EXPECT_FALSE(MeasureReportDescriptor(Bytes{0xA1, 0x02, 0xC0})) << "no application";
    EXPECT_FALSE(MeasureReportDescriptor(Bytes{0xA1, 0x01, 0xB4, 0xC0})) << "a pop without a push";
    EXPECT_FALSE(MeasureReportDescriptor(Bytes{0xA1, 0x01, 0x85, 0x00, 0xC0})) << "a report ID of 0";
}

TEST(ReportDescriptor, PushedValuesComeBack) {
    const auto lengths = MeasureReportDescriptor(
        Bytes{0xA1, 0x01, 0x75, 0x08, 0x95, 0x04, 0xA4, 0x95, 0x10, 0xB1, 0x02, 0xB4, 0x81, 0x02, 0xC0});
    ASSERT_TRUE(lengths);
    EXPECT_EQ(5u, lengths->input);
    EXPECT_EQ(17u, lengths->feature);
}

class EchoFunction final : public HidFunction {
  public:
    HidAnswer SetFeature(std::span<const std::uint8_t> report) override {
        last.assign(report.begin(), report.end());
        return answer;
    }
    HidAnswer GetFeature(std::span<std::uint8_t> report) override {
        std::copy(last.begin(), last.end(), report.begin());
        return answer;
    }
    HidAnswer SetOutput(std::span<const std::uint8_t>) override { return answer; }

    Bytes last;
    HidAnswer answer = HidAnswer::kDone;
};

HidIdentity Echo() {
    HidIdentity identity;
    identity.reportDescriptor = VendorReportDescriptor(
        {{HidReportKind::kInput, 0, 4}, {HidReportKind::kOutput, 0, 2}, {HidReportKind::kFeature, 0, 3}});
    return identity;
}

TEST(MemoryHidSocket, CarriesWhatAProgramAndADeviceExchange) {
    testing::MemoryHidBus bus;
    const auto socket = bus.Maker()();
    testing::HidPlace& place = bus[0];
    EchoFunction echo;
    EXPECT_FALSE(place.SetFeature({0, 1, 2, 3})) << "nothing is plugged in";
    EXPECT_FALSE(socket->SendInput(Bytes(5)));
    socket->Plug(Echo(), echo);
    EXPECT_TRUE(place.SetFeature({0, 1, 2, 3}));
    EXPECT_EQ((Bytes{0, 1, 2, 3}), place.GetFeature());
    EXPECT_TRUE(place.SetOutput({0, 1, 2}));
    EXPECT_THROW(place.SetOutput({0, 1}), std::logic_error);
    EXPECT_TRUE(socket->SendInput(Bytes{0, 1, 2, 3, 4}));
    EXPECT_EQ((std::vector<Bytes>{{0, 1, 2, 3, 4}}), place.TakeInputs());
}

TEST(MemoryHidSocket, ADeviceThatVanishesInATransferIsGoneUntilItIsPluggedInAgain) {
    testing::MemoryHidBus bus;
    const auto socket = bus.Maker()();
    EchoFunction echo;
    socket->Plug(Echo(), echo);
    echo.answer = HidAnswer::kRefuse;
    EXPECT_FALSE(bus[0].SetOutput({0, 1, 2}));
    EXPECT_TRUE(socket->IsPlugged());
    echo.answer = HidAnswer::kUnplug;
    EXPECT_FALSE(bus[0].SetOutput({0, 1, 2}));
    EXPECT_FALSE(socket->IsPlugged());
    EXPECT_EQ(1, bus[0].unplugged);
    socket->Plug(Echo(), echo);
    EXPECT_TRUE(socket->IsPlugged());
    EXPECT_EQ(2, bus[0].plugged);
}

}  // namespace
}  // namespace quarlin::sim
