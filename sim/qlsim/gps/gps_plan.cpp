// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_plan.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "gps/gps_behaviour.h"
#include "gps/gps_command.h"

namespace quarlin::sim {
namespace {

constexpr double kKmh = 3.6;  // kilometres per hour in one metre per second
constexpr double kLongest = 1e6;

constexpr std::array<std::pair<std::string_view, Sentence>, 5> kSentences = {{{"GGA", Sentence::kGga},
                                                                              {"GSA", Sentence::kGsa},
                                                                              {"GSV", Sentence::kGsv},
                                                                              {"RMC", Sentence::kRmc},
                                                                              {"VTG", Sentence::kVtg}}};

bool IsPosition(std::pair<double, double> degrees) {
    return std::abs(degrees.first) <= 89 && std::abs(degrees.second) <= 180;
}

void ReadSentences(TableReader& table, SentenceSettings& settings) {
    settings.talker = table.Text("talker", settings.talker);
    if (settings.talker != "GN" && settings.talker != "GP") {
        table.Complain("talker", "\"talker\" has to be \"GN\" or \"GP\"");
    }
    settings.glonass = table.Flag("glonass", true);
    settings.gsvEvery = static_cast<std::uint32_t>(table.Integer("gsv_every", 1, 1, 1000));
    if (!table.Has("sentences")) {
        table.Texts("sentences", {});
        return;
    }
    settings.order.clear();
    for (const std::string& name : table.Texts("sentences", {})) {
        const auto known =
            std::find_if(kSentences.begin(), kSentences.end(), [&](const auto& s) { return s.first == name; });
        if (known == kSentences.end()) {
            table.Complain("sentences", "there is no sentence \"" + name + "\"; there are GGA, GSA, GSV, RMC and VTG");
        } else {
            settings.order.push_back(known->second);
        }
    }
}

void ReadTrack(TableReader& table, TrackSettings& track) {
    if (const auto start = table.Pair("start")) {
        track.start = {start->first, start->second};
        if (!IsPosition(*start)) {
            table.Complain("start", "\"start\" has to be a latitude from -89 to 89 and a longitude from -180 to 180");
        }
    }
    track.altitude = table.Number("altitude", track.altitude, -400, 9000);
    track.speed = table.Number("speed_kmh", 0.0, 0, 1000) / kKmh;
    track.course = table.Number("course", 0.0, 0, 360);
    for (const auto& point : table.Pairs("waypoints")) {
        track.waypoints.push_back({point.first, point.second});
        if (!IsPosition(point)) {
            table.Complain("waypoints",
                           "each waypoint has to be a latitude from -89 to 89 and a longitude from -180 to 180");
        }
    }
    track.loop = table.Flag("loop", true);
    double last = 0;
    for (TableReader& turn : table.Tables("turn", "a turn")) {
        Turn read;
        read.at = turn.Number("at", {}, 0, kLongest);
        if (turn.Has("course")) {
            read.course = turn.Number("course", {}, 0, 360);
        }
        if (turn.Has("speed_kmh")) {
            read.speed = turn.Number("speed_kmh", {}, 0, 1000) / kKmh;
        }
        if (read.at < last) {
            turn.Complain("at", "turns have to be in the order of their times");
        }
        last = std::max(last, read.at);
        if (turn.Has("course") || turn.Has("speed_kmh")) {
            turn.RefuseTheRest();
        } else {
            turn.Complain("at", "a turn needs \"course\", \"speed_kmh\" or both");
        }
        track.turns.push_back(read);
    }
    if (!track.waypoints.empty()) {
        for (const std::string other : {"start", "course", "turn"}) {
            if (table.Has(other)) {
                table.Complain(other, "a track with \"waypoints\" takes no \"" + other + "\"");
            }
        }
        if (track.speed <= 0) {
            table.Complain("speed_kmh", "a track with waypoints needs a \"speed_kmh\" above 0");
        }
    }
    table.RefuseTheRest();
}

bool IsPortName(const std::string& name) {
    return name.size() >= 4 && name.size() <= 6 && name.starts_with("COM") && name[3] != '0' &&
           std::all_of(name.begin() + 3, name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

class GpsPlan final : public DevicePlan {
  public:
    explicit GpsPlan(GpsSettings settings) : settings_(std::move(settings)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        if (settings_.fullSpeed) {
            surroundings.pace = Pace(Pace::Clock::now(), 0);
        }
        auto behaviour = std::make_unique<GpsBehaviour>(settings_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { ParseGpsCommand(words); }
    std::string Summary() const override {
        return "writes NMEA to " + settings_.port + (settings_.receiver.glonass ? ", GPS and GLONASS" : ", GPS");
    }
    std::vector<std::string> Usage() const override { return GpsCommandUsage(); }

  private:
    GpsSettings settings_;
};

}  // namespace

GpsSettings ReadGpsSettings(TableReader& table) {
    GpsSettings settings;
    settings.port = table.Text("port");
    if (table.Has("port") && !IsPortName(settings.port)) {
        table.Complain("port", "\"port\" has to be a port's name such as \"COM8\"");
    }
    settings.baud = static_cast<std::uint32_t>(table.Integer("baud", 9600, 300, 921600));
    settings.rate = table.Number("rate", 1.0, 0, 20);
    if (settings.rate <= 0) {
        settings.rate = 1;
        settings.fullSpeed = true;
    }
    settings.plugged = table.Flag("plugged", true);
    ReadSentences(table, settings.sentences);

    ReceiverSettings& receiver = settings.receiver;
    receiver.glonass = settings.sentences.glonass;
    receiver.coldStart = table.Number("cold_start", receiver.coldStart, 0, kLongest);
    receiver.only2d = table.Number("only_2d", receiver.only2d, 0, kLongest);
    receiver.hotStart = table.Number("hot_start", receiver.hotStart, 0, kLongest);
    receiver.skySpeed = table.Number("sky_speed", receiver.skySpeed, 0, 10000);
    receiver.positionNoise = table.Number("position_noise", receiver.positionNoise, 0, 1000);
    if (table.Has("satellites")) {
        receiver.satelliteLimit = static_cast<std::size_t>(table.Integer("satellites", {}, 0, 100));
    }
    if (auto track = table.Table("track", "a track")) {
        ReadTrack(*track, receiver.track);
    }
    if (auto faults = table.Table("faults", "a table of faults")) {
        settings.faults.noise = faults->Number("noise", 0.0, 0, 1);
        settings.faults.drop = faults->Number("drop", 0.0, 0, 1);
        settings.faults.badChecksum = faults->Number("bad_checksum", 0.0, 0, 1);
        faults->RefuseTheRest();
    }
    return settings;
}

std::unique_ptr<DevicePlan> ReadGpsPlan(TableReader& table) {
    return std::make_unique<GpsPlan>(ReadGpsSettings(table));
}

}  // namespace quarlin::sim
