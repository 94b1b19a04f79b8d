// SPDX-License-Identifier: Apache-2.0
// A program for tests to kill.
// usage: machine_hid_player play|end|use
//   play  plugs in a device that never answers
//   end   plugs in a device and ends without unplugging it
//   use   reads and transfers, as long as the device does not answer
#include <cstring>

#include "hid_player_win.h"
#include "hid_program_win.h"
#include "hidbus/hid_socket_win.h"

namespace quarlin::sim::testing {
namespace {

void Signal(const char* name) {
    const WindowsHandle event(CreateEventA(nullptr, TRUE, FALSE, name));
    SetEvent(event.Get());
}

void WaitForEver() {
    WaitForSingleObject(GetCurrentProcess(), INFINITE);
}

void Play(const HidIdentity& identity, bool untilKilled) {
    ScriptedDevice device;
    device.Run([] {
        Signal(kBusyEvent);
        WaitForEver();
        return HidAnswer::kDone;
    });
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
    socket->Plug(identity, device);
    Signal(kReadyEvent);
    if (untilKilled) {
        WaitForEver();
    }
    ExitProcess(0);
}

void Use(const HidIdentity& identity) {
    HidProgram program(identity);
    program.BeginRead(888);
    program.SetFeature(MakeReport(0, 25, 1));
}

}  // namespace
}  // namespace quarlin::sim::testing

int main(int argc, char** argv) {
    using namespace quarlin::sim::testing;
    const auto identity = PlainIdentity(kPlayersInstance);
    const char* const role = argc == 2 ? argv[1] : "";
    if (std::strcmp(role, "use") == 0) {
        Use(identity);
        return 0;
    }
    if (std::strcmp(role, "play") == 0 || std::strcmp(role, "end") == 0) {
        Play(identity, std::strcmp(role, "play") == 0);
    }
    return 2;
}
