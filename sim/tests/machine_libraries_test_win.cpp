// SPDX-License-Identifier: Apache-2.0
// The machine's libraries for device checks and for the camera light: programs load them by name, qlsim steers them,
// and all of them see one machine.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "core/simulation.h"
#include "edge/handle_win.h"
#include "edge/machine_record_win.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {
namespace {

using Json = nlohmann::json;

// Nobody else uses the machine library meanwhile.
class Turn {
  public:
    explicit Turn(const wchar_t* mutex) : mutex_(CreateMutexW(nullptr, FALSE, mutex)) {
        const DWORD result = WaitForSingleObject(mutex_.get(), 60000);
        EXPECT_TRUE(result == WAIT_OBJECT_0 || result == WAIT_ABANDONED);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() { ReleaseMutex(mutex_.get()); }

  private:
    OwnedHandle mutex_;
};

// A library as a program loads it.
class Library {
  public:
    explicit Library(const wchar_t* name) : module_(LoadLibraryW(name)) { EXPECT_NE(module_, nullptr); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { Unload(); }

    template <typename... Arguments>
    std::int32_t Call(const char* name, Arguments... arguments) const {
        const auto function =
            reinterpret_cast<std::int32_t (*)(Arguments...)>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
        if (function == nullptr) {
            ADD_FAILURE() << name;
            return -99;
        }
        return function(arguments...);
    }
    bool Has(const char* name) const { return GetProcAddress(module_, name) != nullptr; }
    void Unload() {
        if (module_ != nullptr) {
            FreeLibrary(std::exchange(module_, nullptr));
        }
    }

  private:
    HMODULE module_;
};

// qlsim at work in this process.
class Playing {
  public:
    explicit Playing(const std::string& scenario) {
        SimulationOptions options;
        options.machineRecords = MachineRecords();
        simulation_.emplace(ReadScenario(scenario, "test.toml"), options, log_);
        simulation_->Start();
    }
    std::string Do(const std::string& command) { return simulation_->Execute(command).Line(); }
    Json Ask(const std::string& command) { return Json::parse(Do(command).substr(3)); }

  private:
    Log log_;
    std::optional<Simulation> simulation_;
};

struct DeviceRecord {
    std::uint32_t size = 20;
    std::uint32_t device = 0;
    std::uint32_t available = 0;
    std::uint32_t power = 0;
    std::uint32_t bios = 0;
};

constexpr const char* kProbe = "[[device]]\nkind = \"probe\"\n";
constexpr const char* kLight = "[[device]]\nkind = \"camera-light\"\nname = \"light\"\n";

TEST(ProbeLibrary, KnowsAMachineWithoutQlsim) {
    const Turn turn(ProbeState::kTestMutex);
    const Library probe(L"HwProbeLib.dll");
    EXPECT_EQ(0, probe.Call("HwProbe_Initialize"));
    std::int32_t count = 0;
    EXPECT_EQ(0, probe.Call("HwProbe_GetNumberOfDevices", &count));
    EXPECT_EQ(15, count);
    DeviceRecord record;
    EXPECT_EQ(0, probe.Call("HwProbe_GetDeviceInfo", 4, 20u, &record));
    EXPECT_EQ(4u, record.device);
    EXPECT_EQ(1u, record.available);
    EXPECT_EQ(0u, record.power);
    ProbeBatteryRecord battery{};
    EXPECT_EQ(0, probe.Call("HwProbe_GetBatteryCurrentInfo", 1, &battery));
    EXPECT_EQ(11418, battery.voltage);
    EXPECT_EQ(0, probe.Call("HwProbe_Uninitialize"));
}

TEST(ProbeLibrary, RefusesWhatMakesNoSense) {
    const Turn turn(ProbeState::kTestMutex);
    const Library probe(L"HwProbeLib.dll");
    DeviceRecord record;
    DeviceRecord* records[] = {&record};
    std::int32_t count = 0;
    ProbeBatteryRecord battery{};
    EXPECT_EQ(-10, probe.Call("HwProbe_Uninitialize"));
    EXPECT_EQ(-10, probe.Call("HwProbe_GetDeviceInfo", 1, 20u, &record));
    EXPECT_EQ(-10, probe.Call("HwProbe_GetNumberOfDevices", &count));
    EXPECT_EQ(-10, probe.Call("HwProbe_GetDeviceList", 20u, &records[0], 1));
    EXPECT_EQ(-10, probe.Call("HwProbe_GetBatteryCurrentInfo", 1, &battery));
    ASSERT_EQ(0, probe.Call("HwProbe_Initialize"));
    EXPECT_EQ(-11, probe.Call("HwProbe_GetDeviceInfo", 0, 20u, &record));
    EXPECT_EQ(-11, probe.Call("HwProbe_GetDeviceInfo", 16, 20u, &record));
    EXPECT_EQ(-11, probe.Call("HwProbe_GetDeviceInfo", 1, 16u, &record));
    record.size = 16;
    EXPECT_EQ(-11, probe.Call("HwProbe_GetDeviceInfo", 1, 20u, &record));
    EXPECT_EQ(-11, probe.Call("HwProbe_GetDeviceList", 20u, &records[0], 1));
    EXPECT_EQ(-11, probe.Call("HwProbe_GetBatteryCurrentInfo", 3, &battery));
    EXPECT_EQ(0, probe.Call("HwProbe_Uninitialize"));
}

TEST(ProbeLibrary, SaysWhatQlsimTellsIt) {
    const Turn turn(ProbeState::kTestMutex);
    Playing playing(kProbe);
    const Library probe(L"HwProbeLib.dll");
    ASSERT_EQ(0, probe.Call("HwProbe_Initialize"));
    EXPECT_EQ("ok device 14: available on", playing.Do("probe device 14 available on"));
    EXPECT_EQ("ok device 14: power 3", playing.Do("probe device 14 power 3"));
    DeviceRecord record;
    EXPECT_EQ(0, probe.Call("HwProbe_GetDeviceInfo", 14, 20u, &record));
    EXPECT_EQ(1u, record.available);
    EXPECT_EQ(3u, record.power);
    EXPECT_EQ("ok battery 2: temperature 451", playing.Do("probe battery 2 temperature 451"));
    ProbeBatteryRecord battery{};
    EXPECT_EQ(0, probe.Call("HwProbe_GetBatteryCurrentInfo", 2, &battery));
    EXPECT_EQ(451, battery.temperature);
    EXPECT_EQ("ok HwProbe_GetBatteryCurrentInfo answers -3",
              playing.Do("probe answer HwProbe_GetBatteryCurrentInfo -3"));
    battery.temperature = 77;
    EXPECT_EQ(-3, probe.Call("HwProbe_GetBatteryCurrentInfo", 2, &battery));
    EXPECT_EQ(77, battery.temperature);
    EXPECT_EQ(1, playing.Ask("probe status")["started"]);
    const Json calls = playing.Ask("probe log");
    ASSERT_EQ(4u, calls.size());
    EXPECT_EQ("HwProbe_GetDeviceInfo", calls[1]["function"]);
    EXPECT_EQ(Json::parse("[14, 20, 1]"), calls[1]["arguments"]);
    EXPECT_EQ(-3, calls[3]["status"]);
    EXPECT_EQ(GetCurrentProcessId(), calls[3]["process"]);
    EXPECT_EQ(0, probe.Call("HwProbe_Uninitialize"));
}

TEST(CameraLightLibrary, SwitchesTheLightThatQlsimShows) {
    const Turn turn(LightState::kTestMutex);
    Playing playing(kLight);
    Library light(L"camlamp_x64.dll");
    EXPECT_EQ(0, light.Call("CameraLight_Initialize", std::int32_t{0}));
    EXPECT_EQ(0, light.Call("CameraLight_TurnOnToKeepOn", std::uint8_t{1}));
    EXPECT_EQ(255, playing.Ask("light status")["timer"]);
    EXPECT_EQ(0, light.Call("CameraLight_TurnOff", std::uint8_t{1}));
    EXPECT_EQ(false, playing.Ask("light status")["on"]);
    EXPECT_EQ(0, light.Call("CameraLight_TurnOnForTime", std::uint8_t{254}));
    // The program ends; the light goes on.
    light.Unload();
    const int left = playing.Ask("light status")["timer"];
    EXPECT_GT(left, 200);
    EXPECT_LE(left, 254);

    EXPECT_EQ("ok on", playing.Do("light on"));
    const Library another(L"camlamp_x64.dll");
    std::uint8_t value = 0;
    EXPECT_EQ(0, another.Call("CameraLight_GetTimerStatus", &value));
    EXPECT_EQ(255, value);
    EXPECT_EQ("ok the timer's value is left untouched", playing.Do("light timer-readable off"));
    value = 77;
    EXPECT_EQ(0, another.Call("CameraLight_GetTimerStatus", &value));
    EXPECT_EQ(77, value);
}

TEST(CameraLightLibrary, HasAVersionOfEighteenBytes) {
    const Turn turn(LightState::kTestMutex);
    const Library light(L"camlamp_x64.dll");
    std::uint8_t text[19];
    std::fill(std::begin(text), std::end(text), std::uint8_t{0x77});
    std::uint32_t number = 0;
    EXPECT_EQ(0, light.Call("CameraLight_GetVersion", &text[0], &number));
    EXPECT_STREQ("1.2.0", reinterpret_cast<const char*>(text));
    EXPECT_EQ(0, text[17]);
    EXPECT_EQ(0x77, text[18]);
    EXPECT_EQ(0x010200u, number);
}

// Every function, and beside the library a variant without it, which has all the others.
TEST(MachineLibraryVariants, LackOneFunctionEach) {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetModuleFileNameW(nullptr, folder.data(), MAX_PATH));
    for (int i = 0; i < 2; ++i) {
        folder.resize(folder.find_last_of(L"\\/"));
    }
    const auto check = [&](const wchar_t* file, const auto& names) {
        for (const std::string missing : names) {
            const std::wstring path =
                folder + L"\\sim\\without\\" + std::wstring(missing.begin(), missing.end()) + L"\\" + file;
            const Library variant(path.c_str());
            for (const std::string name : names) {
                EXPECT_EQ(name != missing, variant.Has(name.c_str())) << name << " without " << missing;
            }
        }
    };
    check(L"HwProbeLib.dll", kProbeFunctionNames);
    check(L"camlamp_x64.dll", kLightFunctionNames);
}

}  // namespace
}  // namespace quarlin::sim
