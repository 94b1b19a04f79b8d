// SPDX-License-Identifier: Apache-2.0
#include "core/quarlin_exception.h"
#include "receiver.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

constexpr GpsGlonassSatellite kCanary{-77, -77, -77, -77, -77};

struct Failure {
    QLerr code;
    std::string message;
};

Failure FailureOfCopy(const Receiver& receiver, GpsGlonassSatellite* records, std::int32_t capacity) {
    try {
        receiver.fix.CopySatellites(records, capacity);
    } catch (const QuarlinException& failure) {
        return {failure.code, failure.what()};
    }
    return {QLERR_OK, "no failure"};
}

TEST(CopySatellites, RefusesANullPointerFirst) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 4, 1);
    for (const std::int32_t capacity : {150, 0, -1}) {
        const Failure failure = FailureOfCopy(receiver, nullptr, capacity);
        EXPECT_EQ(failure.code, QLERR_INVALID_ARGUMENT);
        EXPECT_EQ(failure.message, "Buffer pointer is NULL");
    }
}

TEST(CopySatellites, RefusesASmallerCapacityAndCopiesNothing) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 4, 1);
    TakeCycle(receiver, "GL", 3, 65);
    for (const std::int32_t capacity : {6, 1, 0, -1, -2147483647 - 1}) {
        Satellites records(10, kCanary);
        const Failure failure = FailureOfCopy(receiver, records.data(), capacity);
        EXPECT_EQ(failure.code, QLERR_BUFFER_OVERFLOW) << capacity;
        EXPECT_EQ(failure.message, "Buffer size too small") << capacity;
        EXPECT_EQ(records, Satellites(10, kCanary)) << capacity;
    }
}

TEST(CopySatellites, WithTheExactCapacityWritesAllAndNothingBehindThem) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 4, 1);
    TakeCycle(receiver, "GL", 3, 65);
    Satellites records(8, kCanary);
    receiver.fix.CopySatellites(records.data(), 7);
    const int prns[] = {1, 2, 3, 4, 65, 66, 67};
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(records[i], (GpsGlonassSatellite{prns[i], 10, 20, 30, 0}));
    }
    EXPECT_EQ(records[7], kCanary);
}

TEST(CopySatellites, WithCapacityZeroSucceedsWhileNothingIsPublished) {
    Receiver receiver;
    GpsGlonassSatellite record = kCanary;
    EXPECT_EQ(FailureOfCopy(receiver, &record, 0).message, "no failure");
    EXPECT_EQ(record, kCanary);
    EXPECT_EQ(FailureOfCopy(receiver, &record, -1).code, QLERR_BUFFER_OVERFLOW);
}

TEST(CopySatellites, ComparesThePublishedTotalNotTheLiveCount) {
    Receiver receiver;
    TakeCycle(receiver, "GP", 4, 1);
    // Ends within its second block: three in view now, four published.
    receiver.Take("$GPGSV,2,1,8,9,1,1,1,10,1,1,1,11,1,1,1,12");
    EXPECT_EQ(receiver.fix.inViewTotal, 3);
    Satellites records(4, kCanary);
    EXPECT_EQ(FailureOfCopy(receiver, records.data(), 3).code, QLERR_BUFFER_OVERFLOW);
    receiver.fix.CopySatellites(records.data(), 4);
    EXPECT_EQ(records[0].PRN, 1);
}

TEST(SatelliteRecord, IsFiveIntegersInTheOrderOfTheInterface) {
    EXPECT_EQ(sizeof(GpsGlonassSatellite), 20U);
    EXPECT_EQ(offsetof(GpsGlonassSatellite, PRN), 0U);
    EXPECT_EQ(offsetof(GpsGlonassSatellite, Elevation), 4U);
    EXPECT_EQ(offsetof(GpsGlonassSatellite, Azimuth), 8U);
    EXPECT_EQ(offsetof(GpsGlonassSatellite, SNR), 12U);
    EXPECT_EQ(offsetof(GpsGlonassSatellite, used), 16U);
}

TEST(FixState, IsZeroAndEmptyAtFirst) {
    const Receiver receiver;
    EXPECT_EQ(receiver.fix.inViewTotal, 0);
    EXPECT_EQ(receiver.fix.publishedTotal, 0);
    EXPECT_EQ(receiver.fix.glonassCountdown, 0);
    EXPECT_FALSE(receiver.fix.lastWasGsa);
    EXPECT_EQ(receiver.fix.used.Count(), 0);
    for (const double value : {receiver.fix.latitude, receiver.fix.longitude, receiver.fix.altitude, receiver.fix.hdop,
                               receiver.fix.vdop, receiver.fix.pdop, receiver.fix.speed, receiver.fix.bearing}) {
        EXPECT_EQ(value, 0);
    }
    EXPECT_EQ(receiver.fix.TimeStamp(), "");
    EXPECT_EQ(receiver.fix.fixQuality, 0);
    EXPECT_EQ(receiver.fix.fixType, 0);
    EXPECT_EQ(receiver.fix.fixSelection, 0);
    EXPECT_TRUE(receiver.Published().empty());
}

}  // namespace
}  // namespace quarlin::test
