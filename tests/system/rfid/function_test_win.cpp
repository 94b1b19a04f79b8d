// SPDX-License-Identifier: Apache-2.0
// What is the same for every function: its frame, the record of its outcome, and what becomes of a reply that is none.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

// Every other status has the text "Unknown Error".
const std::map<int, const char*> kTextsOfStatuses{
    {0x02, "QLERR_UHFRFID_ACCESS"},
    {0x03, "QLERR_UHFRFID_KILL"},
    {0x04, "QLERR_UHFRFID_NOREPLY"},
    {0x05, "QLERR_UHFRFID_LOCK"},
    {0x06, "QLERR_UHFRFID_WRITE"},
    {0x07, "QLERR_UHFRFID_ERASE"},
    {0x08, "QLERR_UHFRFID_READ "},
    {0x09, "QLERR_UHFRFID_SELECT"},
    {0x0A, "QLERR_UHFRFID_CHANNEL_TIMEOUT"},
    {0x0F, "QLERR_UHFRFID_INVALID_PARAMETER2"},
    {0x20, "QLERR_UHFRFID_EASCODE"},
    {0x80, "QLERR_UHFRFID_OTHER "},
    {0x83, "QLERR_UHFRFID_MEMORY_OVERRUN"},
    {0x84, "QLERR_UHFRFID_MEMORY_LOCKED"},
    {0x8B, "QLERR_UHFRFID_INSUFFICIENT_POWER"},
    {0x8F, "QLERR_UHFRFID_NONSPECIFIC"},
    {0xA0, "QLERR_UHFRFID_READONLY_ADDRESS"},
    {0xB0, "QLERR_UHFRFID_PCIE_RADIO_DISABLED"},
    {0xFE, "QLERR_UHFRFID_SECURITY_FAILURE"},
    {0xFF, "QLERR_UHFRFID_HW_FAILURE"},
};

const char* TextOfStatus(int status) {
    const auto row = kTextsOfStatuses.find(status);
    return row == kTextsOfStatuses.end() ? "Unknown Error" : row->second;
}

class RfidFunction : public ::testing::TestWithParam<ReaderFunction> {
  protected:
    // A round has begun, so that there is a next tag.
    void SetUp() override {
        ASSERT_DONE(ReaderFunctions().front().call(session.handle));
        session.reader.TakeReports();
    }

    QLerr Call() { return GetParam().call(session.handle); }

    RfidSession session;
};

INSTANTIATE_TEST_SUITE_P(Every, RfidFunction, ::testing::ValuesIn(ReaderFunctions()), NameOfFunction);

TEST_P(RfidFunction, GivesEveryStatusOfTheReaderItsCodeAndText) {
    for (int status = 1; status <= 0xFF; ++status) {
        SCOPED_TRACE(status);
        session.reader->AddFault(UhfFault::Status(static_cast<std::uint8_t>(status)));
        ASSERT_FAILURE(Call(), static_cast<QLerr>(0x10000 + status), TextOfStatus(status));
        // Nothing is tried a second time.
        ASSERT_EQ(session.reader.TakeReports(), Reports{Report(GetParam().frame)});
    }
    EXPECT_DONE(Call());
}

class RfidExchange : public ::testing::Test {
  protected:
    // For each function, with a tag that is alive and a round that has begun.
    template <typename Body>
    void ForEachFunction(const Body& body) {
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            session.reader->With([](sim::UhfEngine& engine) { engine.Execute(Bytes{0x43, 3, 1}); });
            body(function);
            EXPECT_DONE(function.call(session.handle));
        }
    }

    RfidSession session;
};

TEST_F(RfidExchange, SendsTheFrameOfEachFunctionInAWholeReportAndLeavesARecordOfSuccess) {
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        // An older error does not show through.
        ASSERT_EQ(QLUHFRFID_SetPower(session.handle, 256), QLERR_INVALID_ARGUMENT);
        EXPECT_DONE(function.call(session.handle));
        EXPECT_EQ(session.reader.TakeReports(), Reports{Report(function.frame)});
    }
}

TEST_F(RfidExchange, RefusesAReplyToAnotherCommandOrOfAnotherLength) {
    ForEachFunction([&](const ReaderFunction& function) {
        const sim::UhfCommandShape& own = *sim::FindUhfCommand(sim::Raw(function.command));
        std::vector<UhfFault> faults{UhfFault::Short(1), UhfFault::Short(2)};
        for (const sim::UhfCommandShape& other : sim::kUhfCommands) {
            if (other.code != own.code) {
                faults.push_back(UhfFault::ReplyCode(sim::ReplyCode(other.code)));
            }
        }
        for (const int length : {0, 1, 2, own.replyLength - 1, own.replyLength + 1, 0x40, 0x64, 0x80, 0xFF}) {
            if (length != own.replyLength) {
                faults.push_back(UhfFault::LengthByte(static_cast<std::uint8_t>(length)));
            }
        }
        for (const std::uint8_t status : Bytes{0x00, 0x84}) {
            for (const UhfFault& fault : faults) {
                SCOPED_TRACE(fault.Text() + ", status " + std::to_string(status));
                // With a status of its choice the reader does not carry the command out: a tag can be killed once only.
                session.reader->AddFault(UhfFault::Status(status));
                session.reader->AddFault(fault);
                EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED");
            }
        }
    });
}

TEST_F(RfidExchange, FailsWhenTheReportIsRefusedAndDoesNotTryAgain) {
    ForEachFunction([&](const ReaderFunction& function) {
        session.reader.TakeReports();
        session.reader->AddFault(UhfFault::Refuse());
        EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
        EXPECT_EQ(session.reader.TakeReports(), Reports{Report(function.frame)});
    });
}

// ---- before there is a reader ----

TEST(RfidFunctions, KnowNoLockBeforeTheFirstOpeningAndNoReaderAfterClosing) {
    const auto expectFailures = [](void* handle, QLerr code, const char* text, const char* name) {
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            EXPECT_FAILURE(function.call(handle), code, function.usesNames ? name : text);
        }
        EXPECT_FAILURE(QLUHFRFID_CloseReader(handle), code, name);
    };
    const auto expectNoReader = [&](void* handle) {
        constexpr const char* kNoReader = "QLERR_UHFRFID_INVALID_HANDLE";
        expectFailures(handle, QLERR_UHFRFID_INVALID_HANDLE, kNoReader, kNoReader);
    };
    int something = 0;
    for (void* const handle :
         {static_cast<void*>(nullptr), static_cast<void*>(INVALID_HANDLE_VALUE), static_cast<void*>(&something)}) {
        expectFailures(handle, QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM ", "QLERR_UHFRFID_SYSTEM");
    }

    const RfidReaderTurn turn;
    TestReader reader;
    OpenedReader opened;
    expectNoReader(nullptr);
    expectNoReader(INVALID_HANDLE_VALUE);
    void* const handle = opened.Release();
    EXPECT_DONE(QLUHFRFID_CloseReader(handle));
    expectNoReader(handle);
    EXPECT_EQ(reader.TakeReports(), Reports{});
}

}  // namespace
}  // namespace quarlin::test
