// SPDX-License-Identifier: Apache-2.0
#include "core/random.h"

#include <cmath>
#include <numbers>

namespace quarlin::sim {
namespace {

std::uint64_t SplitMix(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15u;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return mixed ^ (mixed >> 31);
}

std::uint64_t RotateLeft(std::uint64_t value, unsigned count) {
    return (value << count) | (value >> (64 - count));
}

}  // namespace

std::uint64_t DeriveSeed(std::uint64_t seed, std::string_view label) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : label) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    }
    std::uint64_t state = seed ^ hash;
    return SplitMix(state);
}

Random::Random(std::uint64_t seed) {
    for (std::uint64_t& word : state_) {
        word = SplitMix(seed);
    }
}

std::uint64_t Random::Next() {
    const std::uint64_t result = RotateLeft(state_[1] * 5, 7) * 9;
    const std::uint64_t shifted = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = RotateLeft(state_[3], 45);
    return result;
}

double Random::Unit() {
    return static_cast<double>(Next() >> 11) * 0x1p-53;
}

std::uint32_t Random::Below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(((Next() >> 32) * limit) >> 32);
}

double Random::Normal() {
    const double radius = std::sqrt(-2.0 * std::log(1.0 - Unit()));
    return radius * std::cos(2.0 * std::numbers::pi * Unit());
}

double Wander::Step(double seconds, Random& random) {
    const double keep = std::exp(-seconds / memory_);
    value_ = keep * value_ + sigma_ * std::sqrt(1.0 - keep * keep) * random.Normal();
    return value_;
}

}  // namespace quarlin::sim
