// SPDX-License-Identifier: Apache-2.0
// The reader is unplugged before, in the middle of and after a transfer, and plugged in again.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <functional>

#include "rfid/other_thread_win.h"
#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNotSent = "QLERR_UHFRFID_COMMAND_SEND";
constexpr const char* kNotReceived = "QLERR_UHFRFID_COMMAND_RECEIVE";
void* const kUntouched = reinterpret_cast<void*>(0x5EED);

void ExpectNotSent(void* handle) {
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        EXPECT_FAILURE(function.call(handle), QLERR_UHFRFID_COMMAND_SEND, kNotSent);
    }
}

TEST(RfidUnplugged, ReaderRefusesEveryCommandUntilItIsClosedAndOpenedAgain) {
    RfidSession session;
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
    session.reader->Unplug();
    session.reader.TakeReports();
    ExpectNotSent(session.handle);
    // It counts as open.
    void* second = kUntouched;
    EXPECT_FAILURE(QLUHFRFID_OpenReader(&second), QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
    EXPECT_EQ(second, kUntouched);
    // Back in its place it is another device for the handle.
    session.reader->Plug();
    ExpectNotSent(session.handle);
    EXPECT_EQ(session.reader.TakeReports(), Reports{});
    session.handle.Reopen();
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        EXPECT_DONE(function.call(session.handle));
    }
}

TEST(RfidUnplugged, ReaderIsNotFoundAfterItWasClosed) {
    RfidSession session;
    session.reader->Unplug();
    EXPECT_DONE(QLUHFRFID_CloseReader(session.handle.Release()));
    void* handle = kUntouched;
    EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_DEVICENOTFOUND, "QLERR_UHFRFID_DEVICENOTFOUND");
    EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
    session.reader->Plug();
    const OpenedReader again;
    EXPECT_DONE(QLUHFRFID_SetPower(again, 5));
}

// The call in the middle of which the reader goes.
using InTheMiddle = std::function<Failure(RfidSession& session, const ReaderFunction& function)>;

void ExpectFailureOfEach(const InTheMiddle& call, const Failure& expected) {
    RfidSession session;
    for (const ReaderFunction& function : OneFunctionPerCommand()) {
        SCOPED_TRACE(function.name);
        session.reader.TakeReports();
        EXPECT_EQ(call(session, function), expected);
        EXPECT_EQ(session.reader.TakeReports(), Reports{Report(function.frame)});
        EXPECT_FAILURE(function.call(session.handle), QLERR_UHFRFID_COMMAND_SEND, kNotSent);
        EXPECT_EQ(session.reader.TakeReports(), Reports{});
        session.reader->Plug();
        session.handle.Reopen();
        EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
    }
}

TEST(RfidUnplugged, InTheMiddleOfACommandFailsToSendIt) {
    ExpectFailureOfEach(
        [](RfidSession& session, const ReaderFunction& function) {
            session.reader->AddFault(UhfFault::UnplugDuring());
            const QLerr result = function.call(session.handle);
            const Failure record = FetchLastError();
            EXPECT_EQ(result, record.code);
            return record;
        },
        {QLERR_UHFRFID_COMMAND_SEND, kNotSent});
}

TEST(RfidUnplugged, InsteadOfAReplyFailsToReceiveIt) {
    const ReplyWatch watch;
    int waits = 1;  // two commands are replied to, or not, for each function
    ExpectFailureOfEach(
        [&](RfidSession& session, const ReaderFunction& function) {
            session.reader->AddFault(UhfFault::Silence());
            OtherThread caller([&] { return function.call(session.handle); });
            watch.AwaitWaits(waits);
            waits += 2;
            session.reader->Unplug();
            return caller.Outcome();
        },
        {QLERR_UHFRFID_COMMAND_RECEIVE, kNotReceived});
}

// The command is done, whether or not its reply arrives.
TEST(RfidUnplugged, InsteadOfAReplyLeavesTheTagAsTheCommandMadeIt) {
    const ReplyWatch watch;
    RfidSession session;
    session.reader->AddFault(UhfFault::Silence());
    Password password = KillPassword();
    OtherThread caller([&] { return QLUHFRFID_KillTag(session.handle, password.Data(), password.Length()); });
    watch.AwaitWaits(1);
    session.reader->Unplug();
    EXPECT_EQ(caller.Outcome(), (Failure{QLERR_UHFRFID_COMMAND_RECEIVE, kNotReceived}));
    EXPECT_TRUE(session.reader->With([](const sim::UhfEngine& engine) { return engine.Field().at(0).tag.IsKilled(); }));
}

// A reader that was plugged in anew has lost its round, its selection and its settings.
TEST(RfidReplugged, ReaderBeginsAnew) {
    RfidSession session;
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
    EXPECT_DONE(ReaderFunctions().front().call(session.handle));
    for (int i = 0; i < 5; ++i) {
        session.reader->Unplug();
        session.reader->Plug();
        session.handle.Reopen();
        unsigned int power = 0;
        EXPECT_DONE(QLUHFRFID_GetPower(session.handle, &power));
        EXPECT_EQ(power, 27U);
        char tagId[64];
        int length = sizeof tagId;
        int signal = 0;
        EXPECT_FAILURE(QLUHFRFID_GetNextTag(session.handle, tagId, &length, &signal), QLERR_UHFRFID_NO_TAGS,
                       "QLERR_UHFRFID_NO_TAGS");
    }
}

}  // namespace
}  // namespace quarlin::test
