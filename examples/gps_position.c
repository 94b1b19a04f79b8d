/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Where am I? Reads the receiver until it has a fix, prints the position once, and stops.
 *
 *     gps_position.exe PORT
 *
 * PORT is the number of the serial port, 3 for COM3. Exit status: 0 with a position, 1 after an error, 2 when called
 * wrongly, 3 when there was no fix within a minute.
 */
#include <quarlin/quarlin.h>

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

enum {
    kFound = 0,
    kFailed = 1,
    kUsage = 2,
    kNoFix = 3
};

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return kFailed;
}

/* The receiver is read on a thread of the library; an application looks at the values when it likes to. */
static int WaitForFix(DWORD milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        int fixed = 0;
        int quality = 0;
        if (QLGPS_GetFixStatus(&fixed) != QLERR_OK || QLGPS_GetFixQuality(&quality) != QLERR_OK) {
            return Fail("QLGPS_GetFixStatus");
        }
        /* The kind of fix and the position come in different sentences: both have to say that there is one. */
        if (fixed && quality > 0) {
            return kFound;
        }
        if (GetTickCount64() >= end) {
            bool sending = false;
            QLGPS_IsEnabled(&sending);
            fprintf(stderr, sending ? "The receiver has no fix yet.\n" : "The receiver is silent.\n");
            return kNoFix;
        }
        Sleep(200);
    }
}

static int PrintPosition(void) {
    double latitude = 0.0;
    double longitude = 0.0;
    double altitude = 0.0;
    double hdop = 0.0;
    char time[80];
    int satellites = 0;
    if (QLGPS_GetCoordinates(&latitude, &longitude, &altitude) != QLERR_OK || QLGPS_GetHDOP(&hdop) != QLERR_OK ||
        QLGPS_GetTimeStamp(time) != QLERR_OK || QLGPS_GetSatellitesUsedForFix(&satellites) != QLERR_OK) {
        return Fail("Reading the position");
    }
    printf("Position: %.6f, %.6f (degrees, north and east positive)\n", latitude, longitude);
    printf("Altitude: %.1f m\n", altitude);
    printf("Time:     %s UTC\n", time);
    printf("Quality:  %d satellites, HDOP %.1f\n", satellites, hdop);
    return kFound;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: gps_position PORT\n");
        return kUsage;
    }
    if (QLGPS_Initialize(atoi(argv[1])) != QLERR_OK) {
        return Fail("QLGPS_Initialize");
    }
    int result = QLGPS_Enable() == QLERR_OK ? WaitForFix(60000) : Fail("QLGPS_Enable");
    if (result == kFound) {
        result = PrintPosition();
    }
    /* Closes the port, too. */
    if (QLGPS_Uninitialize() != QLERR_OK && result == kFound) {
        result = Fail("QLGPS_Uninitialize");
    }
    return result;
}
