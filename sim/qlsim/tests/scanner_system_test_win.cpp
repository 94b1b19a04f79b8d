// SPDX-License-Identifier: Apache-2.0
// Scanners that qlsim plays, as a program on the same machine meets them.
#include <gtest/gtest.h>

#include <windows.h>

#include <devguid.h>
#include <setupapi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "../../tests/hid_program_win.h"
#include "../../tests/scanner_library_win.h"
#include "edge/command_pipe_win.h"
#include "emulator/emulator_state.h"
#include "programs_win.h"
#include "support/shared_turn_win.h"

namespace quarlin::sim {
namespace {

using namespace std::string_literals;
using quarlin::test::SharedTurn;
using testing::kPatience;
using testing::Program;
using testing::TemporaryFile;
using Json = nlohmann::json;

// A set of records of this program's own, before any is opened, and the machine's turns to its end.
class OwnMachine final : public ::testing::Environment {
  public:
    OwnMachine() { SetEnvironmentVariableW(L"QLSIM_INSTANCE", std::to_wstring(GetCurrentProcessId()).c_str()); }
    void SetUp() override {
        devices_ = std::make_unique<SharedTurn>(quarlin::test::kScannerDevicesTurn, SharedTurn::Use::kExclusive,
                                                kLongPatience);
        emulator_ = std::make_unique<SharedTurn>(quarlin::test::kScannerEmulatorTurn, SharedTurn::Use::kExclusive,
                                                 kLongPatience);
    }
    void TearDown() override {
        emulator_.reset();
        devices_.reset();
    }

  private:
    static constexpr DWORD kLongPatience = 240000;

    std::unique_ptr<SharedTurn> devices_;
    std::unique_ptr<SharedTurn> emulator_;
};

::testing::Environment* const kOwnMachine = ::testing::AddGlobalTestEnvironment(new OwnMachine);

// The names of the ports in the list of devices.
std::vector<std::string> ListedPorts() {
    std::vector<std::string> names;
    const HDEVINFO list = SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(list, i, &device) != FALSE; ++i) {
        char name[256] = "";
        if (SetupDiGetDeviceRegistryPropertyA(list, &device, SPDRP_FRIENDLYNAME, nullptr, reinterpret_cast<BYTE*>(name),
                                              sizeof name, nullptr) != FALSE) {
            names.emplace_back(name);
        }
    }
    SetupDiDestroyDeviceInfoList(list);
    return names;
}

std::string FirmwareName() {
    char text[256] = "";
    DWORD size = sizeof text;
    RegGetValueA(HKEY_LOCAL_MACHINE, "HARDWARE\\Description\\System\\BIOS", "SystemProductName", RRF_RT_REG_SZ, nullptr,
                 text, &size);
    return text;
}

// A program's window for the engine's messages.
class MessageWindow {
  public:
    MessageWindow()
        : scan_(RegisterWindowMessageW(L"WM_ISCP_FRAME")),
          window_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;
    ~MessageWindow() { DestroyWindow(window_); }

    HWND Handle() const { return window_; }
    // The wParam of the next scan; nothing when none comes.
    std::optional<WPARAM> NextScan() const {
        const ULONGLONG end = GetTickCount64() + kPatience;
        for (;;) {
            MSG message{};
            if (PeekMessageW(&message, window_, scan_, scan_, PM_REMOVE) != FALSE) {
                return message.wParam;
            }
            const ULONGLONG now = GetTickCount64();
            if (now >= end) {
                return std::nullopt;
            }
            MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(end - now), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
    }

  private:
    UINT scan_;
    HWND window_;
};

// What the Honeywell library told last.
std::atomic<const char*> told{nullptr};
std::atomic<std::uint32_t> toldLength{0};

std::int32_t OnEvent(std::uint32_t type, std::uint32_t, std::uint32_t, void* data, std::uint32_t length) {
    if (type == HoneywellState::kScanType) {
        toldLength = length;
        told = static_cast<const char*>(data);
    }
    return 0;
}

class PlayedScanner : public ::testing::Test {
  protected:
    void Play(const std::string& scenario) {
        program_.reset();
        file_.emplace(L"scanner.toml", scenario);
        pipe_ = "qlsim-scanner-test-" + std::to_string(GetCurrentProcessId());
        program_.emplace(L"qlsim.exe", std::vector{file_->Path(), "--pipe"s, pipe_, "--quiet"s});
        // The pipe is there when the devices are at work.
        EXPECT_EQ(Do("devices").substr(0, 2), "ok");
    }
    std::string Do(const std::string& command) const {
        return AskPipe(pipe_, command, std::chrono::milliseconds(kPatience));
    }
    Json Status(const std::string& device) const { return Json::parse(Do("status " + device).substr(3)); }
    void Quit() {
        Do("quit");
        EXPECT_EQ(program_->Wait(), 0u);
        program_.reset();
    }

    std::optional<TemporaryFile> file_;
    std::string pipe_;
    std::optional<Program> program_;
};

class PlayedIntermec : public PlayedScanner {
  protected:
    void ConnectToPath(const std::string& path) {
        std::uint32_t out = 0;
        ASSERT_EQ(library_.Call("Initialize", "HKCU\\SOFTWARE\\Norvane\\Barcode\\Intermec", &out), 0);
        ASSERT_EQ(library_.Call("DeviceIOControl", kIntermecSetPath, path.c_str(),
                                static_cast<std::uint32_t>(path.size() + 1), static_cast<void*>(nullptr), 0u),
                  0);
        ASSERT_EQ(library_.Call("Connect"), 0);
        ASSERT_EQ(library_.Call("MessageIdentify", window_.Handle(), 1u), 0);
    }
    std::string TakeScan() {
        EXPECT_EQ(window_.NextScan(), IntermecState::kScanType);
        std::vector<std::uint8_t> bytes(4096);
        std::uint32_t length = 0;
        EXPECT_EQ(library_.Call("GetBarcodeDataEx", bytes.data(), 4096u, &length), 0);
        return {bytes.begin(), bytes.begin() + length};
    }
    std::uint16_t Write(const std::vector<std::uint8_t>& frame) {
        std::vector<std::uint8_t> answer(4096);
        std::uint32_t length = 0;
        return library_.Call("SetupWrite", frame.data(), static_cast<std::uint32_t>(frame.size()), answer.data(), 4096u,
                             &length);
    }

    ScannerLibrary library_{L"ISDC_HID.dll"};
    MessageWindow window_;
};

TEST_F(PlayedIntermec, OnUsbIsFoundByItsPathAndReads) {
    Play(
        "[[device]]\nkind = \"intermec-scanner\"\nname = \"scanner\"\nlink = \"usb\"\ninstance = "
        "\"7&1a2b3c4d&0&0001\"\n");
    EXPECT_EQ(testing::CountPresent("vid_067e&pid_0801&col01#"), 1u);
    const std::string path =
        R"(\\?\hid#vid_067e&pid_0801&col02#7&1a2b3c4d&0&0001#{4d1e55b2-f16f-11cf-88cb-001111000030})";
    ASSERT_EQ(testing::CountPresent(path), 1u);
    ConnectToPath(path);
    EXPECT_EQ("ok read 13 bytes, EAN_13 ]E0", Do("scanner scan 4006381333931 EAN_13"));
    EXPECT_EQ(TakeScan(), IntermecRecord({"", "", "4006381333931", "", "]E0\0\0"s}));

    // What a program switches off is not read.
    EXPECT_EQ(Write({0x4B, 0x43, 0x00}), 0);
    EXPECT_EQ("error scanner: not read: EAN_13 is not enabled", Do("scanner scan 4006381333931 EAN_13"));
    EXPECT_EQ("ok SetupWrite refuses with 77", Do("scanner refuse SetupWrite 77 1"));
    EXPECT_EQ(Write({0x4B, 0x43, 0x01}), 77);
    EXPECT_EQ(Write({0x4B, 0x43, 0x01}), 0);
    EXPECT_EQ("ok read 2 bytes, EAN_13 ]E0", Do("scanner scan 12 EAN_13"));
    EXPECT_EQ(TakeScan(), IntermecRecord({"", "", "12", "", "]E0\0\0"s}));

    const Json log = Json::parse(Do("scanner log").substr(3));
    EXPECT_EQ(log.back()["function"], "GetBarcodeDataEx");
    EXPECT_EQ(Status("scanner")["connected"], GetCurrentProcessId());

    EXPECT_EQ("ok unplugged", Do("scanner unplug"));
    EXPECT_EQ(testing::CountPresent("vid_067e"), 0u);
    EXPECT_EQ(library_.Call("Disconnect"), 0);
    EXPECT_NE(library_.Call("Connect"), 0);
    EXPECT_EQ("ok plugged in", Do("scanner plug"));
    EXPECT_EQ(testing::CountPresent(path), 1u);
    EXPECT_EQ(library_.Call("Connect"), 0);
    EXPECT_EQ(library_.Call("Deinitialize"), 0);
    Quit();
    EXPECT_EQ(testing::CountPresent("vid_067e"), 0u);
}

TEST_F(PlayedIntermec, OfTheOtherProductIsOneDevice) {
    Play("[[device]]\nkind = \"intermec-scanner\"\nname = \"scanner\"\nlink = \"usb\"\nproduct = 0x0809\n");
    EXPECT_EQ(testing::CountPresent("vid_067e&pid_0809#"), 1u);
    EXPECT_EQ(testing::CountPresent("vid_067e"), 1u);
}

TEST_F(PlayedIntermec, OnASerialPortIsInTheListOfDevices) {
    const std::string scenario =
        "[[device]]\nkind = \"intermec-scanner\"\nname = \"scanner\"\nlink = \"serial\"\nport = 9\n";
    const auto isListed = [] {
        int count = 0;
        for (const std::string& name : ListedPorts()) {
            count += name == "Intermec VID_067E scanner (COM9)" ? 1 : 0;
        }
        return count;
    };
    Play(scenario);
    EXPECT_EQ(isListed(), 1);
    EXPECT_EQ("ok unplugged", Do("scanner unplug"));
    EXPECT_EQ(isListed(), 0);
    EXPECT_EQ("ok plugged in", Do("scanner plug"));
    EXPECT_EQ(isListed(), 1);
    // Killed: the entry stays, and goes when the next one comes.
    program_.reset();
    Play(scenario);
    EXPECT_EQ(isListed(), 1);
    Quit();
    EXPECT_EQ(isListed(), 0);
}

TEST_F(PlayedIntermec, ShowsACodeAgainAndAgain) {
    Play("[[device]]\nkind = \"intermec-scanner\"\nname = \"scanner\"\n");
    ConnectToPath("whatever");
    // More than the library and its record hold at once.
    constexpr int kTimes = 300;
    EXPECT_EQ("ok shown 300 times", Do("scanner present 300 0 77"));
    for (int i = 0; i < kTimes; ++i) {
        ASSERT_EQ(TakeScan(), IntermecRecord({"", "", "77", "", "]C0\0\0"s})) << i;
    }
    const Json status = Status("scanner");
    EXPECT_EQ(status["read"], kTimes);
    EXPECT_EQ(status["missed"], 0);
    EXPECT_EQ(library_.Call("Deinitialize"), 0);
}

class PlayedHoneywell : public PlayedScanner {
  protected:
    void SetUp() override { told = nullptr; }

    void Initialize() {
        std::uint32_t out = 0;
        ASSERT_EQ(library_.Call("HEDC_Initialize", "HKCU\\SOFTWARE\\Norvane\\Barcode\\Honeywell", &out, 0u), 0);
        std::uint32_t count = 0;
        ASSERT_EQ(library_.Call("HEDC_GetNumberDevices", &count), 0);
        ASSERT_EQ(count, 1u);
        std::vector<char> name(1024);
        std::vector<char> text(1024);
        std::uint32_t outs[2] = {};
        ASSERT_EQ(library_.Call("HEDC_GetDeviceFromList", 0u, name.data(), 1024u, outs, text.data(), 1024u, outs + 1),
                  0);
        ASSERT_STREQ(name.data(), "N6603 on USB 7");
        ASSERT_EQ(library_.Call("HEDC_RegisterCallback", 1u, OnEvent), 0);
        ASSERT_EQ(library_.Call("HEDC_SetPathName", name.data(), 14u), 0);
    }
    std::uint16_t Menu(const std::string& command) {
        std::vector<std::uint8_t> answer(4096);
        std::uint32_t length = 0;
        return library_.Call("HEDC_SendMenuCommand", command.data(), static_cast<std::uint32_t>(command.size()),
                             answer.data(), 4096u, &length, 1500u);
    }
    // Text and identifier of the next scan.
    static std::string NextScan() {
        EXPECT_TRUE(WaitUntil([] { return told.load() != nullptr; }));
        const char* const data = told.exchange(nullptr);
        return data != nullptr ? std::string(data, toldLength + 6) : "";
    }

    ScannerLibrary library_{L"HEDC_RS.dll"};
};

constexpr const char* kHoneywell =
    "[[device]]\nkind = \"honeywell-scanner\"\nname = \"scanner\"\ndevices = [\"N6603 on USB 7\"]\n"
    "symbologies = [\"Code39\"]\n";

TEST_F(PlayedHoneywell, ReadsWhatMenuCommandsEnable) {
    Play(kHoneywell);
    Initialize();
    ASSERT_EQ(library_.Call("HEDC_Connect"), 0);
    EXPECT_EQ("ok read 1 bytes, Code39 ]A0", Do("scanner scan 1 Code39"));
    EXPECT_EQ(NextScan(), "1\0]A0\0\0"s);
    EXPECT_EQ("error scanner: not read: QR is not enabled", Do("scanner scan 2 QR"));
    EXPECT_EQ(Menu("QRCENA1"), 0);
    EXPECT_EQ("ok read 1 bytes, QR ]Q1", Do("scanner scan 2 QR"));
    EXPECT_EQ(NextScan(), "2\0]Q1\0\0"s);
    EXPECT_EQ("ok HEDC_SendMenuCommand refuses with 5", Do("scanner refuse HEDC_SendMenuCommand 5"));
    EXPECT_EQ(Menu("QRCENA0"), 5);
    EXPECT_EQ("ok read 1 bytes, QR ]Q1", Do("scanner scan 3 QR"));
    EXPECT_EQ(NextScan(), "3\0]Q1\0\0"s);
    EXPECT_EQ(library_.Call("HEDC_Deinitialize"), 0);
    Quit();
}

TEST_F(PlayedHoneywell, CannotBeHadWhileTheEmulatorHoldsIt) {
    Play(kHoneywell + "[[device]]\nkind = \"emulator\"\nhand_over_at = 2\n"s);
    Initialize();
    EXPECT_EQ(library_.Call("HEDC_Connect"), kHoneywellHeld);
    HWND const emulator = FindWindowW(kEmulatorWindowClass, nullptr);
    ASSERT_NE(emulator, nullptr);
    const auto send = [emulator](EmulatorMessage message, WPARAM wParam) {
        return SendMessageW(emulator, RegisterWindowMessageW(kEmulatorMessageNames[static_cast<std::size_t>(message)]),
                            wParam, 0);
    };
    EXPECT_EQ(send(EmulatorMessage::kConnect, 3), 0);
    EXPECT_EQ(send(EmulatorMessage::kGetConnectState, 0), 1);
    EXPECT_EQ(library_.Call("HEDC_Connect"), kHoneywellHeld);
    EXPECT_EQ(send(EmulatorMessage::kGetConnectState, 0), 3);
    EXPECT_EQ(library_.Call("HEDC_Connect"), 0);
    EXPECT_EQ(library_.Call("HEDC_Disconnect", 0u), 0);
    EXPECT_EQ("ok take-back is done", Do("emulator take-back"));
    EXPECT_EQ(send(EmulatorMessage::kGetConnectState, 0), 1);
    EXPECT_EQ(library_.Call("HEDC_Connect"), kHoneywellHeld);
    EXPECT_EQ(Json::parse(Do("emulator log").substr(3)).size(), 4u);
    EXPECT_EQ("ok ended", Do("emulator end"));
    EXPECT_EQ(FindWindowW(kEmulatorWindowClass, nullptr), nullptr);
    EXPECT_EQ(library_.Call("HEDC_Connect"), 0);
    EXPECT_EQ(library_.Call("HEDC_Deinitialize"), 0);
    EXPECT_EQ("ok SCN2D_Emu_USB.exe is running", Do("emulator start no-window"));
    EXPECT_EQ(FindWindowW(kEmulatorWindowClass, nullptr), nullptr);
    Quit();
}

TEST_F(PlayedScanner, IsLeftWithTheComputersOwnName) {
    const std::string own = FirmwareName();
    Play("[[device]]\nkind = \"computer\"\nproduct_name = \"HX-T8S100\"\n");
    EXPECT_EQ(FirmwareName(), "HX-T8S100");
    EXPECT_EQ("ok product name JR-42 \xC3\xB6", Do("computer product-name \"JR-42 \xC3\xB6\""));
    EXPECT_EQ(Status("computer")["product_name"], "JR-42 \xC3\xB6");
    EXPECT_EQ("ok no product name", Do("computer no-product-name"));
    EXPECT_EQ(FirmwareName(), "");
    Quit();
    EXPECT_EQ(FirmwareName(), own);
}

}  // namespace
}  // namespace quarlin::sim
