// SPDX-License-Identifier: Apache-2.0
// How a reader is asked for its identity when it is found, and what becomes of it when it does not answer.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "support/last_error.h"

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

// One of the six transfers goes wrong. Those before it have been made then, and none after it.
void ExpectScanFails(TestReader& reader, std::size_t transfer, sim::HidAnswer fault) {
    reader.Device().AddFault({.answer = fault, .request = {}, .start = {}, .skip = transfer, .times = 1});
    MagStripeReaderInfo info{};
    info.index = 77;
    int count = 1;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(&info, &count), QLERR_INTERNAL_ERROR, kScanFailed);
    EXPECT_EQ(info.index, 77);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(reader.TakeFeatureRequests().size(), transfer + 1);
}

constexpr const char* kTransfers[] = {"SetSerialNumber", "GetSerialNumber",  "SetSoftwareId",
                                      "GetSoftwareId",   "SetSecurityLevel", "GetSecurityLevel"};

class CardFeatureTransfer : public ::testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Every, CardFeatureTransfer, ::testing::Range(std::size_t{0}, std::size(kTransfers)),
                         [](const auto& test) { return std::string(kTransfers[test.param]); });

TEST_P(CardFeatureTransfer, ThatIsRefusedOrInterruptedFailsTheScan) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader reader;
    ExpectScanFails(reader, GetParam(), sim::HidAnswer::kRefuse);
    // The reader has recovered, and is found as if it were new.
    EXPECT_EQ(ListSerials(), (std::map<int, std::string>{{0, "B30A5C7"}}));
    EXPECT_EQ(reader.TakeFeatureRequests().size(), std::size(kTransfers));

    ASSERT_SUCCESS(QLMSR_Initialize());
    ExpectScanFails(reader, GetParam(), sim::HidAnswer::kUnplug);
    EXPECT_TRUE(ListReaders().empty());
    reader.Plug();
    EXPECT_EQ(ListSerials(), (std::map<int, std::string>{{0, "B30A5C7"}}));
}

}  // namespace
}  // namespace quarlin::test
