/* SPDX-License-Identifier: Apache-2.0 */
/*
 * What is built into this computer, and how are its batteries? Prints both once.
 *
 *     device_list.exe
 *
 * Exit status: 0, or 1 after an error.
 */
#include <quarlin/quarlin.h>

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

enum {
    kDone = 0,
    kFailed = 1
};

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return kFailed;
}

/* The numbers of devices and their meaning are the maker's. A list also names devices that this computer has not. */
static int PrintDevices(void) {
    int count = 0;
    DeviceStatusEntry* entries = NULL;
    int result = kDone;
    if (QLDEVICE_GetDevices(NULL, &count) != QLERR_OK) {
        return Fail("QLDEVICE_GetDevices");
    }
    entries = calloc((size_t)count + 1, sizeof *entries);
    if (entries == NULL) {
        return kFailed;
    }
    if (QLDEVICE_GetDevices(entries, &count) != QLERR_OK) {
        result = Fail("QLDEVICE_GetDevices");
        count = 0;
    }
    for (int i = 0; i < count; ++i) {
        const int device = (int)entries[i].device;
        bool available = false;
        bool enabled = false;
        if (QLDEVICE_GetDeviceAvailable(device, &available) != QLERR_OK ||
            QLDEVICE_GetDeviceEnabledInBios(device, &enabled) != QLERR_OK) {
            result = Fail("Asking for a device");
            break;
        }
        if (available) {
            printf("Device %2d: power %u, BIOS %u, %s\n", device, (unsigned)entries[i].powerState,
                   (unsigned)entries[i].biosState, enabled ? "ready" : "not ready");
        }
    }
    free(entries);
    return result;
}

/* Exactly 12 characters, and a terminator only when the text is shorter. */
static void PrintTwelve(const char* label, const wchar_t* text) {
    char narrow[4 * 12 + 1];
    wchar_t wide[13] = {0};
    int written = 0;
    for (int i = 0; i < 12; ++i) {
        wide[i] = text[i];
    }
    if (QLSTR_WideToNarrow(narrow, (int)sizeof narrow, &written, wide) == QLERR_OK) {
        printf("  %s %s\n", label, narrow);
    }
}

static int PrintBattery(int battery) {
    BatteryInfo info = {0};
    if (QLDEVICE_GetBatteryInfo(battery, &info) != QLERR_OK) {
        return Fail("QLDEVICE_GetBatteryInfo");
    }
    printf("Battery %d\n", battery);
    PrintTwelve("name    ", info.BatteryName);
    PrintTwelve("id      ", info.BatteryID);
    printf("  capacity %d of %d, new %d\n", (int)info.RemainingCapacity, (int)info.FullChargedCapacity,
           (int)info.DesignedCapacity);
    printf("  voltage  %d, rate %d, temperature %d, health %d\n", (int)info.Voltage, (int)info.Rate,
           (int)info.Temperature, (int)info.BatteryHealth);
    return kDone;
}

int main(void) {
    int result = kDone;
    if (QLDEVICE_Initialize() != QLERR_OK) {
        return Fail("QLDEVICE_Initialize");
    }
    result = PrintDevices();
    for (int battery = 1; battery <= 2 && result == kDone; ++battery) {
        result = PrintBattery(battery);
    }
    if (QLDEVICE_Uninitialize() != QLERR_OK && result == kDone) {
        result = Fail("QLDEVICE_Uninitialize");
    }
    return result;
}
