// SPDX-License-Identifier: Apache-2.0
// Finding, opening and closing the reader, with every step that the system can refuse.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "rfid_search/stand_in_platform_win.h"
#include "support/last_error.h"

namespace quarlin::test {
namespace {

using Calls = std::vector<std::string>;

constexpr const char* kReader = R"(\\?\hid#vid_24e9&pid_3993#1)";
// Neither null nor invalid, to see whether it is written.
void* const kUntouched = reinterpret_cast<void*>(0x5EED);

StandInInterface Other(StandInInterface device = {}) {
    device.path = R"(\\?\hid#other)";
    return device;
}

StandInInterface Reader(StandInInterface device = {}) {
    device.path = kReader;
    return device;
}

// A success of this family leaves a record.
#define EXPECT_DONE(call)                                                      \
    do {                                                                       \
        EXPECT_EQ((call), QLERR_OK);                                           \
        EXPECT_EQ(FetchLastError(), (Failure{QLERR_OK, "QLERR_OK"})) << #call; \
    } while (false)

struct RfidSearch : testing::Test {
    StandInPlatform platform;

    // The reader that opens, after all that must not.
    void ExpectOpens() {
        void* handle = kUntouched;
        EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
        EXPECT_EQ(platform.OpenHandles(), std::set<HANDLE>{handle});
        EXPECT_EQ(platform.ListsAndReportsInUse(), 0);
        EXPECT_DONE(QLUHFRFID_CloseReader(handle));
        EXPECT_TRUE(platform.OpenHandles().empty());
    }

    void ExpectFails(QLerr code, const char* text) {
        void* handle = kUntouched;
        EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), code, text);
        EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(platform.OpenHandles().empty());
        EXPECT_EQ(platform.ListsAndReportsInUse(), 0);
        unsigned int power = 0;
        EXPECT_FAILURE(QLUHFRFID_GetPower(kUntouched, &power), QLERR_UHFRFID_INVALID_HANDLE,
                       "QLERR_UHFRFID_INVALID_HANDLE");
    }
};

TEST_F(RfidSearch, OpensTheReaderForReadingThenForBoth) {
    platform.interfaces = {Other({.product = 1}), Reader()};
    void* handle = kUntouched;
    EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
    EXPECT_EQ(platform.Calls(),
              (Calls{"list", R"(open \\?\hid#other r)", "close 1", std::string("open ") + kReader + " r", "close 2",
                     std::string("open ") + kReader + " rw", "destroy list"}));
    EXPECT_EQ(platform.OpenHandles(), std::set<HANDLE>{handle});
    EXPECT_EQ(platform.ListsAndReportsInUse(), 0);
}

TEST_F(RfidSearch, TakesTheFirstOfTwoReaders) {
    platform.interfaces = {Reader(), Reader()};
    platform.interfaces[1].path += "other";
    ExpectOpens();
    const Calls calls = platform.Calls();
    EXPECT_EQ(std::ranges::count(calls, std::string("open ") + kReader + " rw"), 1);
    EXPECT_EQ(std::ranges::count_if(calls, [](const std::string& call) { return call.starts_with("open"); }), 2);
}

struct Passed {
    const char* name;
    StandInInterface device;
};

void PrintTo(const Passed& passed, std::ostream* out) {
    *out << passed.name;
}

class RfidSearchPassesOver : public RfidSearch, public testing::WithParamInterface<Passed> {};

TEST_P(RfidSearchPassesOver, AndClosesIt) {
    platform.interfaces = {Other(GetParam().device)};
    ExpectFails(QLERR_UHFRFID_DEVICENOTFOUND, "QLERR_UHFRFID_DEVICENOTFOUND");
    platform.interfaces.push_back(Reader());
    ExpectOpens();
}

INSTANTIATE_TEST_SUITE_P(Interface, RfidSearchPassesOver,
                         testing::Values(Passed{"OfAnotherProduct", {.product = 0x3994}},
                                         Passed{"OfAnotherVendor", {.vendor = 0x24E8}},
                                         Passed{"WhoseSizeComesAtOnce", {.sizeQueryError = ERROR_SUCCESS}},
                                         Passed{"WhoseSizeIsNotTold", {.sizeQueryError = ERROR_INVALID_DATA}},
                                         Passed{"WhosePathIsNotTold", {.tellsPath = false}},
                                         Passed{"ThatDoesNotOpen", {.opensForReading = false}},
                                         Passed{"ThatDoesNotSayWhatItIs", {.tellsAttributes = false}}),
                         [](const auto& test) { return test.param.name; });

TEST_F(RfidSearch, FindsNothingOnAMachineWithoutDevices) {
    ExpectFails(QLERR_UHFRFID_DEVICENOTFOUND, "QLERR_UHFRFID_DEVICENOTFOUND");
}

TEST_F(RfidSearch, FailsWhenTheDevicesCannotBeListed) {
    platform.interfaces = {Reader()};
    platform.lists = false;
    ExpectFails(QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
    EXPECT_EQ(platform.Calls(), Calls{"list"});
}

class RfidSearchEndsAtAReader : public RfidSearch, public testing::WithParamInterface<Passed> {};

// A second reader is not tried.
TEST_P(RfidSearchEndsAtAReader, AndLeavesNothingOpen) {
    platform.interfaces = {Other(GetParam().device), Reader()};
    ExpectFails(QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
    platform.interfaces.erase(platform.interfaces.begin());
    ExpectOpens();
}

INSTANTIATE_TEST_SUITE_P(Interface, RfidSearchEndsAtAReader,
                         testing::Values(Passed{"ThatDoesNotOpenForBoth", {.opensForBoth = false}},
                                         Passed{"WithoutReports", {.tellsReports = false}},
                                         Passed{"WithoutCapabilities", {.tellsCapabilities = false}}),
                         [](const auto& test) { return test.param.name; });

TEST_F(RfidSearch, SendsReportsOfTheSizeOfTheReaderThatWasOpenedLast) {
    platform.interfaces = {Reader({.outputReportLength = 64})};
    ExpectOpens();
    platform.interfaces = {Reader({.outputReportLength = 9, .tellsCapabilities = false})};
    ExpectFails(QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
    platform.interfaces = {Other({.product = 1, .outputReportLength = 10}), Reader({.outputReportLength = 32})};
    void* handle = nullptr;
    EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
    platform.replies = {{0xC1, 3, 0}};
    platform.ForgetCalls();
    EXPECT_DONE(QLUHFRFID_SetPower(handle, 23));
    EXPECT_EQ(platform.Calls(), (Calls{"send 32: C0 03 17", "read 1024", "reply"}));
}

TEST_F(RfidSearch, RefusesASecondReaderAndKeepsTheFirst) {
    platform.interfaces = {Reader()};
    void* first = nullptr;
    EXPECT_DONE(QLUHFRFID_OpenReader(&first));
    platform.ForgetCalls();
    void* second = kUntouched;
    EXPECT_FAILURE(QLUHFRFID_OpenReader(&second), QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
    EXPECT_FAILURE(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT");
    EXPECT_EQ(second, kUntouched);
    EXPECT_EQ(platform.Calls(), Calls{});
    platform.replies = {{0xC1, 3, 0}};
    EXPECT_DONE(QLUHFRFID_SetPower(first, 1));
}

TEST_F(RfidSearch, AHandleThatTheSystemRefusesToCloseLeavesTheReaderOpen) {
    platform.interfaces = {Reader()};
    void* handle = nullptr;
    EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
    for (void* const none : {static_cast<void*>(nullptr), static_cast<void*>(INVALID_HANDLE_VALUE)}) {
        platform.ForgetCalls();
        EXPECT_FAILURE(QLUHFRFID_CloseReader(none), QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
        EXPECT_EQ(platform.Calls(), Calls{});
    }
    platform.closes = false;
    EXPECT_FAILURE(QLUHFRFID_CloseReader(handle), QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
    platform.closes = true;
    platform.replies = {{0xC1, 3, 0}};
    EXPECT_DONE(QLUHFRFID_SetPower(handle, 1));
    EXPECT_DONE(QLUHFRFID_CloseReader(handle));
    EXPECT_FAILURE(QLUHFRFID_SetPower(handle, 1), QLERR_UHFRFID_INVALID_HANDLE, "QLERR_UHFRFID_INVALID_HANDLE");
}

TEST_F(RfidSearch, AReaderThatIsGoneRefusesCommandsUntilItIsClosedAndOpenedAgain) {
    platform.interfaces = {Reader()};
    void* handle = nullptr;
    EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
    EXPECT_FAILURE(QLUHFRFID_SetPower(handle, 1), QLERR_UHFRFID_COMMAND_RECEIVE, "QLERR_UHFRFID_COMMAND_RECEIVE");
    platform.sends = false;
    EXPECT_FAILURE(QLUHFRFID_SetPower(handle, 1), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
    platform.sends = true;
    EXPECT_DONE(QLUHFRFID_CloseReader(handle));
    ExpectOpens();
}

}  // namespace
}  // namespace quarlin::test
