// SPDX-License-Identifier: Apache-2.0
#include "magnesafe/reader.h"

#include <gtest/gtest.h>

#include <thread>

#include "memory_hid_socket.h"

namespace quarlin::sim::magnesafe {
namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::HidPlace;

// A reader that is plugged in, and a program at the other end.
class PluggedReader {
  public:
    explicit PluggedReader(ReaderSettings settings = {}) : reader(std::move(settings)) {
        socket->Plug(reader.Identity(), reader);
    }
    // A feature command with its padding, and the answer; nothing when a transfer fails.
    std::optional<Bytes> Ask(Bytes command) {
        command.resize(reader.Settings().featureReportLength);
        if (!place.SetFeature(command)) {
            return std::nullopt;
        }
        return place.GetFeature();
    }

    testing::MemoryHidBus bus;
    std::unique_ptr<HidSocket> socket = bus.Maker()();
    HidPlace& place = bus[0];
    MagneSafeReader reader;

  private:
    struct Unplugger {
        HidSocket& socket;
        ~Unplugger() { socket.Unplug(); }
    } unplugger_{*socket};
};

Bytes Padded(Bytes bytes, std::size_t length = 25) {
    bytes.resize(length);
    return bytes;
}

const Bytes kAskSoftware = {0, 0, 1, 0};
const Bytes kAskSerial = {0, 0, 1, 3};
const Bytes kAskLevel = {0, 0x15, 0};

ReaderSettings Settings() {
    ReaderSettings settings;
    settings.serial = "AB12";
    settings.softwareId = "SW\xFF";
    settings.securityLevel = 4;
    return settings;
}

TEST(MagneSafeReader, LooksLikeOneToTheSystem) {
    const HidIdentity identity = MagneSafeReader({}).Identity();
    EXPECT_EQ(0x0801, identity.vendor);
    EXPECT_EQ(0x0011, identity.product);
    const auto lengths = MeasureReportDescriptor(identity.reportDescriptor);
    ASSERT_TRUE(lengths);
    EXPECT_EQ(888u, lengths->input);
    EXPECT_EQ(64u, lengths->output);
    EXPECT_EQ(25u, lengths->feature);
}

TEST(MagneSafeReader, AnswersWithResultLengthAndData) {
    PluggedReader plugged(Settings());
    EXPECT_EQ(Padded({0, 0, 3, 'S', 'W', 0xFF}), plugged.Ask(kAskSoftware));
    EXPECT_EQ(Padded({0, 0, 4, 'A', 'B', '1', '2'}), plugged.Ask(kAskSerial));
    EXPECT_EQ(Padded({0, 0, 1, 4}), plugged.Ask(kAskLevel));
    EXPECT_EQ(Padded({0, 0, 1, 4}), plugged.place.GetFeature()) << "the last answer stays";
    EXPECT_EQ(3u, plugged.reader.Counts().setFeatures);
    EXPECT_EQ(4u, plugged.reader.Counts().getFeatures);
}

TEST(MagneSafeReader, RefusesWhatItDoesNotKnowByItsResultCode) {
    PluggedReader plugged(Settings());
    EXPECT_EQ(Padded({0, 2, 0}), plugged.Ask({0, 0, 1, 0x7F})) << "no such property";
    EXPECT_EQ(Padded({0, 2, 0}), plugged.Ask({0, 0, 2, 3, 0})) << "a wrong length";
    EXPECT_EQ(Padded({0, 2, 0}), plugged.Ask({0, 0x15, 1, 3})) << "nobody sets the level";
    EXPECT_EQ(Padded({0, 7, 0}), plugged.Ask({0, 0x42, 0})) << "no such command";
}

TEST(MagneSafeReader, SaysNothingBeforeItIsAsked) {
    PluggedReader plugged;
    EXPECT_EQ(Padded({}), plugged.place.GetFeature());
}

TEST(MagneSafeReader, TextsAreCutToTheFeatureReport) {
    ReaderSettings settings;
    settings.serial = std::string(300, 'x');
    PluggedReader plugged(settings);
    const auto answer = plugged.Ask(kAskSerial);
    ASSERT_TRUE(answer);
    EXPECT_EQ(25u, answer->size());
    EXPECT_EQ(255, answer->at(2));
    EXPECT_EQ('x', answer->back());

    settings.featureReportLength = 303;
    PluggedReader wide(settings);
    EXPECT_EQ(303u, wide.Ask(kAskSerial)->size());
    EXPECT_EQ('x', wide.Ask(kAskSerial)->back());
}

TEST(MagneSafeReader, AFeatureReportOfFourBytesIsEnough) {
    ReaderSettings settings = Settings();
    settings.featureReportLength = 4;
    PluggedReader plugged(settings);
    EXPECT_EQ((Bytes{0, 0, 4, 'A'}), plugged.Ask(kAskSerial));
    EXPECT_EQ((Bytes{0, 0, 1, 4}), plugged.Ask(kAskLevel));
}

TEST(MagneSafeReader, TheLevelMayChange) {
    PluggedReader plugged;
    EXPECT_EQ(Padded({0, 0, 1, 3}), plugged.Ask(kAskLevel));
    plugged.reader.SetSecurityLevel(2);
    EXPECT_EQ(Padded({0, 0, 1, 2}), plugged.Ask(kAskLevel));
}

TEST(MagneSafeReader, FailsTheRequestThatItIsToldTo) {
    PluggedReader plugged(Settings());
    plugged.reader.AddFault({.request = HidRequest::kSetFeature, .start = {0x00, 0x01, 0x03}});
    EXPECT_TRUE(plugged.Ask(kAskSoftware)) << "another property";
    EXPECT_FALSE(plugged.Ask(kAskSerial));
    EXPECT_TRUE(plugged.Ask(kAskSerial)) << "once";

    plugged.reader.AddFault({.request = HidRequest::kGetFeature, .start = {0x15}});
    EXPECT_TRUE(plugged.Ask(kAskSerial));
    EXPECT_FALSE(plugged.Ask(kAskLevel));
    EXPECT_TRUE(plugged.Ask(kAskLevel));
}

TEST(MagneSafeReader, FailsTheNthRequestAndThenSeveral) {
    PluggedReader plugged;
    plugged.reader.AddFault({.request = {}, .start = {}, .skip = 2, .times = 3});
    std::string outcome;
    for (int i = 0; i < 7; ++i) {
        outcome += plugged.place.SetFeature(Padded(kAskLevel)) ? '+' : '-';
    }
    EXPECT_EQ("++---++", outcome);
    EXPECT_EQ(0u, plugged.reader.WaitingFaults());

    plugged.reader.AddFault({.request = HidRequest::kSetOutput, .start = {}, .skip = 0, .times = 0});
    EXPECT_TRUE(plugged.Ask(kAskLevel));
    for (int i = 0; i < 10; ++i) {
        EXPECT_FALSE(plugged.place.SetOutput(Bytes(64)));
    }
    plugged.reader.ClearFaults();
    EXPECT_TRUE(plugged.place.SetOutput(Bytes(64)));
    EXPECT_EQ(11u, plugged.reader.Counts().outputs);
}

TEST(MagneSafeReader, VanishesInTheMiddleOfATransfer) {
    PluggedReader plugged;
    plugged.reader.AddFault({.answer = HidAnswer::kUnplug, .request = HidRequest::kGetFeature});
    EXPECT_FALSE(plugged.Ask(kAskSerial));
    EXPECT_FALSE(plugged.socket->IsPlugged());
    EXPECT_FALSE(plugged.place.SetFeature(Padded(kAskSerial)));
    plugged.socket->Plug(plugged.reader.Identity(), plugged.reader);
    EXPECT_TRUE(plugged.Ask(kAskSerial));
}

TEST(MagneSafeReader, ResultCodesAndShortAnswers) {
    PluggedReader plugged(Settings());
    plugged.reader.ForceResult(0x05);
    EXPECT_EQ(Padded({0, 5, 1, 4}), plugged.Ask(kAskLevel)) << "the data stay";
    plugged.reader.ForceResult({});
    EXPECT_EQ(Padded({0, 0, 1, 4}), plugged.Ask(kAskLevel));

    plugged.reader.ShortenAnswers(5);
    EXPECT_EQ(Padded({0, 0, 4, 'A', 'B'}), plugged.Ask(kAskSerial));
    plugged.reader.ShortenAnswers(0);
    EXPECT_EQ(Padded({}), plugged.Ask(kAskSerial));
    plugged.reader.ClearFaults();
    EXPECT_EQ(Padded({0, 0, 4, 'A', 'B', '1', '2'}), plugged.Ask(kAskSerial));
}

class InputLength : public ::testing::TestWithParam<std::size_t> {};

TEST_P(InputLength, SwipesFitTheDescriptor) {
    ReaderSettings settings;
    settings.inputReportLength = GetParam();
    PluggedReader plugged(settings);
    Card card;
    card.tracks[0] = "%B1^A^2812?";
    EXPECT_TRUE(plugged.socket->SendInput(plugged.reader.Swipe(card, {.form = Form::kClear})));
    const auto inputs = plugged.place.TakeInputs();
    ASSERT_EQ(1u, inputs.size());
    EXPECT_EQ(GetParam(), inputs[0].size());
    EXPECT_EQ('%', inputs[0].at(8));
}

INSTANTIATE_TEST_SUITE_P(Bytes, InputLength, ::testing::Values(64, 887, 888, 889),
                         [](const auto& tested) { return std::to_string(tested.param); });

TEST(MagneSafeReader, SwipesFromManyThreadsAreAllDifferent) {
    PluggedReader plugged;
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kEach = 250;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (std::size_t i = 0; i < kEach; ++i) {
                plugged.socket->SendInput(plugged.reader.Swipe({}, {}));
                plugged.place.SetFeature(Padded(kAskLevel));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<bool> seen(kThreads * kEach + 1);
    for (const Bytes& report : plugged.place.TakeInputs()) {
        const std::uint32_t number = NumberOf(report);
        ASSERT_LT(number, seen.size());
        EXPECT_FALSE(seen[number]) << number;
        seen[number] = true;
    }
    EXPECT_EQ(1, std::count(seen.begin(), seen.end(), false)) << "number 0 alone is missing";
    EXPECT_EQ(kThreads * kEach, plugged.reader.Counts().swipes);
}

}  // namespace
}  // namespace quarlin::sim::magnesafe
