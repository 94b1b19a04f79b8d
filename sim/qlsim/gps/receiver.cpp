// SPDX-License-Identifier: Apache-2.0
#include "gps/receiver.h"

#include <algorithm>
#include <string>

namespace quarlin::sim {
namespace {

constexpr double kFadeMemory = 12;      // seconds: the time in which a car passes a few houses
constexpr double kFadeSigma = 2.0;      // dB at the zenith, more near the horizon
constexpr double kWeakest = 14;         // dB-Hz below which a satellite cannot be tracked
constexpr double kUsable = 20;          // dB-Hz below which it does not take part in the fix
constexpr double kUseMask = 7;          // degrees of elevation, likewise
constexpr double kPositionMemory = 25;  // seconds
constexpr std::size_t kUsedPerSystem = 12;
constexpr std::size_t kEnoughFor2d = 3;
constexpr std::size_t kEnoughFor3d = 4;
constexpr double kHopelessDilution = 50;  // a receiver gives no position from such a geometry

// The satellites of a 2-D fix: the lowest ones are the ones that tell where one is in the plane, and they have to stand
// in different directions.
std::vector<ReceivedSatellite*> SpreadOut(const std::vector<ReceivedSatellite*>& usable) {
    std::vector<ReceivedSatellite*> chosen{usable.back()};
    while (chosen.size() < kEnoughFor2d) {
        ReceivedSatellite* best = nullptr;
        double bestGap = -1;
        for (ReceivedSatellite* const satellite : usable) {
            double gap = 360;
            for (const ReceivedSatellite* const other : chosen) {
                gap = std::min(gap, std::abs(CourseDifference(satellite->sky.azimuth, other->sky.azimuth)));
            }
            if (gap > bestGap && std::find(chosen.begin(), chosen.end(), satellite) == chosen.end()) {
                best = satellite;
                bestGap = gap;
            }
        }
        chosen.push_back(best);
    }
    return chosen;
}

}  // namespace

Receiver::Receiver(ReceiverSettings settings, std::uint64_t seed)
    : settings_(std::move(settings)),
      seed_(seed),
      random_(DeriveSeed(seed, "signals")),
      sky_(seed, settings_.glonass),
      track_(settings_.track),
      north_(settings_.positionNoise, kPositionMemory),
      east_(settings_.positionNoise, kPositionMemory),
      up_(settings_.positionNoise, kPositionMemory),
      searching_(settings_.coldStart),
      firstOnly2d_(settings_.only2d) {
}

Epoch Receiver::Measure(double time) {
    const double elapsed = std::max(time - lastTime_, 0.0);
    lastTime_ = std::max(time, lastTime_);
    const Motion motion = track_.At(time);

    Epoch epoch;
    // A receiver learns the time from the first satellites that it finds, well before its first fix.
    clockSet_ = clockSet_ || time - poweredAt_ >= searching_ / 2;
    if (clockSet_) {
        epoch.utc = settings_.startUtc + std::llround(time * 1000);
    }
    epoch.satellites = Receive(motion.position, time, elapsed);
    ChooseUsed(epoch, time);

    const double north = north_.Step(elapsed, random_);
    const double east = east_.Step(elapsed, random_);
    const double up = up_.Step(elapsed, random_);
    if (epoch.fix != Fix::kNone) {
        const double spread = epoch.dilution.horizontal;
        epoch.position = Offset(motion.position, north * spread, east * spread);
        epoch.altitude = motion.altitude + (epoch.fix == Fix::k3d ? up * epoch.dilution.vertical : 0);
        epoch.speed = motion.speed;
        epoch.course = motion.course;
    }
    return epoch;
}

// The orbits are known from before: that is a hot start.
void Receiver::PowerUpAgain(double time) {
    poweredAt_ = time;
    searching_ = settings_.hotStart;
    firstOnly2d_ = 0;
}

std::vector<ReceivedSatellite> Receiver::Receive(GeoPoint observer, double time, double elapsed) {
    std::vector<ReceivedSatellite> received;
    for (const SkyPosition& satellite : sky_.Above(observer, time * settings_.skySpeed)) {
        received.push_back({satellite, Signal(satellite, time, elapsed), false});
    }
    if (settings_.satelliteLimit && received.size() > *settings_.satelliteLimit) {
        received.resize(*settings_.satelliteLimit);
    }
    return received;
}

std::optional<int> Receiver::Signal(const SkyPosition& satellite, double time, double elapsed) {
    const auto [entry, isNew] =
        fades_.try_emplace({satellite.system, satellite.number}, Wander(kFadeSigma, kFadeMemory));
    const double height = std::sin(satellite.elevation * kDegrees);
    const double fade = entry->second.Step(isNew ? kFadeMemory : elapsed, random_);
    const double level = 18 + 29 * std::pow(height, 0.6) + fade * (2.0 - height) + 0.6 * random_.Normal();
    if (level < kWeakest || !Tracks(satellite, time)) {
        return std::nullopt;
    }
    return static_cast<int>(std::lround(std::min(level, 56.0)));
}

// While it searches, a receiver finds one satellite after the other, each at a moment of its own.
bool Receiver::Tracks(const SkyPosition& satellite, double time) const {
    const std::string name = (satellite.system == SatelliteSystem::kGps ? "find G" : "find R");
    const double moment = Random(DeriveSeed(seed_, name + std::to_string(satellite.number))).Unit();
    return time - poweredAt_ >= 0.9 * moment * searching_;
}

void Receiver::ChooseUsed(Epoch& epoch, double time) const {
    const double sinceFix = time - poweredAt_ - searching_;
    if (fixDenied_ || sinceFix < 0) {
        return;
    }
    std::vector<ReceivedSatellite*> usable;
    std::map<SatelliteSystem, std::size_t> perSystem;
    for (ReceivedSatellite& satellite : epoch.satellites) {
        if (satellite.snr && *satellite.snr >= kUsable && satellite.sky.elevation >= kUseMask &&
            perSystem[satellite.sky.system]++ < kUsedPerSystem) {
            usable.push_back(&satellite);
        }
    }
    const bool flat = sinceFix < firstOnly2d_ || usable.size() < kEnoughFor3d;
    if (usable.size() < kEnoughFor2d) {
        return;
    }
    if (flat) {
        usable = SpreadOut(usable);
    }
    std::vector<SkyPosition> geometry;
    for (const ReceivedSatellite* const satellite : usable) {
        geometry.push_back(satellite->sky);
    }
    epoch.dilution = DilutionOf(geometry, flat);
    if (epoch.dilution.horizontal > kHopelessDilution) {
        return;
    }
    epoch.fix = flat ? Fix::k2d : Fix::k3d;
    for (ReceivedSatellite* const satellite : usable) {
        satellite->used = true;
    }
}

}  // namespace quarlin::sim
