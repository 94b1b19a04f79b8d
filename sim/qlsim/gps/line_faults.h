// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "core/random.h"

namespace quarlin::sim {

// Probabilities, 0 to 1.
struct FaultRates {
    double noise = 0;        // per byte: it has a flipped bit, or a stray byte comes before it
    double drop = 0;         // per byte: it is missing
    double badChecksum = 0;  // per sentence: its checksum is wrong
};

// The bad cable between receiver and port.
class LineFaults {
  public:
    LineFaults(FaultRates rates, std::uint64_t seed) : rates_(rates), random_(DeriveSeed(seed, "faults")) {}

    FaultRates& Rates() { return rates_; }
    const FaultRates& Rates() const { return rates_; }

    // The bytes that arrive when a framed sentence is sent; the line end is added here.
    std::string Send(std::string sentence);

  private:
    FaultRates rates_;
    Random random_;
};

}  // namespace quarlin::sim
