// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "gps/sky.h"

namespace quarlin::sim {

// How much the geometry of the satellites spreads an error of measurement.
struct Dilution {
    double position = kWorst;
    double horizontal = kWorst;
    double vertical = kWorst;

    static constexpr double kWorst = 99.99;
};

// With heightKnown the altitude counts as one more measurement: that is a 2-D fix, for which three satellites do.
Dilution DilutionOf(const std::vector<SkyPosition>& satellites, bool heightKnown);

}  // namespace quarlin::sim
