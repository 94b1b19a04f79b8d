// SPDX-License-Identifier: Apache-2.0
#include "barcode_parts.h"

#include "bcr/device_list.h"

#include <gtest/gtest.h>

namespace quarlin::test {
namespace {

using bcr::BarcodeEngineKind;
using Calls = std::vector<std::string>;

class ScriptedMachine final : public bcr::MachineFacts {
  public:
    bcr::ComputerModel Model() override {
        ++modelAsked;
        return model;
    }
    bcr::ScannerHardware Hardware() override {
        ++hardwareAsked;
        return hardware;
    }

    bcr::ComputerModel model = bcr::ComputerModel::kJr41;
    bcr::ScannerHardware hardware = bcr::ScannerHardware::kEngine;
    int modelAsked = 0;
    int hardwareAsked = 0;
};

// Shows its devices from a certain look on.
class ScriptedDevices final : public bcr::AttachedDevices {
  public:
    std::vector<std::wstring> HidPaths(std::uint32_t most) override {
        EXPECT_EQ(most, 100U);
        ++looks;
        return looks >= hidFrom ? paths : std::vector<std::wstring>{L"\\\\?\\hid#vid_046a&pid_0023#1"};
    }
    std::vector<std::wstring> PortNames() override { return ports; }

    std::vector<std::wstring> paths;
    std::vector<std::wstring> ports;
    int hidFrom = 1;
    int looks = 0;
};

class BarcodeDeviceListTest : public ::testing::Test {
  protected:
    BarcodeDeviceListTest() {
        engine = {};
        listedDevices.clear();
        libraries_.Offer(HoneywellOfTheTest());
    }

    MemoryLibraries libraries_;
    ScriptedSystem system_;
    bcr::EngineShare share_{system_};
    ScriptedEmulator emulator_;
    ScriptedDevices attached_;
    ScriptedMachine machine_;
    bcr::DeviceList list_{{libraries_, share_, emulator_, attached_, machine_, nullptr}};
};

TEST_F(BarcodeDeviceListTest, AScannerThatDoesNotShowUpIsLookedForFifteenTimes) {
    EXPECT_TRUE(list_.Make().empty());
    EXPECT_EQ(attached_.looks, 15);
    EXPECT_EQ(TakeCalls(), Calls(14, "pause 150"));
    EXPECT_EQ(libraries_.asked.size(), 0U);

    EXPECT_TRUE(list_.Make().empty());
    EXPECT_EQ(attached_.looks, 30);
}

TEST_F(BarcodeDeviceListTest, TheMachineIsAskedOnce) {
    list_.Make();
    list_.Make();
    EXPECT_EQ(machine_.modelAsked, 1);
    EXPECT_EQ(machine_.hardwareAsked, 1);
}

TEST_F(BarcodeDeviceListTest, AUsbScannerIsTakenFromTheRoundInWhichItShowsUp) {
    attached_.paths = {L"\\\\?\\hid#vid_067e&pid_0809#7&1#{4d1e55b2}"};
    attached_.hidFrom = 3;
    const auto devices = list_.Make();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices.front()->kind, BarcodeEngineKind::kIntermecUsb0809);
    EXPECT_EQ(devices.front()->address.name, "\\\\?\\hid#vid_067e&pid_0809#7&1#{4d1e55b2}");
    EXPECT_EQ(TakeCalls(), Calls(2, "pause 150"));
    EXPECT_EQ(list_.Make().data(), devices.data());
    EXPECT_EQ(attached_.looks, 3);
}

TEST_F(BarcodeDeviceListTest, AUsbScannerComesBeforeOneOnAPort) {
    attached_.paths = {L"\\\\?\\hid#vid_067e&pid_0801&col02#7"};
    attached_.ports = {L"Scanner VID_067E (COM3)"};
    EXPECT_EQ(list_.Make().front()->kind, BarcodeEngineKind::kIntermecUsb0801);
    list_.Free();
    attached_.paths.clear();
    const auto devices = list_.Make();
    EXPECT_EQ(devices.front()->kind, BarcodeEngineKind::kIntermecSerial);
    EXPECT_EQ(devices.front()->address.port, 3);
}

TEST_F(BarcodeDeviceListTest, AnExternalScannerMayBeOfEitherFamily) {
    list_.AllowExternal(true);
    listedDevices = {"COM7"};
    const auto devices = list_.Make();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices.front()->kind, BarcodeEngineKind::kHoneywell);
    EXPECT_EQ(devices.front()->info.iDeviceType, 0);
    EXPECT_STREQ(devices.front()->info.deviceName, "Barcode Reader");
    EXPECT_EQ(machine_.modelAsked + machine_.hardwareAsked, 0);
    EXPECT_EQ(TakeCalls().back(), "Deinitialize");
    EXPECT_EQ(libraries_.loads, libraries_.frees);
}

TEST_F(BarcodeDeviceListTest, TheFlagCountsWhenTheListIsMade) {
    attached_.paths = {L"\\\\?\\hid#vid_067e&pid_0809#7"};
    EXPECT_EQ(list_.Make().front()->info.iDeviceType, 1);
    list_.AllowExternal(true);
    EXPECT_EQ(list_.Make().front()->info.iDeviceType, 1);
    list_.Free();
    EXPECT_EQ(list_.Make().front()->info.iDeviceType, 0);
    list_.AllowExternal(false);
    list_.Free();
    EXPECT_EQ(list_.Make().front()->info.iDeviceType, 1);
}

TEST_F(BarcodeDeviceListTest, AMissingLibraryIsRaisedAndLeavesNoList) {
    machine_.hardware = bcr::ScannerHardware::kMiniDb;
    libraries_.present = false;
    for (int i = 0; i < 2; ++i) {
        try {
            list_.Make();
            FAIL();
        } catch (const QuarlinException& failure) {
            EXPECT_STREQ(failure.what(), "Unable to load HEDC_RS.dll.");
        }
    }
    EXPECT_EQ(TakeCalls(), Calls{});
    libraries_.present = true;
    listedDevices = {"COM7"};
    EXPECT_EQ(list_.Make().size(), 1U);
}

TEST_F(BarcodeDeviceListTest, ABuiltInScannerIsNotLookedFor) {
    machine_.hardware = bcr::ScannerHardware::kIntermecBuiltIn;
    EXPECT_EQ(list_.Make().front()->kind, BarcodeEngineKind::kIntermecBuiltIn);
    EXPECT_EQ(attached_.looks, 0);
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(BarcodeDeviceListTest, ADeviceOfNoKindHasNoEngine) {
    const bcr::ScannerDevice device(bcr::ExternalScanner());
    try {
        list_.MakeEngine(device);
        FAIL();
    } catch (const QuarlinException& failure) {
        EXPECT_EQ(failure.code, QLERR_OP_UNSUPPORTED);
        EXPECT_STREQ(failure.what(), "The barcode device is nothing.");
    }
}

}  // namespace
}  // namespace quarlin::test
