// SPDX-License-Identifier: Apache-2.0
// Which codes an engine reads after what programs have told it.
#include <cctype>

#include "scanner/symbology.h"
#include "scanner_fixture.h"

namespace quarlin::sim::testing {
namespace {

using namespace std::string_literals;
using scanner::Symbologies;
using scanner::Symbology;

class EverySymbology : public ScannerTest, public ::testing::WithParamInterface<std::size_t> {
  protected:
    static const Symbology& Tested() { return Symbologies()[GetParam()]; }
    std::string Scan() { return Do("scanner scan 12345 \""s + Tested().name + "\""); }
    static std::string Read() { return "ok read 5 bytes, "s + Tested().name + " " + Tested().identifier; }
    static std::string NotRead() { return "error scanner: not read: "s + Tested().name + " is not enabled"; }
};

TEST_P(EverySymbology, IsReadByAnIntermecEngineWhileItsSwitchIsOn) {
    Play(kIntermec + "symbologies = []\n"s);
    Intermec().connected = 42;
    EXPECT_EQ(Scan(), NotRead());
    Intermec().Set(Tested().intermecSwitch, 1);
    EXPECT_EQ(Scan(), Read());
    EXPECT_EQ(BytesOf(Take(Intermec()).value_or(ScanSlot{})),
              "\x01\0\0\0\0\0\0\0\x05\0\0\0\x05"s + "12345" + Tested().identifier + "\0\0"s);
    Intermec().Set(Tested().intermecSwitch, 0);
    EXPECT_EQ(Scan(), NotRead());
    Do("scanner symbology \""s + Tested().name + "\" on");
    EXPECT_EQ(Intermec().Value(Tested().intermecSwitch), 1);
    EXPECT_EQ(Scan(), Read());
}

TEST_P(EverySymbology, IsReadByAHoneywellEngineAfterItsMenuCommand) {
    Play(kHoneywell + "symbologies = []\n"s);
    Honeywell().connected = 42;
    EXPECT_EQ(Scan(), NotRead());
    if (*Tested().honeywellOn != 0) {
        Menu(Tested().honeywellOn, 1);
        EXPECT_EQ(Scan(), NotRead()) << "the engine refused it";
        Menu(Tested().honeywellOn);
        EXPECT_EQ(Scan(), Read());
        EXPECT_EQ(BytesOf(Take(Honeywell()).value_or(ScanSlot{})), "12345\0"s + Tested().identifier + "\0\0"s);
        Menu(Tested().honeywellOff);
        EXPECT_EQ(Scan(), NotRead());
    }
    Do("scanner symbology \""s + Tested().name + "\" on");
    EXPECT_EQ(Scan(), Read());
}

TEST_P(EverySymbology, IsReadFromTheStartWhenTheScenarioSaysSo) {
    Play(kHoneywell + "symbologies = [\""s + Tested().name + "\"]\n");
    Honeywell().connected = 42;
    EXPECT_EQ(Scan(), Read());
    EXPECT_EQ(Json::parse(Do("scanner symbologies").substr(3)), Json::array({Tested().name}));
}

INSTANTIATE_TEST_SUITE_P(Table, EverySymbology, ::testing::Range(std::size_t{0}, scanner::kSymbologies),
                         [](const auto& row) {
                             std::string name = Symbologies()[row.param].name;
                             std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
                             return name;
                         });

using ScannerSymbology = ScannerTest;

TEST_F(ScannerSymbology, AllAreReadWhenTheScenarioSaysAll) {
    Play(kIntermec + "symbologies = [\"all\"]\n"s);
    EXPECT_EQ(Status("scanner")["symbologies"].size(), scanner::kSymbologies);
}

TEST_F(ScannerSymbology, OnePostalCommandEndsThemAll) {
    Play(kHoneywell + "symbologies = [\"QR\"]\n"s);
    for (const char* const command : {"POSTAL1", "POSTAL30", "POSTAL3"}) {
        Menu(command);
    }
    EXPECT_EQ("ok [\"QR\",\"AustralianPost\",\"CanadaPost\",\"JapanPost\"]", Do("scanner symbologies"));
    Menu("POSTAL0");
    EXPECT_EQ("ok [\"QR\"]", Do("scanner symbologies"));
}

TEST_F(ScannerSymbology, CommandsAreObeyedInTheirOrderAndOnce) {
    Play(kHoneywell + "symbologies = []\n"s);
    Menu("QRCENA1");
    Menu("QRCENA0");
    Menu("C39ENA0");
    Menu("C39ENA1");
    EXPECT_EQ("ok [\"Code39\"]", Do("scanner symbologies"));
    Do("scanner symbology Code39 off");
    EXPECT_EQ("ok []", Do("scanner symbologies"));
    Do("scanner clear-log");
    Menu("QRCENA1");
    EXPECT_EQ("ok [\"QR\"]", Do("scanner symbologies"));
}

TEST_F(ScannerSymbology, OfTooManyCommandsTheLastAreObeyed) {
    Play(kHoneywell + "symbologies = [\"QR\"]\n"s);
    Menu("QRCENA0");
    for (std::uint64_t i = 0; i < EngineCallLog::kRoom; ++i) {
        Menu("C39ENA1");
    }
    EXPECT_EQ("ok [\"Code39\",\"QR\"]", Do("scanner symbologies"));
}

}  // namespace
}  // namespace quarlin::sim::testing
