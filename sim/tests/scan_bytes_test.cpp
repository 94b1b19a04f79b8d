// SPDX-License-Identifier: Apache-2.0
#include "scanner/scan_bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "scanner/honeywell_state.h"
#include "scanner/intermec_frames.h"
#include "scanner/intermec_state.h"

namespace quarlin::sim {
namespace {

std::string BytesOf(const ScanSlot& scan) {
    return {reinterpret_cast<const char*>(&scan.bytes[0]), scan.length};
}

TEST(IntermecScan, PutsFiveFieldsBehindTheirLengths) {
    const std::string expected("\1\x12\x34\0\1\0\0\0\3\0\2\0\5a123zz]C000", 24);
    IntermecFields fields{"a", "", "123", "zz", "]C000"};
    fields.number = 0x1234;
    EXPECT_EQ(expected, IntermecRecord(fields));
    const ScanSlot scan = IntermecScan(fields);
    EXPECT_EQ(expected, BytesOf(scan));
    EXPECT_EQ(24u, scan.claimed);
    EXPECT_EQ(IntermecState::kScanType, scan.eventType);
    EXPECT_EQ(0u, scan.flags);
}

TEST(IntermecScan, HasLengthsOfTwoBytes) {
    IntermecFields fields;
    const std::string data(300, 'd');
    fields.data = data;
    fields.type = 2;
    const std::string record = IntermecRecord(fields);
    EXPECT_EQ(std::string("\2\0\0\0\0\0\0\1\x2C\0\0\0\5", 13), record.substr(0, 13));
    EXPECT_EQ(data + "]C000", record.substr(13));
}

TEST(IntermecScan, TakesAnyBytes) {
    const std::string bytes("\0\xFF\1", 3);
    EXPECT_EQ(bytes, BytesOf(RawIntermecScan(bytes)));
    EXPECT_EQ(0u, RawIntermecScan("").length);
}

TEST(IntermecScan, HasItsLimits) {
    const std::string room(ScanSlot::kRoom, 'x');
    EXPECT_EQ(room, BytesOf(RawIntermecScan(room)));
    EXPECT_THROW(RawIntermecScan(room + "x"), std::length_error);
    const std::string field(65536, 'x');
    IntermecFields fields;
    fields.fourth = field;
    EXPECT_THROW(IntermecRecord(fields), std::length_error);
}

TEST(HoneywellScan, HasTheIdentifierBehindTheTerminator) {
    const ScanSlot scan = HoneywellScan("123", "]E0x");
    EXPECT_EQ(std::string("123\0]E0x\0", 9), BytesOf(scan));
    EXPECT_EQ(3u, scan.claimed);
    EXPECT_EQ(HoneywellState::kScanType, scan.eventType);
    EXPECT_EQ(std::string("\0]C000", 6), BytesOf(HoneywellScan("", "]C0001")));
    EXPECT_EQ(std::string("1\0\0\0\0\0\0", 7), BytesOf(HoneywellScan("1", "")));
}

class Engine : public testing::Test {
  protected:
    Engine() { state_->SetDefaults(); }
    static Frame Of(const std::string& bytes) {
        return {reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::uint32_t>(bytes.size())};
    }
    static std::string Told(const FrameAnswer& answer) {
        return {reinterpret_cast<const char*>(answer.Bytes()), answer.Length()};
    }

    std::unique_ptr<IntermecState> state_ = std::make_unique<IntermecState>();
    FrameAnswer answer_;
};

TEST_F(Engine, HasRoomForManyParametersAndNoMore) {
    for (unsigned i = 0; i < IntermecState::kParameters - 2; ++i) {
        EXPECT_EQ(kIntermecGood, WriteSetup(*state_, Of({1, static_cast<char>(i), 1}), answer_));
    }
    EXPECT_EQ(kIntermecBadFrame, WriteSetup(*state_, Of({2, 0, 1}), answer_));
    EXPECT_EQ(kIntermecGood, WriteSetup(*state_, Of({1, 0, 9}), answer_));
    EXPECT_EQ(9, state_->Value(0x100));
}

TEST_F(Engine, CountsWhatItHasNoRoomToAnswer) {
    std::string frame;
    for (int i = 0; i < 2000; ++i) {
        frame += "\x73\x4E";
    }
    EXPECT_EQ(kIntermecGood, ReadSetup(*state_, Of(frame), answer_));
    EXPECT_EQ(6000u, answer_.Length());
}

TEST_F(Engine, AnswersUnknownStatusesWithZeroes) {
    EXPECT_EQ(kIntermecGood, ReadStatus(*state_, Of("12"), answer_));
    EXPECT_EQ(std::string("12\0\0", 4), Told(answer_));
}

TEST_F(Engine, TakesOnlyWholeCommands) {
    EXPECT_EQ(kIntermecBadFrame, Control(*state_, Of("\x20"), answer_));
    EXPECT_EQ(kIntermecBadFrame, Control(*state_, Of("\x20\x40"), answer_));
    EXPECT_EQ(kIntermecGood, Control(*state_, Of("\x20\x41"), answer_));
    EXPECT_EQ(0u, state_->decoding);
    EXPECT_EQ(kIntermecGood, Control(*state_, Of("\x20\x40\1"), answer_));
    EXPECT_EQ(1u, state_->decoding);
}

class CallLog : public testing::Test {
  protected:
    std::unique_ptr<EngineCallLog> log_ = std::make_unique<EngineCallLog>();
};

TEST_F(CallLog, KeepsTheLastCalls) {
    for (std::uint32_t i = 0; i < EngineCallLog::kRoom + 3; ++i) {
        EngineCall call{};
        call.function = i;
        log_->Add(call);
    }
    EXPECT_EQ(3u, log_->First());
    EXPECT_EQ(nullptr, log_->At(2));
    ASSERT_NE(nullptr, log_->At(3));
    EXPECT_EQ(3u, log_->At(3)->function);
    EXPECT_EQ(EngineCallLog::kRoom + 2, log_->At(EngineCallLog::kRoom + 2)->function);
    EXPECT_EQ(nullptr, log_->At(EngineCallLog::kRoom + 3));
    log_->Clear();
    EXPECT_EQ(0u, log_->Count());
    EXPECT_EQ(nullptr, log_->At(0));
}

}  // namespace
}  // namespace quarlin::sim
