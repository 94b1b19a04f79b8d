// SPDX-License-Identifier: Apache-2.0
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

// What a prefix makes of a line whose fields would be taken by every known type: which values change, and whether the
// run of GSA sentences goes on.
enum class Effect {
    kNone,
    kGps,
    kGlonass,
    kGga,
    kGsa,
    kRmc
};

struct Prefix {
    const char* text;
    Effect effect;
    bool endsGsaRun;
};

void PrintTo(const Prefix& prefix, std::ostream* stream) {
    *stream << prefix.text;
}

class LineType : public testing::TestWithParam<Prefix> {};

// As GSV: message 1 of 1, 9 in view. As GGA: time 0:00:01. As GSA: satellites. As RMC: speed 5.
constexpr const char* kFields = ",1,1,9,7,5,6,7,8,9,101112,11,12,13,14,15,16,17";

Receiver AfterGsa() {
    Receiver receiver;
    receiver.Take("$GPGSA,A,3,30,,,,,,,,,,,,1,2,3");
    return receiver;
}

TEST_P(LineType, DecidesWhatChanges) {
    Receiver receiver = AfterGsa();
    receiver.Take(std::string(GetParam().text) + kFields);
    const Effect effect = GetParam().effect;
    EXPECT_EQ(receiver.fix.gps.Count() != 0, effect == Effect::kGps);
    EXPECT_EQ(receiver.fix.glonass.Count() != 0, effect == Effect::kGlonass);
    EXPECT_EQ(receiver.Time() != "", effect == Effect::kGga);
    EXPECT_EQ(receiver.fix.pdop != 1, effect == Effect::kGsa);
    EXPECT_EQ(receiver.fix.speed != 0, effect == Effect::kRmc);
}

TEST_P(LineType, DecidesWhetherTheRunOfGsaSentencesEnds) {
    Receiver receiver = AfterGsa();
    receiver.Take(std::string(GetParam().text) + kFields);
    EXPECT_EQ(receiver.fix.lastWasGsa, !GetParam().endsGsaRun);
    receiver.Take("$GNGSA,A,3,31");
    EXPECT_EQ(receiver.fix.used.Contains(30), !GetParam().endsGsaRun);
    EXPECT_TRUE(receiver.fix.used.Contains(31));
}

INSTANTIATE_TEST_SUITE_P(Known, LineType,
                         testing::Values(Prefix{"$GPGSV", Effect::kGps, true}, Prefix{"$GLGSV", Effect::kGlonass, true},
                                         Prefix{"$GPGGA", Effect::kGga, true}, Prefix{"$GNGGA", Effect::kGga, true},
                                         Prefix{"$GPGSA", Effect::kGsa, false}, Prefix{"$GNGSA", Effect::kGsa, false},
                                         Prefix{"$GPVTG", Effect::kNone, false}, Prefix{"$GNVTG", Effect::kNone, false},
                                         Prefix{"$GPRMC", Effect::kRmc, false}, Prefix{"$GNRMC", Effect::kRmc, false}));

// Other talkers, other sentences, other spellings, and lines that are no sentences.
INSTANTIATE_TEST_SUITE_P(Ignored, LineType,
                         testing::Values(Prefix{"$GNGSV", Effect::kNone, false}, Prefix{"$GAGSV", Effect::kNone, false},
                                         Prefix{"$GBGSV", Effect::kNone, false}, Prefix{"$GLGSA", Effect::kNone, false},
                                         Prefix{"$GLGGA", Effect::kNone, false}, Prefix{"$GLRMC", Effect::kNone, false},
                                         Prefix{"$GAGGA", Effect::kNone, false}, Prefix{"$GARMC", Effect::kNone, false},
                                         Prefix{"$GLVTG", Effect::kNone, false}, Prefix{"$BDGSV", Effect::kNone, false},
                                         Prefix{"$GPGLL", Effect::kNone, false}, Prefix{"$GPZDA", Effect::kNone, false},
                                         Prefix{"$GPTXT", Effect::kNone, false}, Prefix{"$GNGNS", Effect::kNone, false},
                                         Prefix{"$gpgga", Effect::kNone, false}, Prefix{"$GPgga", Effect::kNone, false},
                                         Prefix{"GPGGA", Effect::kNone, false}, Prefix{" $GPGGA", Effect::kNone, false},
                                         Prefix{"$$GPGGA", Effect::kNone, false},
                                         Prefix{"!GPGGA", Effect::kNone, false}, Prefix{"#GPGGA", Effect::kNone, false},
                                         Prefix{"$PGRMC", Effect::kNone, false}, Prefix{"$GPGG", Effect::kNone, false},
                                         Prefix{"$GP", Effect::kNone, false}, Prefix{"$G", Effect::kNone, false},
                                         Prefix{"$", Effect::kNone, false}, Prefix{"", Effect::kNone, false},
                                         Prefix{"\n$GPGGA", Effect::kNone, false}));

// The type ends after six characters: what stands between it and the first comma is passed over.
INSTANTIATE_TEST_SUITE_P(
    LongerThanSixCharacters, LineType,
    testing::Values(Prefix{"$GPGSVX", Effect::kGps, true}, Prefix{"$GLGSV*", Effect::kGlonass, true},
                    Prefix{"$GPGGAGGA", Effect::kGga, true}, Prefix{"$GNGSA ", Effect::kGsa, false},
                    Prefix{"$GPRMC$GPGGA", Effect::kRmc, false}, Prefix{"$GPVTG2", Effect::kNone, false}));

TEST(LineType, OfShortLinesReadsNothingBehindTheirEnd) {
    const std::string sentence = "$GPGSV,1,1,1,1,2,3,4";
    for (std::size_t length = 0; length <= sentence.size(); ++length) {
        Receiver receiver;
        // A block of exactly this length: the address sanitizer watches its end.
        const std::vector<char> line(sentence.c_str(), sentence.c_str() + length);
        std::vector<char> terminated = line;
        terminated.push_back('\0');
        terminated.shrink_to_fit();
        EXPECT_EQ(gps::ParseSentence(receiver.fix, terminated.data()), 0);
        // A record of no satellite while the line ends where its number begins, and one when the block is whole.
        const bool isCounted = length == std::strlen("$GPGSV,1,1,1,") || length >= sentence.size() - 1;
        EXPECT_EQ(receiver.fix.gps.Count(), isCounted ? 1 : 0) << length;
    }
}

}  // namespace
}  // namespace quarlin::test
