// SPDX-License-Identifier: Apache-2.0
#include "gps/receiver_log.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace quarlin::test {
namespace {

std::vector<std::string> Fields(const std::string& sentence) {
    std::vector<std::string> fields(1);
    for (const char character : sentence.substr(0, sentence.find('*'))) {
        if (character == ',') {
            fields.emplace_back();
        } else {
            fields.back() += character;
        }
    }
    return fields;
}

bool IsKind(const std::vector<std::string>& fields, const std::string& kind) {
    return fields[0] == "$GP" + kind || fields[0] == "$GN" + kind;
}

// The sentences of some kinds and of the talkers that count for them, in their order.
std::vector<std::vector<std::string>> Sentences(const std::string& log, const std::vector<std::string>& kinds) {
    std::vector<std::vector<std::string>> sentences;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        line.erase(line.find_last_not_of('\r') + 1);
        std::vector<std::string> fields = Fields(line);
        if (std::any_of(kinds.begin(), kinds.end(), [&](const std::string& kind) { return IsKind(fields, kind); })) {
            sentences.push_back(std::move(fields));
        }
    }
    return sentences;
}

// "4404.13387" is 44 degrees and 4.13387 minutes.
double Degrees(const std::string& field, const std::string& hemisphere) {
    const size_t minutes = field.find('.') - 2;
    const double degrees = std::atof(field.substr(0, minutes).c_str()) + std::atof(field.substr(minutes).c_str()) / 60;
    return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

}  // namespace

std::string ReadReceiverLog(const std::string& name) {
#ifdef QUARLIN_NMEA_DIR
    const std::string path = std::string(QUARLIN_NMEA_DIR) + "/logs/" + name;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), {}};
#else
    static_cast<void>(name);
    return {};
#endif
}

std::vector<std::string> LastSentence(const std::string& log, const std::string& kind) {
    std::vector<std::vector<std::string>> sentences = Sentences(log, {kind});
    return sentences.empty() ? std::vector<std::string>() : std::move(sentences.back());
}

std::string UpToCompleteSatellites(const std::string& log) {
    size_t end = 0;
    size_t start = 0;
    while (start < log.size()) {
        const size_t next = log.find('\n', start) + 1;
        if (next == 0) {
            break;
        }
        const std::vector<std::string> fields = Fields(log.substr(start, next - start));
        if ((fields[0] == "$GPGSV" || fields[0] == "$GLGSV") && fields.size() > 2 && fields[1] == fields[2]) {
            end = next;
        }
        start = next;
    }
    return log.substr(0, end);
}

std::string PositionText(double latitude, double longitude, double altitude) {
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%.7f %.7f %.2f", latitude, longitude, altitude);
    return text.data();
}

std::set<std::string> PositionsOf(const std::string& log) {
    std::set<std::string> positions;
    for (const std::vector<std::string>& gga : Sentences(log, {"GGA"})) {
        if (gga.size() > 9 && !gga[2].empty() && !gga[9].empty()) {
            positions.insert(PositionText(Degrees(gga[2], gga[3]), Degrees(gga[4], gga[5]), std::atof(gga[9].c_str())));
        }
    }
    return positions;
}

std::string NumberText(double number) {
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%.6f", number);
    return text.data();
}

std::set<std::string> NumbersOf(const std::string& log, const std::string& kind, size_t field) {
    std::set<std::string> numbers{NumberText(0)};
    for (const std::vector<std::string>& sentence : Sentences(log, {kind})) {
        if (sentence.size() > field) {
            numbers.insert(NumberText(std::atof(sentence[field].c_str())));
        }
    }
    return numbers;
}

std::set<std::string> TimeStampsOf(const std::string& log) {
    std::set<std::string> stamps{""};
    std::string time;
    std::string date;
    for (const std::vector<std::string>& sentence : Sentences(log, {"GGA", "RMC"})) {
        if (IsKind(sentence, "GGA") && sentence.size() > 1 && sentence[1].size() >= 6) {
            const std::string& digits = sentence[1];
            time = std::to_string(std::atoi(digits.substr(0, 2).c_str()));
            time.append(":").append(digits, 2, 2).append(":").append(digits, 4, 2);
        }
        if (IsKind(sentence, "RMC") && sentence.size() > 9 && sentence[9].size() == 6) {
            const std::string& digits = sentence[9];
            date.assign(" ").append(digits, 0, 2).append("/").append(digits, 2, 2).append("/20").append(digits, 4, 2);
        }
        stamps.insert(time + date);
    }
    return stamps;
}

}  // namespace quarlin::test
