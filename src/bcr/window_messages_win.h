// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

namespace quarlin::bcr {

// The messages by which engine libraries, the emulator program and this library talk, by the numbers that the system
// has for their names.
struct WindowMessages {
    UINT intermecFrame;  // a scan waits in the Intermec library
    UINT rawData;        // a scan of the Honeywell library: wParam its length, lParam where it is
    UINT lowLevel;       // of the Intermec library, like the next; neither means anything to us
    UINT multiframeInProgress;
    UINT emulatorConnect;
    UINT emulatorGetConnectState;
    UINT emulatorStateRegist;
    UINT emulatorOnConnectState;
};
extern WindowMessages windowMessages;

// When the library is loaded.
void RegisterWindowMessages();

}  // namespace quarlin::bcr
