// SPDX-License-Identifier: Apache-2.0
// Finding the reader among other devices; opening and closing it; handles that are none.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <setupapi.h>
extern "C" {
#include <hidsdi.h>
}

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kBadHandle = "QLERR_UHFRFID_INVALID_HANDLE";
constexpr const char* kNotFound = "QLERR_UHFRFID_DEVICENOTFOUND";
// Neither null nor invalid, to see whether it is written.
void* const kUntouched = reinterpret_cast<void*>(0x5EED);

UhfSettings Other(std::uint16_t vendor, std::uint16_t product) {
    // Nothing of it would do for the reader.
    UhfSettings settings = WithReports(8, 8);
    settings.vendor = vendor;
    settings.product = product;
    return settings;
}

UhfSettings Named(const std::string& instance) {
    UhfSettings settings = TwoTags();
    settings.instance = instance;
    return settings;
}

// Where in the system's list of HID devices a part of a path comes; throws std::runtime_error when it does not.
std::size_t PlaceOf(const std::string& part) {
    GUID hidClass{};
    HidD_GetHidGuid(&hidClass);
    const HDEVINFO list = SetupDiGetClassDevsA(&hidClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA device{};
    device.cbSize = sizeof device;
    std::vector<std::string> paths;
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(list, nullptr, &hidClass, i, &device); ++i) {
        alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) std::array<char, 1024> memory{};
        auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(memory.data());
        detail->cbSize = sizeof *detail;
        SetupDiGetDeviceInterfaceDetailA(list, &device, detail, memory.size(), nullptr, nullptr);
        std::string path = detail->DevicePath;
        std::ranges::transform(path, path.begin(), [](unsigned char c) { return std::tolower(c); });
        paths.push_back(std::move(path));
    }
    SetupDiDestroyDeviceInfoList(list);
    const auto found = std::ranges::find_if(paths, [&](const std::string& p) { return p.find(part) != p.npos; });
    if (found == paths.end()) {
        throw std::runtime_error("no device is called " + part);
    }
    return static_cast<std::size_t>(found - paths.begin());
}

TEST(RfidOpen, WithoutAReaderFindsNoneAndGivesTheInvalidHandle) {
    const RfidReaderTurn turn;
    for (int i = 0; i < 2; ++i) {
        void* handle = kUntouched;
        EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_DEVICENOTFOUND, kNotFound);
        EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
    }
}

TEST(RfidOpen, PassesOverOtherDevices) {
    const RfidReaderTurn turn;
    std::array<TestReader, 5> others{TestReader(Other(0x24E9, 0x3992)), TestReader(Other(0x24E9, 0x3994)),
                                     TestReader(Other(0x24E8, 0x3993)), TestReader(Other(0x3993, 0x24E9)),
                                     TestReader(Other(0x24E9, 0x9339))};
    void* handle = kUntouched;
    EXPECT_FAILURE(QLUHFRFID_OpenReader(&handle), QLERR_UHFRFID_DEVICENOTFOUND, kNotFound);
    EXPECT_EQ(handle, INVALID_HANDLE_VALUE);

    TestReader reader;
    const OpenedReader opened;
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        EXPECT_DONE(function.call(opened));
        // As long as the reader's own reports are.
        EXPECT_EQ(reader.TakeReports(), Reports{Report(function.frame)});
    }
    for (TestReader& other : others) {
        EXPECT_EQ(other.TakeReports(), Reports{});
    }
}

// The system lists devices by their names.
TEST(RfidOpen, FindsTheReaderBetweenTwoOthers) {
    const RfidReaderTurn turn;
    TestReader before(Other(0x24E9, 0x3992));
    TestReader reader;
    TestReader after(Other(0x24E9, 0x3994));
    ASSERT_LT(PlaceOf("vid_24e9&pid_3992"), PlaceOf("vid_24e9&pid_3993"));
    ASSERT_LT(PlaceOf("vid_24e9&pid_3993"), PlaceOf("vid_24e9&pid_3994"));
    const OpenedReader opened;
    EXPECT_DONE(QLUHFRFID_SetPower(opened, 5));
    EXPECT_EQ(reader.TakeReports(), Reports{Report("C00305")});
    EXPECT_EQ(before.TakeReports(), Reports{});
    EXPECT_EQ(after.TakeReports(), Reports{});
}

TEST(RfidOpen, TakesTheFirstOfTwoReadersAndLeavesTheOtherAlone) {
    const RfidReaderTurn turn;
    TestReader low(Named("6&2f9a1b0c&0&0001"));
    TestReader high(Named("6&2f9a1b0c&0&0002"));
    const bool lowIsFirst = PlaceOf("6&2f9a1b0c&0&0001") < PlaceOf("6&2f9a1b0c&0&0002");
    TestReader& first = lowIsFirst ? low : high;
    TestReader& second = lowIsFirst ? high : low;
    OpenedReader opened;
    EXPECT_DONE(QLUHFRFID_SetPower(opened, 5));
    EXPECT_EQ(first.TakeReports(), Reports{Report("C00305")});
    EXPECT_EQ(second.TakeReports(), Reports{});
    // The other one does not take the place of the one that is open.
    first->Unplug();
    EXPECT_FAILURE(QLUHFRFID_SetPower(opened, 6), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
    EXPECT_EQ(second.TakeReports(), Reports{});
    opened.Reopen();
    EXPECT_DONE(QLUHFRFID_SetPower(opened, 7));
    EXPECT_EQ(second.TakeReports(), Reports{Report("C00307")});
}

TEST(RfidOpen, ASecondTimeFailsAndTheFirstHandleWorks) {
    RfidSession session;
    void* second = kUntouched;
    EXPECT_FAILURE(QLUHFRFID_OpenReader(&second), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
    EXPECT_EQ(second, kUntouched);
    // Null is looked at first.
    EXPECT_FAILURE(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT");
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
    EXPECT_EQ(session.reader.TakeReports(), Reports{Report("C00305")});
}

TEST(RfidOpen, LeavesARecordOfItsSuccessAndSoDoesClose) {
    const RfidReaderTurn turn;
    const TestReader reader;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT);
        void* handle = kUntouched;
        EXPECT_DONE(QLUHFRFID_OpenReader(&handle));
        ASSERT_EQ(QLUHFRFID_OpenReader(nullptr), QLERR_INVALID_ARGUMENT);
        EXPECT_DONE(QLUHFRFID_CloseReader(handle));
    }
}

TEST(RfidOpen, TakesTheReportSizeOfTheReaderThatIsThere) {
    const RfidReaderTurn turn;
    for (const std::size_t size : {32, 64, 16}) {
        TestReader reader(WithReports(size, 64));
        const OpenedReader opened;
        EXPECT_DONE(QLUHFRFID_SetPower(opened, 5));
        EXPECT_EQ(reader.TakeReports(), Reports{Report("C00305", size)});
    }
}

TEST(RfidClose, BeforeAnyOpeningKnowsNoLock) {
    EXPECT_FAILURE(QLUHFRFID_CloseReader(kUntouched), QLERR_UHFRFID_SYSTEM, "QLERR_UHFRFID_SYSTEM");
}

TEST(RfidClose, ClosesTheHandleOnce) {
    RfidSession session;
    void* const handle = session.handle.Release();
    EXPECT_DONE(QLUHFRFID_CloseReader(handle));
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(handle, &flags));
    EXPECT_FAILURE(QLUHFRFID_CloseReader(handle), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
}

TEST(RfidHandle, ThatIsNoneIsRefusedAndTheReaderStaysOpen) {
    RfidSession session;
    for (void* const none : {static_cast<void*>(nullptr), static_cast<void*>(INVALID_HANDLE_VALUE)}) {
        for (const ReaderFunction& function : ReaderFunctions()) {
            SCOPED_TRACE(function.name);
            EXPECT_FAILURE(function.call(none), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
        }
        EXPECT_FAILURE(QLUHFRFID_CloseReader(none), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
    }
    EXPECT_EQ(session.reader.TakeReports(), Reports{});
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
}

// The handle is not compared with the one that opening gave.
TEST(RfidHandle, ThatTheSystemDoesNotKnowFailsOnItsWayToTheReader) {
    RfidSession session;
    for (const ReaderFunction& function : ReaderFunctions()) {
        SCOPED_TRACE(function.name);
        EXPECT_FAILURE(function.call(kUntouched), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
    }
    EXPECT_FAILURE(QLUHFRFID_CloseReader(kUntouched), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
    EXPECT_EQ(session.reader.TakeReports(), Reports{});
    EXPECT_DONE(QLUHFRFID_SetPower(session.handle, 5));
}

TEST(RfidHandle, OfSomethingElseIsClosedInItsPlace) {
    RfidSession session;
    const UniqueHandle reader(session.handle.Release());
    HANDLE const event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_FAILURE(QLUHFRFID_SetPower(event, 5), QLERR_UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND");
    EXPECT_DONE(QLUHFRFID_CloseReader(event));
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
    EXPECT_TRUE(GetHandleInformation(reader.Get(), &flags));
    EXPECT_FAILURE(QLUHFRFID_SetPower(reader.Get(), 5), QLERR_UHFRFID_INVALID_HANDLE, kBadHandle);
}

// Handles are values: a copy is as good as the first.
TEST(RfidHandle, ThatIsACopyWorks) {
    RfidSession session;
    HANDLE copy = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), session.handle, GetCurrentProcess(), &copy, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    const UniqueHandle owner(copy);
    unsigned int power = 0;
    EXPECT_DONE(QLUHFRFID_GetPower(copy, &power));
    EXPECT_EQ(power, 27U);
}

}  // namespace
}  // namespace quarlin::test
