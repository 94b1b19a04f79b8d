// SPDX-License-Identifier: Apache-2.0
// What every function of the family checks, in which order, and in which words. No reader is needed for that.
#include <quarlin/quarlin.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoManager = "No exist manager instance.";
constexpr const char* kNoManagerForList = "no exist IQlMagStripeMgr instance.";
constexpr const char* kBothNull = "1st or 2nd parameter is invalid.(NULL)";
constexpr const char* kFirstNull = "1st parameter is invalid.(NULL)";

// A record that can be looked into.
class Record {
  public:
    Record() {
        record_.rawLength = raw_.size();
        record_.raw = raw_.data();
    }

    MagStripeData* operator->() { return &record_; }
    operator const MagStripeData*() const { return &record_; }

  private:
    Report raw_ = GoodReport();
    MagStripeData record_{};
};

struct Row {
    const char* name;
    // A call with nothing wrong in its arguments. Checks what is left in its output when there is no manager.
    std::function<QLerr(bool hasManager)> call;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

std::string NameOfRow(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

QLerr CallIsEnabled(bool) {
    bool enabled = true;
    const QLerr result = QLMSR_IsEnabled(&enabled);
    EXPECT_FALSE(enabled);
    return result;
}

QLerr CallAddCallback(bool hasManager) {
    unsigned int id = 77;
    const QLerr result = QLMSR_AddCallback(SwipeLog::Callback(0), &id);
    EXPECT_EQ(id == 0, !hasManager);
    return result;
}

QLerr CallGetMagTekExtras(bool hasManager) {
    const Record record;
    MagTekExtras extras{};
    extras.length[0] = 77;
    const QLerr result = QLMSR_GetMagTekExtras(record, &extras);
    EXPECT_EQ(extras.length[0] == 77, !hasManager);
    return result;
}

const std::array<Row, 8> kNeedManager{{
    {"SelectDevice", [](bool) { return QLMSR_SelectDevice(0); }},
    {"Enable", [](bool) { return QLMSR_Enable(); }},
    {"Disable", [](bool) { return QLMSR_Disable(); }},
    {"IsEnabled", CallIsEnabled},
    {"AddCallback", CallAddCallback},
    {"RemoveCallback", [](bool) { return QLMSR_RemoveCallback(1); }},
    {"ClearCallbacks", [](bool) { return QLMSR_ClearCallbacks(); }},
    {"GetMagTekExtras", CallGetMagTekExtras},
}};

class CardWithoutManager : public ::testing::TestWithParam<Row> {};
INSTANTIATE_TEST_SUITE_P(Every, CardWithoutManager, ::testing::ValuesIn(kNeedManager), NameOfRow);

TEST_P(CardWithoutManager, IsRefusedBeforeInitializeAndAfterUninitialize) {
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNoManager);
    {
        const CardSession session;
        GetParam().call(true);
        EXPECT_NE(FetchLastError().code, QLERR_INVALID_STATE);
    }
    EXPECT_FAILURE(GetParam().call(false), QLERR_INVALID_STATE, kNoManager);
}

TEST(CardList, WithoutManagerIsRefusedInItsOwnWordsWhateverThePointers) {
    MagStripeReaderInfo reader{};
    reader.index = 77;
    int count = 1;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&reader, &count), QLERR_INVALID_STATE, kNoManagerForList);
    EXPECT_EQ(reader.index, 77);
    EXPECT_EQ(count, 1);
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(nullptr, nullptr), QLERR_INVALID_STATE, kNoManagerForList);
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(nullptr, &count), QLERR_INVALID_STATE, kNoManagerForList);
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&reader, nullptr), QLERR_INVALID_STATE, kNoManagerForList);
}

TEST(CardList, WithNullIsRefusedAndWritesNothing) {
    const CardSession session;
    MagStripeReaderInfo reader{};
    reader.index = 77;
    int count = 1;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(nullptr, &count), QLERR_INVALID_ARGUMENT, kBothNull);
    EXPECT_EQ(count, 1);
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&reader, nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
    EXPECT_EQ(reader.index, 77);
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(nullptr, nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
}

// Null is looked at before the manager.
TEST(CardNull, IsRefusedWithAndWithoutManager) {
    const Record record;
    MagTekExtras extras{};
    extras.length[0] = 77;
    unsigned int id = 77;
    const auto expectRefused = [&] {
        EXPECT_FAILURE(QLMSR_IsEnabled(nullptr), QLERR_INVALID_ARGUMENT, kFirstNull);
        EXPECT_FAILURE(QLMSR_AddCallback(nullptr, &id), QLERR_INVALID_ARGUMENT, kBothNull);
        EXPECT_FAILURE(QLMSR_AddCallback(SwipeLog::Callback(0), nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
        EXPECT_FAILURE(QLMSR_AddCallback(nullptr, nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
        EXPECT_FAILURE(QLMSR_GetMagTekExtras(nullptr, &extras), QLERR_INVALID_ARGUMENT, kBothNull);
        EXPECT_FAILURE(QLMSR_GetMagTekExtras(record, nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
        EXPECT_FAILURE(QLMSR_GetMagTekExtras(nullptr, nullptr), QLERR_INVALID_ARGUMENT, kBothNull);
        // The preset comes after the check.
        EXPECT_EQ(id, 77U);
        EXPECT_EQ(extras.length[0], 77);
    };
    expectRefused();
    const CardSession session;
    expectRefused();
}

TEST(CardSelect, AcceptsMinusOneAndNoReaderThatIsNotThere) {
    const CardSession session;
    EXPECT_SUCCESS(QLMSR_SelectDevice(-1));
    for (const int index : {0, 1, -2, 3, std::numeric_limits<int>::max(), std::numeric_limits<int>::max() - 1,
                            std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(index);
        EXPECT_FAILURE(QLMSR_SelectDevice(index), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    }
}

// Index 0 is selected from the start, and there is no such reader; nor is there one of index -1.
TEST(CardSelectedReader, ThatDoesNotExistCanNeitherBeEnabledNorDisabledNorAsked) {
    const CardSession session;
    for (const bool selectsNone : {false, true}) {
        if (selectsNone) {
            ASSERT_SUCCESS(QLMSR_SelectDevice(-1));
        }
        EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
        EXPECT_FAILURE(QLMSR_Disable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
        bool enabled = true;
        EXPECT_FAILURE(QLMSR_IsEnabled(&enabled), QLERR_INTERNAL_ERROR, "fail check enabled status.");
        EXPECT_FALSE(enabled);
    }
}

TEST(CardUninitialize, SucceedsWithoutManagerAndTwice) {
    EXPECT_SUCCESS(QLMSR_Uninitialize());
    ASSERT_SUCCESS(QLMSR_Initialize());
    EXPECT_SUCCESS(QLMSR_Uninitialize());
    EXPECT_SUCCESS(QLMSR_Uninitialize());
}

TEST(CardCallbackNumbers, CountUpFromOneAndAreNeverGivenAgain) {
    const auto add = [] {
        unsigned int id = 0;
        EXPECT_SUCCESS(QLMSR_AddCallback(SwipeLog::Callback(0), &id));
        return id;
    };
    {
        const CardSession session;
        EXPECT_EQ(add(), 1U);
        EXPECT_EQ(add(), 2U);
        EXPECT_SUCCESS(QLMSR_RemoveCallback(2));
        EXPECT_EQ(add(), 3U);
        EXPECT_SUCCESS(QLMSR_ClearCallbacks());
        EXPECT_EQ(add(), 4U);
        EXPECT_SUCCESS(QLMSR_Initialize());
        EXPECT_EQ(add(), 5U);
    }
    const CardSession session;
    EXPECT_EQ(add(), 6U);
}

TEST(CardCallback, ThatIsNotThereCannotBeRemoved) {
    constexpr const char* kUnknown = "Fail remove callback.Check parameter and usage.";
    const CardSession session;
    EXPECT_FAILURE(QLMSR_RemoveCallback(0), QLERR_INVALID_ARGUMENT, kUnknown);
    EXPECT_FAILURE(QLMSR_RemoveCallback(1), QLERR_INVALID_ARGUMENT, kUnknown);
    const unsigned int id = AddCallback();
    EXPECT_FAILURE(QLMSR_RemoveCallback(0), QLERR_INVALID_ARGUMENT, kUnknown);
    EXPECT_FAILURE(QLMSR_RemoveCallback(id + 1), QLERR_INVALID_ARGUMENT, kUnknown);
    EXPECT_FAILURE(QLMSR_RemoveCallback(0xFFFFFFFF), QLERR_INVALID_ARGUMENT, kUnknown);
    EXPECT_FAILURE(QLMSR_RemoveCallback(0x80000000 + id), QLERR_INVALID_ARGUMENT, kUnknown);
    EXPECT_SUCCESS(QLMSR_RemoveCallback(id));
    EXPECT_FAILURE(QLMSR_RemoveCallback(id), QLERR_INVALID_ARGUMENT, kUnknown);
    const unsigned int cleared = AddCallback();
    ASSERT_SUCCESS(QLMSR_ClearCallbacks());
    EXPECT_FAILURE(QLMSR_RemoveCallback(cleared), QLERR_INVALID_ARGUMENT, kUnknown);
    const unsigned int dropped = AddCallback();
    ASSERT_SUCCESS(QLMSR_Initialize());
    EXPECT_FAILURE(QLMSR_RemoveCallback(dropped), QLERR_INVALID_ARGUMENT, kUnknown);
}

// Each call that succeeds erases the error of a call before.
TEST(CardSuccess, ErasesAnOlderError) {
    const CardReaderTurn turn;
    const auto fail = [] { ASSERT_EQ(QLMSR_IsEnabled(nullptr), QLERR_INVALID_ARGUMENT); };
    MagStripeReaderInfo reader{};
    int count = 1;
    unsigned int id = 0;
    const Record record;
    MagTekExtras extras{};
    fail();
    EXPECT_SUCCESS(QLMSR_Initialize());
    fail();
    EXPECT_SUCCESS(QLMSR_GetMagStripeDevices(&reader, &count));
    fail();
    EXPECT_SUCCESS(QLMSR_SelectDevice(-1));
    fail();
    EXPECT_SUCCESS(QLMSR_AddCallback(SwipeLog::Callback(0), &id));
    fail();
    EXPECT_SUCCESS(QLMSR_RemoveCallback(id));
    fail();
    EXPECT_SUCCESS(QLMSR_ClearCallbacks());
    fail();
    EXPECT_SUCCESS(QLMSR_GetMagTekExtras(record, &extras));
    fail();
    EXPECT_SUCCESS(QLMSR_Uninitialize());
}

TEST(CardExtras, AreTheReportWithoutItsFirstByte) {
    const CardSession session;
    Record record;
    MagTekExtras extras{};
    ASSERT_SUCCESS(QLMSR_GetMagTekExtras(record, &extras));
    const Report report = GoodReport();
    EXPECT_EQ(Report(reinterpret_cast<std::uint8_t*>(&extras), reinterpret_cast<std::uint8_t*>(&extras + 1)),
              Report(report.begin() + 1, report.end()));

    // Each field begins where the report has it.
    const auto expectAt = [&](const std::uint8_t* field, std::size_t offset, const char* name) {
        EXPECT_EQ(*field, report[offset]) << name;
        EXPECT_EQ(field - reinterpret_cast<std::uint8_t*>(&extras), static_cast<std::ptrdiff_t>(offset - 1)) << name;
    };
    expectAt(extras.decodeStatus, 1, "decodeStatus");
    expectAt(extras.length, 4, "length");
    expectAt(&extras.cardEncodeType, 7, "cardEncodeType");
    expectAt(extras.data[0], 8, "data 1");
    expectAt(extras.data[1], 120, "data 2");
    expectAt(extras.data[2], 232, "data 3");
    expectAt(&extras.reserved1, 344, "reserved1");
    expectAt(extras.magnePrintStatus, 345, "magnePrintStatus");
    expectAt(&extras.magnePrintLength, 349, "magnePrintLength");
    expectAt(extras.magnePrint, 350, "magnePrint");
    expectAt(extras.deviceSerialNumber, 478, "deviceSerialNumber");
    expectAt(extras.encryptionStatus, 494, "encryptionStatus");
    expectAt(extras.keySerialNumber, 496, "keySerialNumber");
    expectAt(extras.maskedLength, 506, "maskedLength");
    expectAt(extras.maskedData[0], 509, "maskedData 1");
    expectAt(extras.maskedData[1], 621, "maskedData 2");
    expectAt(extras.maskedData[2], 733, "maskedData 3");
    expectAt(extras.encryptedSessionId, 845, "encryptedSessionId");
    expectAt(extras.absoluteLength, 853, "absoluteLength");
    expectAt(extras.encryptionCounter, 857, "encryptionCounter");
    expectAt(extras.reserved2, 860, "reserved2");
    expectAt(extras.reserved3, 868, "reserved3");
    expectAt(extras.reserved4, 884, "reserved4");
}

TEST(CardExtras, AreRefusedForARecordOfAnotherLengthOrWithoutBytes) {
    const CardSession session;
    MagTekExtras extras{};
    extras.length[0] = 77;
    constexpr std::uint64_t kTwoToThe32 = std::uint64_t{1} << 32;
    for (const std::uint64_t length : {std::uint64_t{0}, std::uint64_t{887}, std::uint64_t{889}, kTwoToThe32 + 888,
                                       ~std::uint64_t{0}, std::uint64_t{888} << 32}) {
        SCOPED_TRACE(length);
        Record record;
        record->rawLength = length;
        EXPECT_FAILURE(QLMSR_GetMagTekExtras(record, &extras), QLERR_INTERNAL_ERROR, "Invalid raw data.");
    }
    Record record;
    record->raw = nullptr;
    EXPECT_FAILURE(QLMSR_GetMagTekExtras(record, &extras), QLERR_INTERNAL_ERROR, "Invalid raw data.");
    EXPECT_EQ(extras.length[0], 77);
}

}  // namespace
}  // namespace quarlin::test
