// SPDX-License-Identifier: Apache-2.0
#include "bcr/window_messages_win.h"

namespace quarlin::bcr {

constinit WindowMessages windowMessages{};

void RegisterWindowMessages() {
    windowMessages.intermecFrame = RegisterWindowMessageW(L"WM_ISCP_FRAME");
    windowMessages.rawData = RegisterWindowMessageW(L"WM_RAW_DATA");
    windowMessages.lowLevel = RegisterWindowMessageW(L"WM_LOWLEVEL");
    windowMessages.multiframeInProgress = RegisterWindowMessageW(L"WM_MULTIFRAME_IN_PROGRESS");
    windowMessages.emulatorConnect = RegisterWindowMessageW(L"WM_NORV_BCR_EMU_CONNECT");
    windowMessages.emulatorGetConnectState = RegisterWindowMessageW(L"WM_NORV_BCR_EMU_GET_CONNECT_STATE");
    windowMessages.emulatorStateRegist = RegisterWindowMessageW(L"WM_NORV_BCR_EMU_STATE_REGIST");
    windowMessages.emulatorOnConnectState = RegisterWindowMessageW(L"WM_NORV_BCR_EMU_ON_CONNECT_STATE");
}

}  // namespace quarlin::bcr
