// SPDX-License-Identifier: Apache-2.0
// Logs of real receivers, against the last values that an independent reader of the same logs gives. That reader is a
// little more forgiving than the parser; where the two differ, the difference is spelled out here.
#include "gps/line_assembler.h"
#include "receiver.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

namespace quarlin::test {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream stream(line.substr(0, line.find('*')));
    for (std::string field; std::getline(stream, field, ',');) {
        fields.push_back(field);
    }
    return fields;
}

// A log as the parser saw it.
struct Replay {
    Receiver receiver;
    std::vector<std::string> lines;
    // Per table, what was published right after the last message of its latest whole cycle.
    std::map<std::string, Satellites> cycles;

    explicit Replay(const std::string& bytes) {
        gps::LineAssembler assembler;
        for (const char byte : bytes + '\n') {
            if (assembler.Take(static_cast<unsigned char>(byte))) {
                lines.emplace_back(assembler.Line());
                receiver.Take(lines.back());
                NoteCycle(lines.back());
            }
        }
    }

    void NoteCycle(const std::string& line) {
        const std::string type = line.substr(0, 6);
        if (type != "$GPGSV" && type != "$GLGSV") {
            return;
        }
        const std::vector<std::string> fields = Fields(line);
        if (fields.size() < 4 || fields[1] != fields[2]) {
            return;
        }
        const Satellites all = receiver.Published();
        const auto gpsCount = static_cast<std::ptrdiff_t>(receiver.fix.gps.PublishedCount());
        cycles[type.substr(1)] = type == "$GPGSV" ? Satellites(all.begin(), all.begin() + gpsCount)
                                                  : Satellites(all.begin() + gpsCount, all.end());
    }

    // Whether a field is empty in the last sentence of a kind that has the field at all.
    bool IsLastEmpty(const std::string& kind, std::size_t number) const {
        for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
            const std::string type = line->substr(0, 6);
            const auto commas = static_cast<std::size_t>(std::count(line->begin(), line->end(), ','));
            if ((type == "$GP" + kind || type == "$GN" + kind) && commas >= number) {
                const std::vector<std::string> fields = Fields(*line);
                return number >= fields.size() || fields[number].empty();
            }
        }
        return false;
    }
};

class ReceiverLogs : public testing::Test {
  protected:
    void SetUp() override {
        const std::string folder = Environment("QUARLIN_NMEA_DIR");
        const std::string expected = Environment("QUARLIN_NMEA_EXPECTED");
        if (folder.empty() || !fs::exists(fs::path(folder) / "logs")) {
            GTEST_SKIP() << "QUARLIN_NMEA_DIR names no folder with logs of real receivers";
        }
        if (expected.empty() || !fs::exists(expected)) {
            GTEST_SKIP() << "QUARLIN_NMEA_EXPECTED names no file of expected values";
        }
        const Json all = Json::parse(ReadAll(expected));
        for (const auto& [path, values] : all.items()) {
            const std::string name = fs::path(path).filename().string();
            expected_.emplace(name, values);
            replays_.emplace(name, ReadAll(fs::path(folder) / "logs" / name));
        }
        ASSERT_FALSE(expected_.empty());
    }

    // value is the expected one; null when the log never gave it, which is 0 here.
    static double Number(const Json& value) { return value.is_null() ? 0 : value.get<double>(); }
    static std::string Text(const Json& value) { return value.is_null() ? "" : value.get<std::string>(); }

    std::map<std::string, Json> expected_;
    std::map<std::string, Replay> replays_;
};

TEST_F(ReceiverLogs, CoverBothHemispheresOfLongitudeAndTheSouth) {
    bool south = false;
    bool west = false;
    bool east = false;
    for (const auto& [name, replay] : replays_) {
        south = south || replay.receiver.fix.latitude < 0;
        west = west || replay.receiver.fix.longitude < 0;
        east = east || replay.receiver.fix.longitude > 0;
    }
    EXPECT_TRUE(south && west && east);
}

TEST_F(ReceiverLogs, EndWithThePositionTimeAndQualityOfTheLastGga) {
    constexpr double kTolerance = 1e-9;
    for (const auto& [name, values] : expected_) {
        SCOPED_TRACE(name);
        const gps::FixState& fix = replays_.at(name).receiver.fix;
        EXPECT_NEAR(fix.latitude, Number(values["latitude"]), kTolerance);
        EXPECT_NEAR(fix.longitude, Number(values["longitude"]), kTolerance);
        EXPECT_EQ(fix.altitude, Number(values["altitude"]));
        EXPECT_EQ(fix.fixQuality, Number(values["quality"]));
        EXPECT_EQ(std::string(fix.timeText.data()), Text(values["time"]));
    }
}

TEST_F(ReceiverLogs, EndWithTheDateOfTheLastRmc) {
    for (const auto& [name, values] : expected_) {
        SCOPED_TRACE(name);
        const std::string date = Text(values["date"]);
        EXPECT_EQ(replays_.at(name).receiver.Date(), date.empty() ? "" : ' ' + date);
        EXPECT_EQ(replays_.at(name).receiver.fix.TimeStamp(), Text(values["time"]) + (date.empty() ? "" : ' ' + date));
    }
}

// The other reader keeps an earlier value where a field is empty; here an empty field reads as 0.
TEST_F(ReceiverLogs, EndWithTheSpeedCourseAndDilutionsLastSentOrZeroWhereTheLastFieldIsEmpty) {
    struct Value {
        const char* key;
        const char* kind;
        std::size_t field;
        double gps::FixState::*member;
    };
    constexpr Value kValues[] = {{"speed_knots", "RMC", 7, &gps::FixState::speed},
                                 {"course", "RMC", 8, &gps::FixState::bearing},
                                 {"pdop", "GSA", 15, &gps::FixState::pdop},
                                 {"hdop", "GSA", 16, &gps::FixState::hdop},
                                 {"vdop", "GSA", 17, &gps::FixState::vdop}};
    int empty = 0;
    int sent = 0;
    for (const auto& [name, values] : expected_) {
        const Replay& replay = replays_.at(name);
        for (const Value& value : kValues) {
            const bool isEmpty = replay.IsLastEmpty(value.kind, value.field);
            EXPECT_EQ(replay.receiver.fix.*value.member, isEmpty ? 0 : Number(values[value.key]))
                << name << ' ' << value.key;
            ++(isEmpty ? empty : sent);
        }
    }
    // The logs have both.
    EXPECT_GT(empty, 0);
    EXPECT_GT(sent, 0);
}

// The other reader leaves out blocks without a number, and takes what follows the last block for one more.
TEST_F(ReceiverLogs, PublishTheSatellitesOfTheLastWholeCycle) {
    int tables = 0;
    for (const auto& [name, values] : expected_) {
        for (const std::string table : {"GPGSV", "GLGSV"}) {
            if (!values["gsv"].contains(table)) {
                continue;
            }
            SCOPED_TRACE(name + ' ' + table);
            const Json& cycle = values["gsv"][table];
            Satellites published = replays_.at(name).cycles.at(table);
            EXPECT_EQ(published.size(), std::stoul(cycle["in_view"].get<std::string>()));
            std::erase_if(published, [](const auto& satellite) { return satellite.PRN == -1; });
            const Json& rows = cycle["prn_elev_azim_snr"];
            ASSERT_GE(rows.size(), published.size());
            for (std::size_t i = 0; i < published.size(); ++i) {
                const auto number = [&](std::size_t column) {
                    return std::atoi(rows[i][column].get<std::string>().c_str());
                };
                const GpsGlonassSatellite expected{number(0), number(1), number(2), number(3), published[i].used};
                EXPECT_EQ(published[i], expected) << i;
            }
            ++tables;
        }
    }
    EXPECT_GE(tables, 7);
}

}  // namespace
}  // namespace quarlin::test
