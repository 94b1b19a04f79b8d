// SPDX-License-Identifier: Apache-2.0
// Extended-data records that an engine should not send: dropped without a word, and the next good one is delivered.
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kDecodingOn = "ControlCommand 20 40 01";
constexpr const char* kDecodingOff = "ControlCommand 20 40 00";

// A record, and how long the engine says it is.
struct BadRecord {
    const char* name;
    std::function<std::string()> bytes;
    std::optional<std::uint32_t> claimed = {};
};

std::ostream& operator<<(std::ostream& out, const BadRecord& record) {
    return out << record.name;
}

std::string NameOfRecord(const ::testing::TestParamInfo<BadRecord>& info) {
    return info.param.name;
}

std::string Good() {
    return IntermecScan::Of("good", "]C000").Bytes();
}

std::string WithLength(std::size_t field, std::uint16_t length) {
    IntermecScan scan = IntermecScan::Of("good", "]C000");
    scan.fields[0] = "first";
    scan.fields[3] = "fourth";
    scan.lengths[field] = length;
    return scan.Bytes();
}

std::string OfType(std::uint8_t type) {
    IntermecScan scan = IntermecScan::Of("good", "]C000");
    scan.type = type;
    return scan.Bytes();
}

const std::vector<BadRecord> kBadRecords = {
    {"Nothing", [] { return std::string(); }},
    {"TypeAlone", [] { return std::string(1, '\1'); }},
    {"TypeAndHalfANumber", [] { return Good().substr(0, 2); }},
    {"NoLengths", [] { return Good().substr(0, 3); }},
    {"HalfALength", [] { return Good().substr(0, 10); }},
    {"FourLengths", [] { return Good().substr(0, 11); }},
    {"HalfTheFifthLength", [] { return Good().substr(0, 12); }},
    {"HeadAlone", [] { return Good().substr(0, 13); }},
    {"HalfTheText", [] { return Good().substr(0, 15); }},
    {"HalfTheIdentifier", [] { return Good().substr(0, 20); }},
    {"ToldTooShort", Good, 21},
    {"ToldAsHead", Good, 13},
    {"ToldAsNothing", Good, 0},
    {"ToldAsOneByte", Good, 1},
    {"Type0", [] { return OfType(0); }},
    {"Type2", [] { return OfType(2); }},
    {"Type255", [] { return OfType(255); }},
    {"Type2Alone", [] { return std::string(1, '\2'); }},
    {"FirstTooLong", [] { return WithLength(0, 100); }},
    {"FirstLongest", [] { return WithLength(0, 65535); }},
    {"SecondTooLong", [] { return WithLength(1, 21); }},
    {"SecondLongest", [] { return WithLength(1, 65535); }},
    {"ThirdOneTooLong", [] { return WithLength(2, 10); }},
    {"ThirdNegative", [] { return WithLength(2, 0x8000); }},
    {"ThirdLongest", [] { return WithLength(2, 65535); }},
    {"FourthTooLong", [] { return WithLength(3, 12); }},
    {"FourthLongest", [] { return WithLength(3, 65535); }},
    {"FifthOneTooLong", [] { return WithLength(4, 6); }},
    {"FifthLongest", [] { return WithLength(4, 65535); }},
    {"FifthOfNineBytes", [] { return IntermecScan::Of("good", "]C0123456").Bytes(); }},
    {"AllLongest",
     [] {
         IntermecScan scan = IntermecScan::Of("good");
         for (auto& length : scan.lengths) {
             length = 65535;
         }
         return scan.Bytes();
     }},
    {"LongerThanTheBuffer", [] { return IntermecScan::Of(std::string(4500, 'x')).Bytes(); }},
    {"LongestThirdInAFullBuffer", [] { return IntermecScan::Of(std::string(4084, 'x')).Bytes(); }},
};

class IntermecRecord : public EnabledIntermec, public ::testing::WithParamInterface<BadRecord> {
  protected:
    void ScanBad() { machine_.ScanIntermecRecord(GetParam().bytes(), GetParam().claimed); }
};

TEST_P(IntermecRecord, IsDroppedWithoutAWord) {
    std::vector<Failure> records;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) { records.push_back(FetchLastError()); });
    machine_.ScanIntermec("before");
    log_.AwaitCount(1);
    ScanBad();
    ScanBad();
    machine_.ScanIntermec("behind");
    log_.AwaitCount(2);
    log_.AwaitQuiet();
    EXPECT_EQ(log_.Texts(), (Texts{"before", "behind"}));
    // Neither here nor on the listener's thread.
    EXPECT_EQ(records, (std::vector<Failure>{Failure{}, Failure{}}));
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(Engine().TakeTexts(), Texts(4, "GetBarcodeDataEx"));
    EXPECT_EQ(BarcodeState(), 2);
}

// Whoever asked for a scan still waits for one.
TEST_P(IntermecRecord, LeavesDecodingOn) {
    Texts callsBefore;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) { callsBefore = Engine().Peek(); });
    ASSERT_SUCCESS(QLBCR_StartScanning());
    ScanBad();
    machine_.ScanIntermec("good");
    log_.AwaitCount(1);
    Engine().AwaitCalls(kDecodingOff);
    EXPECT_EQ(callsBefore, (Texts{kDecodingOn, "GetBarcodeDataEx", "GetBarcodeDataEx"}));
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kDecodingOn, "GetBarcodeDataEx", "GetBarcodeDataEx", kDecodingOff}));
    EXPECT_EQ(log_.Texts(), Texts{"good"});
}

INSTANTIATE_TEST_SUITE_P(Kinds, IntermecRecord, ::testing::ValuesIn(kBadRecords), NameOfRecord);

class IntermecOddRecord : public EnabledIntermec {
  protected:
    ReceivedScan Deliver(const std::string& bytes, std::optional<std::uint32_t> claimed = {}) {
        machine_.ScanIntermecRecord(bytes, claimed);
        return log_.AwaitCount(++delivered_);
    }

  private:
    std::size_t delivered_ = 0;
};

TEST_F(IntermecOddRecord, MayHaveBytesBehindItsFields) {
    EXPECT_EQ(Deliver(Good() + "and more").text, "good");
    EXPECT_EQ(Deliver(Good() + std::string(3000, 'x')).symbologyId, "]C000");
}

TEST_F(IntermecOddRecord, MayBeToldLongerThanItIs) {
    for (const std::uint32_t claimed : {100U, 4096U, 4097U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Deliver(Good(), claimed).text, "good") << claimed;
    }
}

TEST_F(IntermecOddRecord, MayHaveAnyNumber) {
    for (const std::uint16_t number : {std::uint16_t{1}, std::uint16_t{0x8000}, std::uint16_t{0xFFFF}}) {
        IntermecScan scan = IntermecScan::Of("good");
        scan.number = number;
        EXPECT_EQ(Deliver(scan.Bytes()).text, "good");
    }
}

TEST_F(IntermecOddRecord, IsLostWhenTheEngineRefusesIt) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    Engine().Refuse(IntermecFunction::kGetBarcodeDataEx, 0x8000, 1);
    machine_.ScanIntermec("one");
    machine_.ScanIntermec("two");
    // The first is still in the engine, and comes with the second's announcement.
    EXPECT_EQ(log_.AwaitCount(1).text, "one");
    Engine().AwaitCalls(kDecodingOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"GetBarcodeDataEx", "GetBarcodeDataEx", kDecodingOff}));
}

TEST_F(IntermecOddRecord, IsNotThereThoughItWasAnnounced) {
    machine_.ScanIntermecRecord("", {}, IntermecState::kScanType, sim::kScanNoData);
    machine_.ScanIntermec("good");
    EXPECT_EQ(log_.AwaitCount(1).text, "good");
    EXPECT_EQ(log_.Count(), 1U);
}

}  // namespace
}  // namespace quarlin::test
