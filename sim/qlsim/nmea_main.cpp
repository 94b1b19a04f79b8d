// SPDX-License-Identifier: Apache-2.0
// qlsim-nmea: prints the sentences that the simulated receiver would send, for benchmarks and fuzzers that want a
// corpus.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "gps/nmea.h"
#include "gps/receiver.h"

namespace {

using namespace quarlin::sim;

// A drive through a town, with everything on: both systems, a short cold start, a sky that turns quickly enough for
// satellites to rise and set.
ReceiverSettings Drive(double coldStart) {
    ReceiverSettings settings;
    settings.startUtc = 1778574600000;  // 2026-05-12T08:30:00Z
    settings.coldStart = coldStart;
    settings.skySpeed = 20;
    settings.track.speed = 13.9;
    settings.track.waypoints = {{48.2030, 16.3610}, {48.2103, 16.3630}, {48.2152, 16.3660}, {48.2170, 16.3715},
                                {48.2118, 16.3830}, {48.2045, 16.3790}, {48.2000, 16.3700}};
    return settings;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Prints the NMEA sentences of the simulated receiver, with CR LF line ends.", "qlsim-nmea");
    std::uint64_t seed = 1;
    double seconds = 60;
    double rate = 1;
    double coldStart = 4;
    std::string talker = "GN";
    app.add_option("--seed", seed, "seed of the run")->capture_default_str();
    app.add_option("--seconds", seconds, "length of the run")->check(CLI::Range(0.0, 1e6))->capture_default_str();
    app.add_option("--rate", rate, "epochs per second")->check(CLI::Range(0.1, 20.0))->capture_default_str();
    app.add_option("--cold-start", coldStart, "seconds to the first fix")->capture_default_str();
    app.add_option("--talker", talker, "GN or GP")->check(CLI::IsMember({"GN", "GP"}))->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    SentenceSettings sentences;
    sentences.talker = talker;
    Receiver receiver(Drive(coldStart), seed);
    SentenceWriter writer(sentences);
    for (std::int64_t epoch = 0; static_cast<double>(epoch) / rate < seconds; ++epoch) {
        for (const std::string& sentence : writer.Write(receiver.Measure(static_cast<double>(epoch) / rate))) {
            std::fwrite(sentence.data(), 1, sentence.size(), stdout);
            std::fwrite("\r\n", 1, 2, stdout);
        }
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
