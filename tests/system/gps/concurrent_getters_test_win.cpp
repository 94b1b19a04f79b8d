// SPDX-License-Identifier: Apache-2.0
// Getters on four threads while sentences come at full speed: everything they read is of one sentence.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "gps/gps_session_win.h"
#include "gps/receiver_log.h"
#include "gps/sentences.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

constexpr int kThreads = 4;

// What one thread saw. Its first complaint is kept: assertions are for the test's own thread.
struct Observer {
    std::string complaint;
    size_t reads = 0;
    size_t changes = 0;

    void Complain(const std::string& text) {
        if (complaint.empty()) {
            complaint = text;
        }
    }
};

// Runs a reading function over and over on each of the threads while the sentences go through the port.
std::array<Observer, kThreads> ReadWhileSending(ReadingGps& gps, const std::string& sentences,
                                                const std::function<void(Observer&)>& read) {
    std::array<Observer, kThreads> observers;
    std::atomic<int> running{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (Observer& observer : observers) {
        threads.emplace_back([&] {
            ++running;
            try {
                while (!stop) {
                    read(observer);
                    ++observer.reads;
                }
            } catch (const std::exception& error) {
                observer.Complain(error.what());
            }
        });
    }
    while (running != kThreads) {
        std::this_thread::yield();
    }
    std::string failure;
    try {
        gps.Send(sentences);
        gps.Settle();
    } catch (const std::exception& error) {
        failure = error.what();
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failure, "");
    return observers;
}

void ExpectGoodReads(const std::array<Observer, kThreads>& observers) {
    for (const Observer& observer : observers) {
        EXPECT_EQ(observer.complaint, "");
        EXPECT_GT(observer.reads, 100U);
        EXPECT_GT(observer.changes, 10U);
    }
}

// A stream in which everything of one round carries the round's number.
constexpr int kRounds = 700;

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...) {
    std::array<char, 128> text{};
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text.data(), text.size(), format, values);
    va_end(values);
    return text.data();
}

std::string TimeOf(int round) {
    return Format("%d:%02d:%02d", round / 3600, round / 60 % 60, round % 60);
}

std::string DateOf(int round) {
    return Format(" %02d/%02d/20%02d", round % 28 + 1, round / 28 % 12 + 1, round / (28 * 12) % 100);
}

std::string Satellites(const char* talker, int round) {
    std::string text = Format("%sGSV,1,1,04", talker);
    for (int i = 1; i <= 4; ++i) {
        text += Format(",%d,%d,%d,%d", i, round, round + 1, round + 2);
    }
    return Sentence(text);
}

std::string Round(int round) {
    return Sentence(Format("GPGGA,%02d%02d%02d,%02d%02d.00,N,%03d%02d.00,W,1,8,1.0,%d.0,M,,M,,", round / 3600,
                           round / 60 % 60, round % 60, round / 60, round % 60, round / 60, round % 60, round)) +
           Satellites("GP", round) + Satellites("GL", round) +
           Sentence(Format("GPRMC,,A,,,,,%d,%d,%02d%02d%02d", round, round, round % 28 + 1, round / 28 % 12 + 1,
                           round / (28 * 12) % 100));
}

std::string AllRounds() {
    std::string sentences;
    for (int round = 1; round <= kRounds; ++round) {
        sentences += Round(round);
    }
    return sentences;
}

void ReadCoordinates(Observer& observer) {
    thread_local double last = 0;
    double latitude = 0;
    double longitude = 0;
    double altitude = 0;
    if (QLGPS_GetCoordinates(&latitude, &longitude, &altitude) != QLERR_OK) {
        observer.Complain("QLGPS_GetCoordinates failed");
    }
    const double degrees = altitude / 60;
    if (std::abs(latitude - degrees) > 1e-9 || longitude != -latitude || altitude < last) {
        observer.Complain(Format("torn: %.9f %.9f %.9f after %.1f", latitude, longitude, altitude, last));
    }
    observer.changes += altitude != last ? 1 : 0;
    last = altitude;
}

TEST(GpsConcurrentGetters, SeeEachPositionAsAWhole) {
    ReadingGps gps;
    const auto observers = ReadWhileSending(gps, AllRounds(), ReadCoordinates);
    ExpectGoodReads(observers);
    EXPECT_EQ(ReadValues().altitude, kRounds);
}

// Four satellites that all carry one round's number; the round.
int RoundOf(const std::vector<GpsGlonassSatellite>& satellites, size_t first, Observer& observer) {
    const int round = satellites[first].Elevation;
    for (size_t i = 0; i < 4; ++i) {
        const GpsGlonassSatellite& satellite = satellites[first + i];
        if (!Same(satellite, {static_cast<int>(i) + 1, round, round + 1, round + 2, 0})) {
            observer.Complain("torn: " + Text(satellites));
        }
    }
    return round;
}

void ReadSatelliteTables(Observer& observer) {
    thread_local int last = 0;
    const std::vector<GpsGlonassSatellite> satellites = ReadSatellites();
    if (satellites.empty() && last == 0) {
        return;
    }
    if (satellites.size() == 4 && last <= 1) {
        last = RoundOf(satellites, 0, observer);
        return;
    }
    if (satellites.size() != 8) {
        observer.Complain(std::to_string(satellites.size()) + " satellites");
        return;
    }
    const int gps = RoundOf(satellites, 0, observer);
    const int glonass = RoundOf(satellites, 4, observer);
    if ((glonass != gps && glonass != gps - 1) || gps < last) {
        observer.Complain("tables of different rounds: " + Text(satellites));
    }
    observer.changes += gps != last ? 1 : 0;
    last = gps;
}

TEST(GpsConcurrentGetters, SeeEachSatelliteTableAsAWhole) {
    ReadingGps gps;
    const auto observers = ReadWhileSending(gps, AllRounds(), ReadSatelliteTables);
    ExpectGoodReads(observers);
    Observer last;
    EXPECT_EQ(RoundOf(ReadSatellites(), 0, last), kRounds);
}

// Time stamps of the stream: a round's time with its own date or, until its RMC has come, the date before.
class TimeStamps {
  public:
    TimeStamps() {
        stamps_.insert("");
        stamps_.insert(TimeOf(1));
        for (int round = 1; round <= kRounds; ++round) {
            stamps_.insert(TimeOf(round) + DateOf(round));
            stamps_.insert(TimeOf(round + 1) + DateOf(round));
        }
    }
    bool Contain(const std::string& stamp) const { return stamps_.count(stamp) == 1; }

  private:
    std::set<std::string> stamps_;
};

TEST(GpsConcurrentGetters, SeeTimeStampsOfTheStream) {
    const TimeStamps stamps;
    const auto read = [&stamps](Observer& observer) {
        thread_local std::string last;
        std::array<char, 80> stamp{};
        if (QLGPS_GetTimeStamp(stamp.data()) != QLERR_OK) {
            observer.Complain("QLGPS_GetTimeStamp failed");
        }
        if (!stamps.Contain(stamp.data())) {
            observer.Complain(std::string("not of the stream: ") + stamp.data());
        }
        observer.changes += stamp.data() != last ? 1 : 0;
        last = stamp.data();
    };
    ReadingGps gps;
    ExpectGoodReads(ReadWhileSending(gps, AllRounds(), read));
    EXPECT_EQ(ReadValues().timeStamp, TimeOf(kRounds) + DateOf(kRounds));
}

// All getters at once, each thread with its own errors, which no other thread's calls disturb.
TEST(GpsConcurrentGetters, KeepTheirFailuresApart) {
    const auto read = [](Observer& observer) {
        thread_local int turn = 0;
        thread_local double lastSpeed = 0;
        const GpsValues values = ReadValues();
        if (values.speed != std::floor(values.speed) || values.inView > 8) {
            observer.Complain("values that nobody sent");
        }
        std::array<char, 128> text{};
        QLerr expected = QLERR_OK;
        if (++turn % 2 == 0) {
            expected = QLGPS_GetSpeed(nullptr);
        }
        const QLerr code = QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
        if (code != expected || text.data() != std::string(turn % 2 == 0 ? "pointer arg cannot be NULL" : "")) {
            observer.Complain(std::string("another thread's error: ") + text.data());
        }
        observer.changes += values.speed != lastSpeed ? 1 : 0;
        lastSpeed = values.speed;
    };
    ReadingGps gps;
    ExpectGoodReads(ReadWhileSending(gps, AllRounds(), read));
}

// A real receiver's log: every position read is one that the log holds.
TEST(GpsConcurrentGetters, SeeOnlyPositionsOfAReceiversLog) {
    const std::string log = ReadReceiverLog("quectel-l76k-nmea.nmea");
    if (log.empty()) {
        GTEST_SKIP() << kNoReceiverLogs;
    }
    const std::set<std::string> positions = PositionsOf(log);
    ASSERT_GT(positions.size(), 20U);
    const auto read = [&positions](Observer& observer) {
        thread_local std::string last;
        double latitude = 0;
        double longitude = 0;
        double altitude = 0;
        if (QLGPS_GetCoordinates(&latitude, &longitude, &altitude) != QLERR_OK) {
            observer.Complain("QLGPS_GetCoordinates failed");
        }
        const std::string position = PositionText(latitude, longitude, altitude);
        if (positions.count(position) == 0 && position != PositionText(0, 0, 0)) {
            observer.Complain("not of the log: " + position);
        }
        observer.changes += position != last ? 1 : 0;
        last = position;
    };
    ReadingGps gps;
    ExpectGoodReads(ReadWhileSending(gps, log, read));
}

// What the getters of single values may give while a log is sent.
class ValuesOfALog {
  public:
    explicit ValuesOfALog(const std::string& log)
        : speeds_(NumbersOf(log, "RMC", 7)),
          bearings_(NumbersOf(log, "RMC", 8)),
          pdops_(NumbersOf(log, "GSA", 15)),
          hdops_(NumbersOf(log, "GSA", 16)),
          vdops_(NumbersOf(log, "GSA", 17)),
          qualities_(NumbersOf(log, "GGA", 6)),
          timeStamps_(TimeStampsOf(log)) {}

    // The first value that the log does not hold; empty when it holds them all.
    std::string Stranger(const GpsValues& values) const {
        const std::array<Check, 7> checks{{{"speed", NumberText(values.speed), speeds_},
                                           {"bearing", NumberText(values.bearing), bearings_},
                                           {"PDOP", NumberText(values.pdop), pdops_},
                                           {"HDOP", NumberText(values.hdop), hdops_},
                                           {"VDOP", NumberText(values.vdop), vdops_},
                                           {"quality", NumberText(values.quality), qualities_},
                                           {"time stamp", values.timeStamp, timeStamps_}}};
        for (const Check& check : checks) {
            if (check.held.count(check.value) == 0) {
                return check.name + (" " + check.value);
            }
        }
        return {};
    }
    size_t TimeStamps() const { return timeStamps_.size(); }

  private:
    struct Check {
        const char* name;
        std::string value;
        const std::set<std::string>& held;
    };

    std::set<std::string> speeds_;
    std::set<std::string> bearings_;
    std::set<std::string> pdops_;
    std::set<std::string> hdops_;
    std::set<std::string> vdops_;
    std::set<std::string> qualities_;
    std::set<std::string> timeStamps_;
};

TEST(GpsConcurrentGetters, SeeOnlyValuesOfAReceiversLog) {
    const std::string log = ReadReceiverLog("quectel-l76k-nmea.nmea");
    if (log.empty()) {
        GTEST_SKIP() << kNoReceiverLogs;
    }
    const ValuesOfALog held(log);
    ASSERT_GT(held.TimeStamps(), 20U);
    const auto read = [&held](Observer& observer) {
        thread_local std::string last;
        const GpsValues values = ReadValues();
        const std::string stranger = held.Stranger(values);
        if (!stranger.empty()) {
            observer.Complain("not of the log: " + stranger);
        }
        observer.changes += values.timeStamp != last ? 1 : 0;
        last = values.timeStamp;
    };
    ReadingGps gps;
    ExpectGoodReads(ReadWhileSending(gps, log, read));
}

}  // namespace
}  // namespace quarlin::test
