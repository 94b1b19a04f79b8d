// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/gps.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quarlin::reference {

// The rules of the receiver's sentences once more, written for clarity alone and sharing nothing with the product: it
// copies lines, looks every field up from the start of its line and converts numbers with the C library. What the
// product makes of a line must be the same in every value.

// One system's satellites in view.
struct System {
    std::int32_t capacity;
    std::int32_t count = 0;
    std::int32_t lastMessage = 0;
    bool cycleDone = false;
    std::vector<GpsGlonassSatellite> working;
    std::int32_t publishedCount = 0;
    std::vector<GpsGlonassSatellite> published;

    explicit System(std::int32_t size)
        : capacity(size),
          working(static_cast<std::size_t>(size), GpsGlonassSatellite{}),
          published(static_cast<std::size_t>(size), GpsGlonassSatellite{}) {}
};

class Receiver {
  public:
    std::int32_t inViewTotal = 0;
    System gps{50};
    System glonass{100};
    std::int32_t publishedTotal = 0;
    std::int32_t glonassCountdown = 0;
    bool lastWasGsa = false;
    std::vector<std::int32_t> used;
    double latitude = 0;
    double longitude = 0;
    double altitude = 0;
    double hdop = 0;
    double vdop = 0;
    double pdop = 0;
    double speed = 0;
    double bearing = 0;
    std::string timeText;
    std::string dateText;
    std::int32_t fixQuality = 0;
    std::int32_t fixType = 0;
    std::int32_t fixSelection = 0;

    void Take(const std::string& line);

    std::string TimeStamp() const;
    std::int32_t MappedFixQuality() const;
    // What a caller with enough room gets.
    std::vector<GpsGlonassSatellite> Satellites() const;

  private:
    void TakeGga(const std::string& line);
    void TakeGsa(const std::string& line);
    void TakeRmc(const std::string& line);
    void TakeGsv(const std::string& line, System& system);
    void Store(System& system, const GpsGlonassSatellite& satellite);
};

// The line reader once more: the lines that a stream of bytes holds. The last one, without its line feed, is left out.
std::vector<std::string> SplitLines(const std::vector<unsigned char>& bytes);

}  // namespace quarlin::reference
