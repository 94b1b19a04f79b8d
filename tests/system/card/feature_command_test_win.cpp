// SPDX-License-Identifier: Apache-2.0
// How a reader is asked for its identity when it is found, and what becomes of it when it does not answer.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kScanFailed = "fail MSR devices scan.";
constexpr std::size_t kFeatureLength = 25;

FeatureRequest Set(Report start, std::size_t length = kFeatureLength) {
    start.resize(length);
    return {FeatureRequest::Kind::kSet, start};
}

FeatureRequest Get(std::size_t length = kFeatureLength) {
    return {FeatureRequest::Kind::kGet, Report(length)};
}

// Serial number, software identifier, security level; each a request filled up with zeros, and its reply.
const std::vector<FeatureRequest> kIdentity{
    Set({0x00, 0x00, 0x01, 0x03}), Get(), Set({0x00, 0x00, 0x01, 0x00}), Get(), Set({0x00, 0x15, 0x00}), Get(),
};

TEST(CardReaderIdentity, IsReadOnceByThreeCommands) {
    OneReader one;
    EXPECT_EQ(one.Reader().TakeFeatureRequests(), kIdentity);
    // Neither another look nor enabling asks again.
    ListReaders();
    Enable();
    Disable();
    EXPECT_TRUE(one.Reader().TakeFeatureRequests().empty());
    EXPECT_EQ(one.Reader().Device().Counts().outputs, 0U);
}

TEST(CardReaderIdentity, IsTakenWhateverTheReadersResultCodes) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    reader.Device().ForceResult(0x02);
    const std::vector<MagStripeReaderInfo> list = ListReaders();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_STREQ(list[0].serialNumber, L"B30A5C7");
    EXPECT_STREQ(list[0].softwareId, L"21088812D01");
    EXPECT_EQ(list[0].encryptionEnabled, 1);
}

TEST(CardReaderIdentity, IsEmptyWhenTheRepliesAre) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    reader.Device().ShortenAnswers(1);
    const std::vector<MagStripeReaderInfo> list = ListReaders();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_STREQ(list[0].name, L"MAGTEK(USB)");
    EXPECT_STREQ(list[0].serialNumber, L"");
    EXPECT_STREQ(list[0].softwareId, L"");
    EXPECT_EQ(list[0].encryptionEnabled, 0);
}

// The requests fill the shortest report that they fit.
TEST(CardReaderIdentity, FitsAFeatureReportOfFourBytes) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.featureReportLength = 4;
    TestReader reader(settings);
    const std::vector<MagStripeReaderInfo> list = ListReaders();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_STREQ(list[0].serialNumber, L"B");
    EXPECT_STREQ(list[0].softwareId, L"2");
    EXPECT_EQ(reader.TakeFeatureRequests(),
              (std::vector<FeatureRequest>{Set({0x00, 0x00, 0x01, 0x03}, 4), Get(4), Set({0x00, 0x00, 0x01, 0x00}, 4),
                                           Get(4), Set({0x00, 0x15, 0x00}, 4), Get(4)}));
}

TEST(CardReaderIdentity, IsNotAskedForWhereARequestDoesNotFitTheReport) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.featureReportLength = 3;
    TestReader reader(settings);
    MagStripeReaderInfo info{};
    int count = 1;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, kScanFailed);
    EXPECT_TRUE(reader.TakeFeatureRequests().empty());
}

// One of the six transfers fails.
struct Step {
    const char* name;
    std::uint64_t number;
};

std::ostream& operator<<(std::ostream& out, const Step& step) {
    return out << step.name;
}

class CardFeatureTransfer : public ::testing::TestWithParam<Step> {
  protected:
    // Requests up to and with the failing one have been made, and none after it.
    static void ExpectScanFails(TestReader& reader, sim::HidAnswer fault) {
        reader.Device().AddFault({.answer = fault, .request = {}, .start = {}, .skip = GetParam().number, .times = 1});
        MagStripeReaderInfo info{};
        info.index = 77;
        int count = 1;
        EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, kScanFailed);
        EXPECT_EQ(info.index, 77);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(reader.TakeFeatureRequests().size(), GetParam().number + 1);
    }
};

INSTANTIATE_TEST_SUITE_P(Every, CardFeatureTransfer,
                         ::testing::Values(Step{"SetSerialNumber", 0}, Step{"GetSerialNumber", 1},
                                           Step{"SetSoftwareId", 2}, Step{"GetSoftwareId", 3},
                                           Step{"SetSecurityLevel", 4}, Step{"GetSecurityLevel", 5}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(CardFeatureTransfer, ThatIsRefusedFailsTheScanAndLeavesTheReaderClosed) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    ExpectScanFails(reader, sim::HidAnswer::kRefuse);
    CountOpenHandles();
    const std::size_t handles = CountOpenHandles();
    ExpectScanFails(reader, sim::HidAnswer::kRefuse);
    EXPECT_EQ(CountOpenHandles(), handles);
    // The reader has recovered, and is found as if it were new.
    EXPECT_EQ(ListSerials(), (std::map<int, std::string>{{0, "B30A5C7"}}));
}

TEST_P(CardFeatureTransfer, InWhichTheReaderVanishesFailsTheScan) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    ExpectScanFails(reader, sim::HidAnswer::kUnplug);
    EXPECT_TRUE(ListReaders().empty());
    reader.Plug();
    EXPECT_EQ(ListSerials(), (std::map<int, std::string>{{0, "B30A5C7"}}));
}

}  // namespace
}  // namespace quarlin::test
