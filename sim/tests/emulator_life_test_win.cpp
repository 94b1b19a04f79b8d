// SPDX-License-Identifier: Apache-2.0
// How the emulator program is found, comes and goes.
#include "emulator_world_win.h"

#include <psapi.h>

namespace quarlin::sim::testing {
namespace {

class OwnedProcess {
  public:
    OwnedProcess(std::wstring line, const wchar_t* instance) {
        std::wstring own(MAX_PATH, L'\0');
        own.resize(GetEnvironmentVariableW(L"QLSIM_INSTANCE", own.data(), MAX_PATH));
        // It takes the environment of the moment with it.
        SetEnvironmentVariableW(L"QLSIM_INSTANCE", (own + instance).c_str());
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started_) ==
            FALSE) {
            ADD_FAILURE() << "error " << GetLastError();
        }
        SetEnvironmentVariableW(L"QLSIM_INSTANCE", own.c_str());
    }
    OwnedProcess(const OwnedProcess&) = delete;
    OwnedProcess& operator=(const OwnedProcess&) = delete;
    ~OwnedProcess() {
        TerminateProcess(started_.hProcess, 99);
        CloseHandle(started_.hThread);
        CloseHandle(started_.hProcess);
    }

    DWORD Id() const { return started_.dwProcessId; }
    void Kill() const { TerminateProcess(started_.hProcess, 98); }
    // Its exit status, or STILL_ACTIVE.
    DWORD Wait() const {
        WaitForSingleObject(started_.hProcess, EmulatorControl::kPatience);
        DWORD status = 0;
        GetExitCodeProcess(started_.hProcess, &status);
        return status;
    }

  private:
    PROCESS_INFORMATION started_{};
};

std::wstring BaseName(DWORD id) {
    HANDLE const process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id);
    HMODULE first = nullptr;
    DWORD needed = 0;
    std::wstring name(MAX_PATH, L'\0');
    EXPECT_TRUE(K32EnumProcessModules(process, &first, sizeof first, &needed));
    name.resize(K32GetModuleBaseNameW(process, first, name.data(), MAX_PATH));
    CloseHandle(process);
    return name;
}

struct NamedProgram {
    const char* name;
    const wchar_t* path;
    const wchar_t* baseName;
};

void PrintTo(const NamedProgram& program, std::ostream* stream) {
    *stream << program.name;
}

class EmulatorNames : public EmulatorWorld, public ::testing::WithParamInterface<NamedProgram> {};

TEST_P(EmulatorNames, AreToldToTheLetter) {
    EXPECT_EQ(FindEmulator(), nullptr);
    emulator_.Start(SimFolder() + GetParam().path);
    EXPECT_EQ(BaseName(emulator_.ProcessId()), GetParam().baseName);
    // Whatever its name, its window is the emulator's.
    ASSERT_NE(FindEmulator(), nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(FindEmulator()), emulator_.Read().window);
    DWORD owner = 0;
    GetWindowThreadProcessId(FindEmulator(), &owner);
    EXPECT_EQ(owner, emulator_.ProcessId());
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(Poll(), 3);
}

INSTANTIATE_TEST_SUITE_P(
    Programs, EmulatorNames,
    ::testing::Values(NamedProgram{"ItsOwn", L"SCN2D_Emu_USB.exe", L"SCN2D_Emu_USB.exe"},
                      NamedProgram{"AnotherCase", L"other_case\\scn2d_emu_usb.exe", L"scn2d_emu_usb.exe"},
                      NamedProgram{"AnotherName", L"other_name\\Another_Program.exe", L"Another_Program.exe"}),
    [](const auto& p) { return p.param.name; });

TEST_F(EmulatorWorld, MakesItsWindowWhenItIsTold) {
    Start(L"--no-window");
    EXPECT_TRUE(emulator_.IsRunning());
    EXPECT_TRUE(ScannerIsHeld());
    EXPECT_EQ(FindEmulator(), nullptr);
    emulator_.Give(EmulatorOrder::kOpenWindow);
    EXPECT_NE(FindEmulator(), nullptr);
    EXPECT_EQ(Connect(), 0);
    emulator_.Give(EmulatorOrder::kCloseWindow);
    EXPECT_EQ(FindEmulator(), nullptr);
    EXPECT_TRUE(emulator_.IsRunning());
    emulator_.Give(EmulatorOrder::kOpenWindow);
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, LetsTheScannerGoWhenItEnds) {
    Start();
    EXPECT_TRUE(ScannerIsHeld());
    emulator_.End();
    EXPECT_FALSE(ScannerIsHeld());
    EXPECT_EQ(FindEmulator(), nullptr);
    EXPECT_EQ(emulator_.Read().process, 0u);
    Start();
    EXPECT_TRUE(ScannerIsHeld());
    emulator_.Kill();
    EXPECT_FALSE(ScannerIsHeld());
    EXPECT_EQ(emulator_.Read().process, 0u);
}

TEST_F(EmulatorWorld, BeginsWithoutTheScanner) {
    Start(L"--handed-over");
    EXPECT_FALSE(ScannerIsHeld());
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, FindsTheSettingsThatWereMadeBefore) {
    emulator_.Use([](EmulatorState& state) {
        state.settings.connectAnswer = 9;
        state.settings.handOverAtPoll = 2;
    });
    Start(L"--answer 0");
    EXPECT_EQ(Connect(), 0);
    EXPECT_EQ(Poll(), 1);
    EXPECT_EQ(Poll(), 3);
}

TEST_F(EmulatorWorld, EndsWithItsParent) {
    const std::wstring program = L"\"" + SimFolder() + L"other_name\\Another_Program.exe\" --no-window --parent ";
    const OwnedProcess parent(program + std::to_wstring(GetCurrentProcessId()), L"-parent");
    const OwnedProcess child(program + std::to_wstring(parent.Id()), L"-child");
    parent.Kill();
    EXPECT_EQ(parent.Wait(), 98u);
    EXPECT_EQ(child.Wait(), 0u);
}

struct WrongArguments {
    const char* name;
    const wchar_t* arguments;
    DWORD status;
};

void PrintTo(const WrongArguments& wrong, std::ostream* stream) {
    *stream << wrong.name;
}

class EmulatorArguments : public EmulatorWorld, public ::testing::WithParamInterface<WrongArguments> {};

TEST_P(EmulatorArguments, AreRefused) {
    const OwnedProcess program(L"\"" + SimFolder() + L"SCN2D_Emu_USB.exe\" " + GetParam().arguments, L"-wrong");
    EXPECT_EQ(program.Wait(), GetParam().status);
    EXPECT_EQ(FindEmulator(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Sorts, EmulatorArguments,
                         ::testing::Values(WrongArguments{"APollOfNone", L"--hand-over-at 0", 2},
                                           WrongArguments{"APollThatIsNoNumber", L"--hand-over-at 3x", 2},
                                           WrongArguments{"AnUnknownNotice", L"--notice shouted", 2},
                                           WrongArguments{"AnUnknownOption", L"--colour", 2},
                                           WrongArguments{"AParentThatIsNot", L"--parent 4294967280", 3}),
                         [](const auto& p) { return p.param.name; });

}  // namespace
}  // namespace quarlin::sim::testing
