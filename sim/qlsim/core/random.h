// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quarlin::sim {

// A seed for one purpose, made of the scenario's seed and a label, so that a new device or a new use of chance leaves
// every other sequence as it was.
std::uint64_t DeriveSeed(std::uint64_t seed, std::string_view label);

// A seeded generator (xoshiro256**). The standard distributions are left alone on purpose: they differ between
// libraries, and a run has to repeat.
class Random {
  public:
    explicit Random(std::uint64_t seed);

    std::uint64_t Next();
    // 0 <= result < 1.
    double Unit();
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    // 0 <= result < limit; limit is not 0.
    std::uint32_t Below(std::uint32_t limit);
    // Mean 0, standard deviation 1.
    double Normal();
    bool Chance(double probability) { return Unit() < probability; }

  private:
    std::array<std::uint64_t, 4> state_;
};

// Noise that wanders: it keeps a memory of `memory` seconds and has the standard deviation `sigma` in the long run.
class Wander {
  public:
    Wander(double sigma, double memory) : sigma_(sigma), memory_(memory) {}
    // Moves on by `seconds` and returns the new value.
    double Step(double seconds, Random& random);
    double Value() const { return value_; }

  private:
    double sigma_;
    double memory_;
    double value_ = 0;
};

}  // namespace quarlin::sim
