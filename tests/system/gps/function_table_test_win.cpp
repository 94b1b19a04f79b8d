// SPDX-License-Identifier: Apache-2.0
// What every function of the family has in common: the checks, their order and their words, and the cleared error.
#include <quarlin/gps.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <ostream>
#include <string>

#include "gps/gps_session_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

constexpr const char* kNotInitialized = "GPS has not been initialized.";
constexpr int kPort = 3;

// A function's answer, and whether it was touched.
template <typename Value, QLerr (*Function)(Value*)>
QLerr CallGetter(Value untouched, Value expected, bool initialized) {
    Value value = untouched;
    const QLerr result = Function(&value);
    EXPECT_EQ(value, initialized ? expected : untouched);
    return result;
}

template <QLerr (*Function)(double*)>
QLerr CallGetDouble(bool initialized) {
    return CallGetter<double, Function>(-77.5, 0.0, initialized);
}

template <QLerr (*Function)(int*)>
QLerr CallGetInt(bool initialized) {
    return CallGetter<int, Function>(-77, 0, initialized);
}

struct Row {
    const char* name;
    // A correct call. Checks that its results are those of a receiver that has sent nothing, or untouched.
    std::function<QLerr(bool initialized)> call;
    // The same with a null pointer; empty when the function takes none.
    std::function<QLerr()> callWithNull;
    const char* nullText = "";
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

std::string NameOfRow(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

QLerr CallGetCoordinates(bool initialized) {
    double latitude = -77;
    double longitude = -78;
    double altitude = -79;
    const QLerr result = QLGPS_GetCoordinates(&latitude, &longitude, &altitude);
    EXPECT_EQ(latitude, initialized ? 0 : -77);
    EXPECT_EQ(longitude, initialized ? 0 : -78);
    EXPECT_EQ(altitude, initialized ? 0 : -79);
    return result;
}

QLerr CallGetSatellites(bool) {
    std::array<GpsGlonassSatellite, 2> records{};
    records[0].PRN = -77;
    const QLerr result = QLGPS_GetSatellites(records.data(), 2);
    EXPECT_EQ(records[0].PRN, -77);
    return result;
}

QLerr CallGetTimeStamp(bool initialized) {
    std::array<char, 80> text{};
    text.fill('?');
    const QLerr result = QLGPS_GetTimeStamp(text.data());
    EXPECT_EQ(text[0], initialized ? '\0' : '?');
    EXPECT_EQ(text[1], '?');
    return result;
}

QLerr CallGetMode(bool initialized) {
    return CallGetter<FixMode, QLGPS_GetFixMode>(FIX_MODE_3D, FIX_MODE_UNKNOWN, initialized);
}

QLerr CallGetSelection(bool initialized) {
    return CallGetter<FixSelection, QLGPS_GetFixSelection>(FIX_SELECTION_AUTOMATIC, FIX_SELECTION_MANUAL, initialized);
}

QLerr CallGetProtocol(bool initialized) {
    return CallGetter<GpsProtType, QLGPS_GetProtocol>(GpsProtType{}, GPS_PROTOCOL_NMEA, initialized);
}

// The functions that look for the receiver before they look at their pointers.
const std::array<Row, 15> kReceiverFirst{{
    {"Enable", [](bool) { return QLGPS_Enable(); }, {}},
    {"Disable", [](bool) { return QLGPS_Disable(); }, {}},
    {"IsEnabled", [](bool initialized) { return CallGetter<bool, QLGPS_IsEnabled>(true, false, initialized); },
     [] { return QLGPS_IsEnabled(nullptr); }, "Pointer is NULL."},
    {"GetCoordinates", CallGetCoordinates, [] { return QLGPS_GetCoordinates(nullptr, nullptr, nullptr); },
     "Pointer is NULL."},
    {"GetBearing", CallGetDouble<QLGPS_GetBearing>, [] { return QLGPS_GetBearing(nullptr); },
     "pointer arg cannot be NULL"},
    {"GetSpeed", CallGetDouble<QLGPS_GetSpeed>, [] { return QLGPS_GetSpeed(nullptr); }, "pointer arg cannot be NULL"},
    {"GetHDOP", CallGetDouble<QLGPS_GetHDOP>, [] { return QLGPS_GetHDOP(nullptr); }, "pointer arg cannot be NULL"},
    {"GetPDOP", CallGetDouble<QLGPS_GetPDOP>, [] { return QLGPS_GetPDOP(nullptr); }, "pointer arg cannot be NULL"},
    {"GetVDOP", CallGetDouble<QLGPS_GetVDOP>, [] { return QLGPS_GetVDOP(nullptr); }, "pointer arg cannot be NULL"},
    {"GetMaxSat", CallGetInt<QLGPS_GetMaxSat>, [] { return QLGPS_GetMaxSat(nullptr); }, "pointer arg cannot be NULL"},
    {"GetSatellitesUsedForFix", CallGetInt<QLGPS_GetSatellitesUsedForFix>,
     [] { return QLGPS_GetSatellitesUsedForFix(nullptr); }, "pointer arg cannot be NULL"},
    {"GetFixQuality", CallGetInt<QLGPS_GetFixQuality>, [] { return QLGPS_GetFixQuality(nullptr); }, "pointer is NULL"},
    {"GetFixStatus", CallGetInt<QLGPS_GetFixStatus>, [] { return QLGPS_GetFixStatus(nullptr); },
     "Buffer pointer is NULL"},
    {"GetSatellites", CallGetSatellites, [] { return QLGPS_GetSatellites(nullptr, 10); }, "Buffer pointer is NULL"},
    {"GetTimeStamp", CallGetTimeStamp, [] { return QLGPS_GetTimeStamp(nullptr); }, "pointer arg cannot be NULL"},
}};

// The functions that look at their pointer first.
const std::array<Row, 3> kPointerFirst{{
    {"GetFixMode", CallGetMode, [] { return QLGPS_GetFixMode(nullptr); }, "Pointer arg cannot be NULL"},
    {"GetFixSelection", CallGetSelection, [] { return QLGPS_GetFixSelection(nullptr); }, "Pointer arg cannot be NULL"},
    {"GetProtocol", CallGetProtocol, [] { return QLGPS_GetProtocol(nullptr); }, "Pointer arg cannot be NULL"},
}};

class GpsReceiverFirst : public ::testing::TestWithParam<Row> {};
INSTANTIATE_TEST_SUITE_P(Every, GpsReceiverFirst, ::testing::ValuesIn(kReceiverFirst), NameOfRow);

TEST_P(GpsReceiverFirst, IsRefusedWithoutReceiverWhateverThePointer) {
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNotInitialized);
    if (GetParam().callWithNull) {
        EXPECT_FAILURE(GetParam().callWithNull(), QLERR_INVALID_STATE, kNotInitialized);
    }
    {
        const GpsSession session(kPort);
        if (GetParam().callWithNull) {
            EXPECT_FAILURE(GetParam().callWithNull(), QLERR_INVALID_ARGUMENT, GetParam().nullText);
        }
    }
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNotInitialized);
}

class GpsPointerFirst : public ::testing::TestWithParam<Row> {};
INSTANTIATE_TEST_SUITE_P(Every, GpsPointerFirst, ::testing::ValuesIn(kPointerFirst), NameOfRow);

TEST_P(GpsPointerFirst, IsRefusedWithNullWhetherThereIsAReceiverOrNot) {
    EXPECT_FAILURE(GetParam().callWithNull(), QLERR_INVALID_ARGUMENT, GetParam().nullText);
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNotInitialized);
    {
        const GpsSession session(kPort);
        EXPECT_FAILURE(GetParam().callWithNull(), QLERR_INVALID_ARGUMENT, GetParam().nullText);
    }
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNotInitialized);
}

// The functions that answer while the port is closed, as a receiver that has sent nothing.
class GpsGetter : public ::testing::TestWithParam<Row> {};
INSTANTIATE_TEST_SUITE_P(Every, GpsGetter, ::testing::ValuesIn(kReceiverFirst.begin() + 1, kReceiverFirst.end()),
                         NameOfRow);
INSTANTIATE_TEST_SUITE_P(PointerFirst, GpsGetter, ::testing::ValuesIn(kPointerFirst), NameOfRow);

TEST_P(GpsGetter, SucceedsBeforeAnythingCameAndErasesAnOlderError) {
    const GpsSession session(kPort);
    ASSERT_EQ(QLGPS_GetGpsDevices(nullptr), QLERR_BUFFER_OVERFLOW);
    EXPECT_SUCCESS(GetParam().call(true));
}

TEST(GpsCoordinates, AreRefusedAsAWholeWhenOnePointerIsNull) {
    const GpsSession session(kPort);
    double one = 1;
    double two = 2;
    EXPECT_FAILURE(QLGPS_GetCoordinates(nullptr, &one, &two), QLERR_INVALID_ARGUMENT, "Pointer is NULL.");
    EXPECT_FAILURE(QLGPS_GetCoordinates(&one, nullptr, &two), QLERR_INVALID_ARGUMENT, "Pointer is NULL.");
    EXPECT_FAILURE(QLGPS_GetCoordinates(&one, &two, nullptr), QLERR_INVALID_ARGUMENT, "Pointer is NULL.");
    EXPECT_EQ(one, 1);
    EXPECT_EQ(two, 2);
}

}  // namespace
}  // namespace quarlin::test
