// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "core/random.h"
#include "gps/epoch.h"
#include "gps/track.h"

namespace quarlin::sim {

struct ReceiverSettings {
    std::int64_t startUtc = 0;   // milliseconds since 1970, the time at second 0
    double coldStart = 10;       // seconds from power-on to the first fix
    double only2d = 2;           // seconds of 2-D fix that follow a cold start
    double hotStart = 1;         // seconds to the fix after the receiver has been plugged in again
    double skySpeed = 1;         // how fast the constellations turn
    double positionNoise = 1.5;  // metres of wander at a dilution of 1
    bool glonass = true;
    std::optional<std::size_t> satelliteLimit;
    TrackSettings track;
};

// The receiver on its vehicle: what it measures at each epoch. Same settings, seed and times give the same epochs.
class Receiver {
  public:
    Receiver(ReceiverSettings settings, std::uint64_t seed);

    // Times in seconds since the simulation's start; they never go back.
    Epoch Measure(double time);

    void PowerUpAgain(double time);
    void LoseFix() { fixDenied_ = true; }
    void RegainFix() { fixDenied_ = false; }
    void LimitSatellites(std::optional<std::size_t> limit) { settings_.satelliteLimit = limit; }

  private:
    std::vector<ReceivedSatellite> Receive(GeoPoint observer, double time, double elapsed);
    std::optional<int> Signal(const SkyPosition& satellite, double time, double elapsed);
    void ChooseUsed(Epoch& epoch, double time) const;
    bool Tracks(const SkyPosition& satellite, double time) const;

    ReceiverSettings settings_;
    std::uint64_t seed_;
    Random random_;
    Sky sky_;
    Track track_;
    std::map<std::pair<SatelliteSystem, int>, Wander> fades_;
    Wander north_;
    Wander east_;
    Wander up_;
    double lastTime_ = 0;
    double poweredAt_ = 0;
    double searching_;       // seconds from poweredAt_ to the fix
    double firstOnly2d_;     // seconds of 2-D fix after that
    bool clockSet_ = false;  // keeps running through a loss of power
    bool fixDenied_ = false;
};

}  // namespace quarlin::sim
