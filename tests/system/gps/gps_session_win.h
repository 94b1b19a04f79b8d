// SPDX-License-Identifier: Apache-2.0
// The GPS of the library under test, read through its exported functions.
#pragma once

#include <quarlin/gps.h>

#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "gps/serial_pair_win.h"
#include "support/owners_win.h"

namespace quarlin::test {

// Everything that the interface tells about the receiver, read one by one.
struct GpsValues {
    double latitude = 0;
    double longitude = 0;
    double altitude = 0;
    double speed = 0;
    double bearing = 0;
    double hdop = 0;
    double pdop = 0;
    double vdop = 0;
    int quality = 0;
    int status = 0;
    int used = 0;
    int inView = 0;
    FixMode mode = FIX_MODE_UNKNOWN;
    FixSelection selection = FIX_SELECTION_MANUAL;
    std::string timeStamp;

    bool operator==(const GpsValues&) const = default;
};
std::ostream& operator<<(std::ostream& out, const GpsValues& values);

// Throw std::runtime_error when a getter fails.
GpsValues ReadValues();
double ReadSpeed();
bool IsEnabled();
// The published satellites. Their number is not told: those are taken that were written to.
std::vector<GpsGlonassSatellite> ReadSatellites();

bool Same(const GpsGlonassSatellite& one, const GpsGlonassSatellite& other);
std::string Text(const std::vector<GpsGlonassSatellite>& satellites);

// The GPS initialised on a port; uninitialised at the end of the scope.
class GpsSession {
  public:
    explicit GpsSession(int port);
    GpsSession(const GpsSession&) = delete;
    GpsSession& operator=(const GpsSession&) = delete;
    ~GpsSession();
};

// A receiver that sends empty lines without end. Its thread is under way when the constructor returns, because Wine may
// take a file that is opened while a port is being closed for the port.
class Chatter {
  public:
    explicit Chatter(SerialPair& cable);
    Chatter(const Chatter&) = delete;
    Chatter& operator=(const Chatter&) = delete;
    ~Chatter();

  private:
    UniqueHandle started_;
    UniqueHandle stop_;
    std::thread thread_;
};

// Disables the GPS while the receiver sends empty lines. Disabling waits for the read that is under way, which takes
// 1.5 seconds on a silent line.
QLerr DisableWithoutSilence(SerialPair& cable);

// A cable, and the GPS reading from it; disabled and uninitialised at the end of the scope.
class ReadingGps {
  public:
    explicit ReadingGps(SerialPair::Cable cable = SerialPair::Cable::kNullModem);
    ReadingGps(const ReadingGps&) = delete;
    ReadingGps& operator=(const ReadingGps&) = delete;
    ~ReadingGps();

    SerialPair& Cable() { return cable_; }
    void Send(std::string_view bytes) { cable_.Send(bytes); }

    // Returns when the library has taken in all that was sent before. Uses up the list of satellites used for the fix,
    // and nothing else.
    void Settle();
    // The same by the speed over ground, for tests of that list. The speed must be another one than before.
    void SettleBySpeed(double speed);

  private:
    SerialPair cable_;
    GpsSession session_;
};

}  // namespace quarlin::test
