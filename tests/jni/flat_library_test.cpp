// SPDX-License-Identifier: Apache-2.0
// The stand-in of the library answers as scripted, and keeps the rules of the real one's errors and texts.
#include "flat_library.h"
#include "text_forms.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <thread>

namespace quarlin::test {

namespace {

using Problems = std::vector<std::string>;

struct FlatStandIn : testing::Test {
    FlatLibrary flat;

    // The code and the text, with plenty of room.
    FlatError Fetch() {
        std::array<char, 200> text{};
        const QLerr code = QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
        return {code, text.data()};
    }
};

TEST_F(FlatStandIn, WritesCallsDownWithWhatGoesIn) {
    unsigned int on = 0;
    unsigned int kHz = 250;
    std::array<unsigned char, 2> tag{0xE2, 0x0A};
    QLBCR_IsEnabled(&on);
    QLBCR_SetDataEditingMode(1, "abc", "", -1, 2);
    QLBCR_EnableSymbology(1, L"Code 39");
    QLBCR_SetCallback(nullptr);
    QLUHFRFID_SelectTag(reinterpret_cast<void*>(std::intptr_t{-2}), tag.data(), 2);
    QLUHFRFID_SetLinkFreqForQuery(nullptr, &kHz);
    QLBCR_SetPrefixData(1, nullptr);
    EXPECT_EQ(flat.TakeCalls(), Calls({"QLBCR_IsEnabled()", "QLBCR_SetDataEditingMode(1, \"abc\", \"\", -1, 2)",
                                       "QLBCR_EnableSymbology(1, \"Code 39\")", "QLBCR_SetCallback(null)",
                                       "QLUHFRFID_SelectTag(0xfffffffffffffffe, [e2 0a], 2)",
                                       "QLUHFRFID_SetLinkFreqForQuery(0x0, 250)", "QLBCR_SetPrefixData(1, null)"}));
    EXPECT_EQ(flat.TakeCalls(), Calls());
}

TEST_F(FlatStandIn, GivesTheValuesOfTheTest) {
    flat.Gives("QLGPS_GetCoordinates", {47.5, 8.25, 400});
    flat.Gives("QLBCR_GetPrefixData", {1, "pre"});
    flat.Gives("QLLIB_GetSDKVersion", {"3.\xC3\xA9", 4});
    flat.Gives("QLUHFRFID_OpenReader", {std::int64_t{-7}});
    double latitude = 0;
    double longitude = 0;
    double altitude = 0;
    EXPECT_EQ(QLGPS_GetCoordinates(&latitude, &longitude, &altitude), QLERR_OK);
    EXPECT_EQ(latitude, 47.5);
    EXPECT_EQ(longitude, 8.25);
    EXPECT_EQ(altitude, 400.0);
    unsigned int asTop = 0;
    std::array<char, QLBCR_TEXT_SIZE> text{};
    QLBCR_GetPrefixData(&asTop, text.data());
    EXPECT_EQ(asTop, 1U);
    EXPECT_STREQ(text.data(), "pre");
    std::array<wchar_t, 10> wide{};
    int size = 10;
    QLLIB_GetSDKVersion(wide.data(), &size);
    EXPECT_EQ(std::wstring(wide.data()), L"3.\u00E9");
    EXPECT_EQ(size, 4);
    void* handle = nullptr;
    QLUHFRFID_OpenReader(&handle);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(handle), -7);
    EXPECT_EQ(flat.TakeCalls().at(2), "QLLIB_GetSDKVersion(10)");
}

TEST_F(FlatStandIn, FailsAsScriptedAndLeavesOutValuesAlone) {
    flat.Gives("QLGPS_GetMaxSat", {12});
    flat.Fails("QLGPS_GetMaxSat", QLERR_INVALID_STATE, "not initialised");
    int count = 0;
    EXPECT_EQ(QLGPS_GetMaxSat(&count), QLERR_INVALID_STATE);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Fetch(), (FlatError{QLERR_INVALID_STATE, "not initialised"}));
    EXPECT_EQ(Fetch(), (FlatError{QLERR_OK, ""}));
    flat.Succeeds("QLGPS_GetMaxSat");
    QLGPS_GetMaxSat(&count);
    EXPECT_EQ(count, 12);
}

TEST_F(FlatStandIn, RunsTheTestsBody) {
    flat.Does("QLGPS_GetSatellites", [](GpsGlonassSatellite* records, int capacity) -> QLerr {
        records[0].PRN = capacity;
        return QLERR_IO_ERROR;
    });
    GpsGlonassSatellite record{};
    EXPECT_EQ(QLGPS_GetSatellites(&record, 1), QLERR_IO_ERROR);
    EXPECT_EQ(record.PRN, 1);
    EXPECT_EQ(Fetch(), (FlatError{QLERR_IO_ERROR, "QLGPS_GetSatellites failed"}));
    flat.Does("QLBCR_Enable", []() -> QLerr { throw std::runtime_error("thrown"); });
    EXPECT_THROW(QLBCR_Enable(), std::runtime_error);
}

TEST_F(FlatStandIn, ReportsWrongUses) {
    int notZeroed = 5;
    QLGPS_GetMaxSat(&notZeroed);
    QLGPS_GetFixStatus(nullptr);
    flat.Does("QLBCR_Disable", [](int) -> QLerr { return QLERR_OK; });
    EXPECT_EQ(QLBCR_Disable(), QLERR_INTERNAL_ERROR);
    flat.Gives("QLBCR_Enable", {1});
    QLBCR_Enable();
    flat.Gives("QLBCR_IsEnabled", {"text"});
    unsigned int enabled = 0;
    QLBCR_IsEnabled(&enabled);
    flat.Gives("QLBCR_GetSuffixData", {1, std::string(QLBCR_TEXT_SIZE, 'x')});
    std::array<char, QLBCR_TEXT_SIZE> text{};
    QLBCR_GetSuffixData(&enabled, text.data());
    EXPECT_EQ(flat.TakeProblems(), Problems({"QLGPS_GetMaxSat: a value that was not zeroed",
                                             "QLGPS_GetFixStatus: a null pointer for a value",
                                             "QLBCR_Disable: the test's body has other parameters",
                                             "QLBCR_Enable: the test gives more values than go out",
                                             "QLBCR_IsEnabled: the test gives a text where a number goes out",
                                             "QLBCR_GetSuffixData: no room for the test's text"}));
}

TEST_F(FlatStandIn, SuccessErasesTheLastErrorAndTheRfidFamilyLeavesItsOwn) {
    flat.LeaveError(QLERR_IO_ERROR, "old");
    QLBCR_Enable();
    EXPECT_EQ(flat.Error(), std::nullopt);
    flat.LeaveError(QLERR_IO_ERROR, "old");
    QLUHFRFID_CloseReader(nullptr);
    EXPECT_EQ(Fetch(), (FlatError{QLERR_OK, "QLERR_OK"}));
}

TEST_F(FlatStandIn, KeepsALastErrorForEachThread) {
    flat.LeaveError(QLERR_IO_ERROR, "mine");
    std::thread([&] {
        EXPECT_EQ(flat.Error(), std::nullopt);
        flat.LeaveError(QLERR_INVALID_STATE, "theirs");
    }).join();
    EXPECT_EQ(Fetch(), (FlatError{QLERR_IO_ERROR, "mine"}));
}

TEST_F(FlatStandIn, ThrowsWhenTheMessageDoesNotFitAndKeepsIt) {
    flat.LeaveError(QLERR_IO_ERROR, "123456789");
    std::array<char, 9> text{};
    EXPECT_THROW(QLAPI_GetLastError(text.data(), 9), std::runtime_error);
    EXPECT_STREQ(text.data(), "12345678");
    EXPECT_THROW(QLAPI_GetLastError(nullptr, 0), std::runtime_error);
    EXPECT_EQ(Fetch(), (FlatError{QLERR_IO_ERROR, "123456789"}));
}

TEST_F(FlatStandIn, CopiesAndConvertsTextsAsTheLibraryDoes) {
    std::array<char, 5> narrow{};
    EXPECT_EQ(QLSTR_StrCopyAnsi(narrow.data(), 5, "abcd"), QLERR_OK);
    EXPECT_EQ(QLSTR_StrCopyAnsi(narrow.data(), 4, "abcd"), QLERR_INTERNAL_ERROR);
    EXPECT_STREQ(narrow.data(), "abc");
    EXPECT_TRUE(flat.Error()->message.starts_with("Failed to copy string"));
    EXPECT_EQ(QLSTR_StrCopyAnsi(nullptr, 5, "a"), QLERR_INTERNAL_ERROR);
    std::array<wchar_t, 3> wide{};
    int count = -1;
    EXPECT_EQ(QLSTR_NarrowToWide(wide.data(), 3, &count, "\xC3\xA9"), QLERR_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(flat.Error(), std::nullopt);
    EXPECT_EQ(QLSTR_NarrowToWide(wide.data(), 3, &count, "abc"), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(QLSTR_NarrowToWide(nullptr, 0, &count, "abc"), QLERR_OK);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(QLSTR_WideToNarrow(narrow.data(), 5, &count, L"\u20AC"), QLERR_OK);
    EXPECT_STREQ(narrow.data(), "\xE2\x82\xAC");
    EXPECT_EQ(count, 4);
    EXPECT_EQ(QLSTR_WideToNarrow(narrow.data(), 3, &count, L"\u20AC"), QLERR_INTERNAL_ERROR);
    EXPECT_EQ(QLSTR_WideToNarrow(narrow.data(), 3, nullptr, L"a"), QLERR_INVALID_ARGUMENT);
    EXPECT_EQ(flat.TakeHelperCalls().front(), "QLSTR_StrCopyAnsi(5, \"abcd\")");
}

TEST_F(FlatStandIn, KeepsTheCallbacks) {
    const QLBCR_Callback scans = [](const QLBCR_BARCODE_DATA*) {};
    const QLMSR_Callback swipes = [](const MagStripeData*) {};
    unsigned int id = 0;
    QLBCR_SetCallback(scans);
    flat.Gives("QLMSR_AddCallback", {7});
    QLMSR_AddCallback(swipes, &id);
    EXPECT_EQ(flat.BarcodeCallback(), scans);
    EXPECT_EQ(flat.CardCallback(), swipes);
    EXPECT_EQ(id, 7U);
    flat.Fails("QLBCR_SetCallback", QLERR_INVALID_STATE, "not now");
    QLBCR_SetCallback(nullptr);
    EXPECT_EQ(flat.BarcodeCallback(), scans);
    EXPECT_EQ(flat.TakeCalls(),
              Calls({"QLBCR_SetCallback(function)", "QLMSR_AddCallback(function)", "QLBCR_SetCallback(null)"}));
}

}  // namespace

}  // namespace quarlin::test
