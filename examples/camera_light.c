/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Switches the camera light on for some seconds and watches it until it goes off by itself.
 *
 *     camera_light.exe SECONDS
 *
 * SECONDS is 1 to 254. Exit status: 0, 1 after an error, 2 when called wrongly, 3 when the light stays on too long.
 */
#include <quarlin/quarlin.h>

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

enum {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kStillOn = 3
};

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return kFailed;
}

static int Watch(int seconds) {
    const ULONGLONG end = GetTickCount64() + 1000ULL * (ULONGLONG)seconds + 2000;
    int shown = -1;
    for (;;) {
        bool on = false;
        uint8_t time = 0;
        if (QLCAM_IsCameraLightOn(&on) != QLERR_OK || QLCAM_GetCameraLightTime(&time) != QLERR_OK) {
            return Fail("Asking for the light");
        }
        if (!on) {
            printf("The light is off.\n");
            return kDone;
        }
        if (time != shown) {
            shown = time;
            printf("The light is on, its timer reads %d.\n", shown);
            fflush(stdout);
        }
        if (GetTickCount64() >= end) {
            return kStillOn;
        }
        Sleep(100);
    }
}

int main(int argc, char** argv) {
    const int seconds = argc == 2 ? atoi(argv[1]) : 0;
    int result = kDone;
    if (seconds < 1 || seconds > 254) {
        fprintf(stderr, "usage: camera_light SECONDS\n");
        return kUsage;
    }
    if (QLCAM_Initialize() != QLERR_OK) {
        return Fail("QLCAM_Initialize");
    }
    result =
        QLCAM_TurnCameraLightOnForTime(seconds) == QLERR_OK ? Watch(seconds) : Fail("QLCAM_TurnCameraLightOnForTime");
    if (QLCAM_Uninitialize() != QLERR_OK && result == kDone) {
        result = Fail("QLCAM_Uninitialize");
    }
    return result;
}
