// SPDX-License-Identifier: Apache-2.0
// The list of devices and what the functions tell about the current one.
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "barcode/intermec_test_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

constexpr char kName[] = "Intermec EA15/EA21";

QLBCR_DEVICE_INFO Filled() {
    QLBCR_DEVICE_INFO info;
    std::memset(static_cast<void*>(&info), 0x55, sizeof(info));
    return info;
}

bool IsFilled(const QLBCR_DEVICE_INFO& info) {
    const QLBCR_DEVICE_INFO filled = Filled();
    return std::memcmp(&info, &filled, sizeof(info)) == 0;
}

bool IsZero(const QLBCR_DEVICE_INFO& info) {
    const QLBCR_DEVICE_INFO zero{};
    return std::memcmp(&info, &zero, sizeof(info)) == 0;
}

void ExpectBuiltIn(const QLBCR_DEVICE_INFO& info) {
    EXPECT_EQ(info.index, 0);
    EXPECT_EQ(info.iDeviceType, 1);
    EXPECT_STREQ(info.deviceName, kName);
    EXPECT_EQ(info.linkKind, 2);
    EXPECT_EQ(info.linkFlag, 1);
    for (const std::uint8_t byte : info.reserved) {
        EXPECT_EQ(byte, 0);
    }
}

class IntermecList : public IntermecTest {};

TEST_F(IntermecList, HoldsTheMachinesOwnScanner) {
    std::array<QLBCR_DEVICE_INFO, 3> devices{Filled(), Filled(), Filled()};
    for (const int room : {1, 2, 3, 1000}) {
        devices.fill(Filled());
        int count = room;
        EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(devices.data(), &count));
        EXPECT_EQ(count, 1) << room;
        ExpectBuiltIn(devices[0]);
        EXPECT_TRUE(IsFilled(devices[1])) << room;
    }
}

TEST_F(IntermecList, IsMadeWithoutTheEngine) {
    int count = 0;
    EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(machine_.Honeywell().TakeTexts(), Texts{});
    EXPECT_EQ(GetModuleHandleW(L"ISDC_RS.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"HEDC_RS.dll"), nullptr);
    EXPECT_EQ(BarcodeState(), 0);
}

TEST_F(IntermecList, IsCountedAlone) {
    QLBCR_DEVICE_INFO device = Filled();
    int count = 0;
    EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(&device, &count));
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(IsFilled(device));
    for (const int room : {0, 1, 5}) {
        count = room;
        EXPECT_SUCCESS(QLBCR_GetBarcodeDevices(nullptr, &count));
        EXPECT_EQ(count, 1);
        count = room;
        EXPECT_SUCCESS(QLBCR_dotNet_GetNoOfDevices(&count));
        EXPECT_EQ(count, 1);
    }
}

TEST_F(IntermecList, NamesItsDevicesForAsLongAsTheLibraryLives) {
    QLBCR_DEVICE_INFO before{};
    int count = 1;
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(&before, &count));
    ASSERT_SUCCESS(QLBCR_Initialize());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_STREQ(before.deviceName, kName);
    QLBCR_DEVICE_INFO after{};
    ASSERT_SUCCESS(QLBCR_GetBarcodeDevices(&after, &count));
    ExpectBuiltIn(after);
}

TEST_F(IntermecList, TellsTheTypeAndTheStateOfTheCurrentDevice) {
    ASSERT_SUCCESS(QLBCR_Initialize());
    unsigned int type = 77;
    unsigned int enabled = 77;
    EXPECT_SUCCESS(QLBCR_GetDeviceType(&type));
    EXPECT_EQ(type, 1U);
    EXPECT_SUCCESS(QLBCR_IsEnabled(&enabled));
    EXPECT_EQ(enabled, 0U);
    ASSERT_SUCCESS(QLBCR_Enable());
    EXPECT_SUCCESS(QLBCR_IsEnabled(&enabled));
    EXPECT_EQ(enabled, 1U);
    type = 77;
    EXPECT_SUCCESS(QLBCR_GetDeviceType(&type));
    EXPECT_EQ(type, 1U);
}

TEST_F(IntermecList, NamesTheCurrentDevice) {
    ASSERT_SUCCESS(QLBCR_Initialize());
    unsigned int size = 0;
    EXPECT_SUCCESS(QLBCR_GetDeviceName(nullptr, &size));
    EXPECT_EQ(size, sizeof(kName));
    for (const unsigned int room : {static_cast<unsigned int>(sizeof(kName)), 30U, 40U}) {
        std::string buffer(40, '#');
        size = room;
        EXPECT_SUCCESS(QLBCR_GetDeviceName(buffer.data(), &size));
        EXPECT_EQ(size, sizeof(kName));
        EXPECT_EQ(buffer, std::string(kName, sizeof(kName)) + std::string(40 - sizeof(kName), '#'));
    }
    for (const unsigned int room : {0U, 1U, static_cast<unsigned int>(sizeof(kName) - 1)}) {
        std::string buffer(40, '#');
        size = room;
        EXPECT_FAILURE(QLBCR_GetDeviceName(buffer.data(), &size), QLERR_BUFFER_OVERFLOW, "Buffer size too small");
        EXPECT_EQ(size, room);
        EXPECT_EQ(buffer, std::string(40, '#'));
    }
    // A size that no buffer has.
    std::string buffer(40, '#');
    size = std::numeric_limits<unsigned int>::max();
    EXPECT_SUCCESS(QLBCR_GetDeviceName(buffer.data(), &size));
    EXPECT_EQ(size, sizeof(kName));
}

TEST_F(IntermecList, IsChosenFromAndInitialisedByChoosing) {
    EXPECT_SUCCESS(QLBCR_SelectDevice(0));
    EXPECT_EQ(Engine().TakeTexts(), kInitializeCalls);
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_SUCCESS(QLBCR_SelectDevice(0));
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    EXPECT_SUCCESS(QLBCR_SelectDevice(0));
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(BarcodeState(), 2);
}

// As .NET's marshaller does; the buffer is the system runtime's.
void FreeByRuntime(void* buffer) {
    SystemFunction<void(void*)>("msvcrt.dll", "free")(buffer);
}
using DotNetList = std::unique_ptr<QLBCR_DEVICE_INFO, decltype(&FreeByRuntime)>;

TEST_F(IntermecList, IsGivenToDotNetInABufferOfItsOwn) {
    for (const int room : {1, 2, 5}) {
        int result = 77;
        int count = room;
        const DotNetList list(QLBCR_dotNet_GetBarcodeDevices(&result, &count), &FreeByRuntime);
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(FetchLastError(), Failure{});
        EXPECT_EQ(result, 0);
        EXPECT_EQ(count, 1);
        ExpectBuiltIn(*list);
        for (int i = 1; i < room; ++i) {
            EXPECT_TRUE(IsZero(list.get()[i])) << i;
        }
    }
}

TEST_F(IntermecList, IsGivenToDotNetWithoutRoomAsItsNumber) {
    int result = 77;
    int count = 0;
    const DotNetList list(QLBCR_dotNet_GetBarcodeDevices(&result, &count), &FreeByRuntime);
    EXPECT_NE(list, nullptr);
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(result, 0);
    EXPECT_EQ(count, 1);
}

TEST_F(IntermecList, IsRefusedToDotNet) {
    int result = 77;
    int count = -1;
    EXPECT_EQ(QLBCR_dotNet_GetBarcodeDevices(&result, &count), nullptr);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_BUFFER_OVERFLOW, "Buffer size too small"}));
    EXPECT_EQ(result, 77);
    EXPECT_EQ(count, 0);

    EXPECT_EQ(QLBCR_dotNet_GetBarcodeDevices(&result, nullptr), nullptr);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "pNumDevices cannot be NULL"}));
    EXPECT_EQ(result, 77);

    count = 5;
    EXPECT_EQ(QLBCR_dotNet_GetBarcodeDevices(nullptr, &count), nullptr);
    EXPECT_EQ(FetchLastError(), (Failure{QLERR_INVALID_ARGUMENT, "pResult cannot be NULL"}));
    EXPECT_EQ(count, 0);

    EXPECT_EQ(QLBCR_dotNet_GetBarcodeDevices(nullptr, nullptr), nullptr);
    EXPECT_EQ(FetchLastError().code, QLERR_INVALID_ARGUMENT);
}

// More than any process has memory for.
TEST_F(IntermecList, IsRefusedToDotNetWhenThereIsNoMemory) {
    int result = 77;
    int count = std::numeric_limits<int>::max();
    if (QLBCR_DEVICE_INFO* const list = QLBCR_dotNet_GetBarcodeDevices(&result, &count)) {
        FreeByRuntime(list);
        EXPECT_EQ(count, 1);
        return;
    }
    EXPECT_NE(FetchLastError(), Failure{});
    EXPECT_EQ(count, 0);
    EXPECT_EQ(result, 77);
}

}  // namespace
}  // namespace quarlin::test
