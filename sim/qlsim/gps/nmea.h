// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gps/epoch.h"

namespace quarlin::sim {

// "$", the body, "*" and the checksum in two hexadecimal digits; no line end.
std::string Framed(std::string_view body);

enum class Sentence {
    kGga,
    kGsa,
    kGsv,
    kRmc,
    kVtg
};

struct SentenceSettings {
    std::string talker = "GN";  // GN or GP, for every sentence but GSV, which always names its own system
    bool glonass = true;
    std::vector<Sentence> order{Sentence::kGga, Sentence::kGsa, Sentence::kGsv, Sentence::kRmc, Sentence::kVtg};
    std::uint32_t gsvEvery = 1;  // GSV cycles come with every n-th epoch
};

// Turns epochs into sentences (framed, without line ends).
class SentenceWriter {
  public:
    explicit SentenceWriter(SentenceSettings settings) : settings_(std::move(settings)) {}

    std::vector<std::string> Write(const Epoch& epoch);

  private:
    std::string Gga(const Epoch& epoch) const;
    std::string Gsa(const Epoch& epoch, SatelliteSystem system) const;
    std::string Rmc(const Epoch& epoch) const;
    std::string Vtg(const Epoch& epoch) const;

    SentenceSettings settings_;
    std::uint32_t epochs_ = 0;
};

}  // namespace quarlin::sim
