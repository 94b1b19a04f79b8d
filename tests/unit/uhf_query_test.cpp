// SPDX-License-Identifier: Apache-2.0
#include "scripted_reader.h"

#include <gtest/gtest.h>
#include <climits>
#include <map>
#include <set>

namespace quarlin::test {
namespace {

using uhfrfid::QueryParameter;
using uhfrfid::TagReader;

const Outcome kInvalid{QLERR_INVALID_ARGUMENT, "Invalid Argument"};
const Outcome kUnclassified{QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED"};

// The reader's current values: 320 kHz, Miller 2, session 1, Q 7, -70 dBm.
const Bytes kCurrent{0x5A, 15, 0, 0xE1, 12, 0xE2, 2, 0xE3, 1, 0xE4, 0xE5, 0xE6, 7, 0xE7, 0xBA};

struct Row {
    const char* name;
    const QueryParameter* parameter;
    // In the command frame: the set flag, with the value behind it.
    std::size_t flag;
    // In the reply.
    std::size_t place;
    // What kCurrent says.
    int current;
    // All values that are accepted, with what carries them.
    std::map<std::int64_t, std::uint8_t> accepted;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

std::map<std::int64_t, std::uint8_t> Range(int first, int last) {
    std::map<std::int64_t, std::uint8_t> values;
    for (int value = first; value <= last; ++value) {
        values[value] = static_cast<std::uint8_t>(value);
    }
    return values;
}

const std::vector<Row> kRows{
    {"LinkFrequency",
     &uhfrfid::kLinkFrequency,
     2,
     4,
     320,
     {{40, 0}, {160, 6}, {213, 8}, {256, 9}, {320, 12}, {640, 15}}},
    {"Miller", &uhfrfid::kMiller, 4, 6, 2, Range(0, 3)},
    {"Session", &uhfrfid::kSession, 6, 8, 1, Range(0, 3)},
    {"QBegin", &uhfrfid::kQBegin, 10, 12, 7, Range(0, 15)},
    {"Sensitivity", &uhfrfid::kSensitivity, 12, 14, -70, Range(-86, -50)},
};

// Values at which something might be cut off, and all small ones.
std::set<std::int64_t> Candidates(std::int64_t smallest, std::int64_t largest) {
    std::set<std::int64_t> values{smallest, smallest + 1, largest, largest - 1};
    for (std::int64_t low = -700; low <= 700; ++low) {
        for (const std::int64_t high : {0LL, 0x10000LL, 0x7FFF0000LL, 0xFFFF0000LL}) {
            for (const std::int64_t value : {high + low, -high + low}) {
                if (value >= smallest && value <= largest) {
                    values.insert(value);
                }
            }
        }
    }
    return values;
}

class UhfQuery : public testing::TestWithParam<Row> {
  protected:
    // Sets and gets through the type that the parameter has at the border.
    template <typename Value>
    static Outcome Set(ScriptedReader& reader, const QueryParameter& parameter, std::int64_t& value) {
        auto given = static_cast<Value>(value);
        const Outcome outcome = reader.Do([&](TagReader& r) { r.SetQuery(parameter, &given); });
        value = given;
        return outcome;
    }
    template <typename Value>
    static Outcome Get(ScriptedReader& reader, const QueryParameter& parameter, std::int64_t& value) {
        Value got = 123456789;
        const Outcome outcome = reader.Do([&](TagReader& r) { r.GetQuery(parameter, &got); });
        value = got;
        return outcome;
    }

    bool IsSigned() const { return GetParam().parameter == &uhfrfid::kSensitivity; }
    Outcome Set(ScriptedReader& reader, std::int64_t& value) const {
        return IsSigned() ? Set<int>(reader, *GetParam().parameter, value)
                          : Set<unsigned int>(reader, *GetParam().parameter, value);
    }
    Outcome Get(ScriptedReader& reader, std::int64_t& value) const {
        return IsSigned() ? Get<int>(reader, *GetParam().parameter, value)
                          : Get<unsigned int>(reader, *GetParam().parameter, value);
    }
};

TEST_P(UhfQuery, GetterSendsNoSetFlagAndGivesTheReadersValue) {
    ScriptedReader reader(kCurrent);
    std::int64_t value = 0;
    EXPECT_EQ(Get(reader, value), kDone);
    EXPECT_EQ(reader.Frame(), (Bytes{0x59, 14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(value, GetParam().current);
}

TEST_P(UhfQuery, SetterSendsEveryAcceptedValueWithItsFlagAlone) {
    for (const auto& [accepted, carried] : GetParam().accepted) {
        ScriptedReader reader(kCurrent);
        std::int64_t value = accepted;
        EXPECT_EQ(Set(reader, value), kDone) << accepted;
        Bytes expected(14);
        expected[0] = 0x59;
        expected[1] = 14;
        expected[GetParam().flag] = 1;
        expected[GetParam().flag + 1] = carried;
        EXPECT_EQ(reader.Frame(), expected) << accepted;
        EXPECT_EQ(value, GetParam().current) << "the value that the reader reports back";
    }
}

TEST_P(UhfQuery, SetterRefusesEveryOtherValueAndSendsNothing) {
    const auto candidates = IsSigned() ? Candidates(INT_MIN, INT_MAX) : Candidates(0, UINT_MAX);
    int refused = 0;
    for (const std::int64_t candidate : candidates) {
        if (GetParam().accepted.contains(candidate)) {
            continue;
        }
        ScriptedReader reader(kCurrent);
        std::int64_t value = candidate;
        ASSERT_EQ(Set(reader, value), kInvalid) << candidate;
        ASSERT_TRUE(reader.sent.empty()) << candidate;
        ASSERT_EQ(value, candidate);
        ++refused;
    }
    EXPECT_GT(refused, 3000);
}

TEST_P(UhfQuery, ValueIsLeftAloneWhenTheReaderRefuses) {
    ScriptedReader reader(kCurrent);
    reader.answer[2] = 0x0F;
    std::int64_t value = GetParam().accepted.begin()->first;
    const std::int64_t before = value;
    EXPECT_EQ(Set(reader, value), (Outcome{QLERR_UHFRFID_INVALID_PARAMETER2, "QLERR_UHFRFID_INVALID_PARAMETER2"}));
    EXPECT_EQ(value, before);
}

TEST_P(UhfQuery, RefusesAReplyThatEndsBeforeTheValue) {
    for (std::size_t size = 0; size <= kCurrent.size(); ++size) {
        ScriptedReader getter(Bytes(kCurrent.begin(), kCurrent.begin() + static_cast<std::ptrdiff_t>(size)));
        ScriptedReader setter = ScriptedReader(getter.answer);
        std::int64_t got = 0;
        std::int64_t set = GetParam().accepted.begin()->first;
        const std::int64_t before = set;
        if (size > GetParam().place) {
            EXPECT_EQ(Get(getter, got), kDone) << size;
            EXPECT_EQ(Set(setter, set), kDone) << size;
            EXPECT_EQ(got, GetParam().current) << size;
            EXPECT_EQ(set, GetParam().current) << size;
        } else {
            EXPECT_EQ(Get(getter, got), kUnclassified) << size;
            EXPECT_EQ(Set(setter, set), kUnclassified) << size;
            EXPECT_EQ(got, 123456789) << size;
            EXPECT_EQ(set, before) << size;
        }
    }
}

TEST_P(UhfQuery, GivesWhateverTheReaderReports) {
    const std::map<int, int> frequencies{{0, 40}, {8, 213}, {9, 256}, {12, 320}, {15, 640}};
    for (int byte = 0; byte < 256; ++byte) {
        ScriptedReader reader(kCurrent);
        reader.answer[GetParam().place] = static_cast<std::uint8_t>(byte);
        std::int64_t value = 0;
        EXPECT_EQ(Get(reader, value), kDone);
        int expected = byte;
        if (GetParam().parameter == &uhfrfid::kLinkFrequency) {
            const auto known = frequencies.find(byte);
            expected = known == frequencies.end() ? 160 : known->second;
        } else if (IsSigned() && byte >= 128) {
            expected = byte - 256;
        }
        EXPECT_EQ(value, expected) << byte;
    }
}

TEST_P(UhfQuery, NeedsAPlaceForTheValue) {
    ScriptedReader reader(kCurrent);
    const QueryParameter& parameter = *GetParam().parameter;
    const auto nothing = static_cast<unsigned int*>(nullptr);
    const auto signedNothing = static_cast<int*>(nullptr);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.SetQuery(parameter, nothing); }), kInvalid);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.GetQuery(parameter, nothing); }), kInvalid);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.SetQuery(parameter, signedNothing); }), kInvalid);
    EXPECT_EQ(reader.Do([&](TagReader& r) { r.GetQuery(parameter, signedNothing); }), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
}

INSTANTIATE_TEST_SUITE_P(Parameters, UhfQuery, testing::ValuesIn(kRows),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace quarlin::test
