/* SPDX-License-Identifier: Apache-2.0 */
/*
 * An application of the smallest kind, compiled as C and as C++, by MinGW and for Microsoft's tools. It needs no C
 * library, so that it also links where none is at hand. The exit status is 0, or the number of the first call that
 * went wrong.
 */
#include <quarlin/quarlin.h>

#ifdef __cplusplus
#define NOTHING nullptr
#else
#define NOTHING ((void*)0)
#endif

static int Same(const char* left, const char* right) {
    while (*left != '\0' && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

static int SameWide(const wchar_t* left, const wchar_t* right) {
    while (*left != L'\0' && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

static int LastErrorIs(QLerr code, const char* text) {
    char message[256];
    return QLAPI_GetLastError(message, (int)sizeof message) == code && Same(message, text);
}

/* The functions with a plain name. */
static int CheckPlainNames(void) {
    wchar_t version[11];
    int size = 11;
    if (QLLIB_GetSDKVersion(version, &size) != QLERR_OK || size != 11 || !SameWide(version, L"3.0.1000.0")) {
        return 1;
    }
    size = 10;
    if (QLLIB_GetSDKVersion(version, &size) != QLERR_BUFFER_OVERFLOW || size != 10 ||
        !LastErrorIs(QLERR_BUFFER_OVERFLOW, "Buffer size too small")) {
        return 2;
    }
    wchar_t text[4];
    if (QLSTR_StrPrintf(text, 4, NOTHING, L"%d%s", 4, L"2") != QLERR_OK || !SameWide(text, L"42")) {
        return 3;
    }
    if (QLGPS_Enable() != QLERR_INVALID_STATE || QLMISC_ThreadSleep() != QLERR_OK ||
        QLMISC_WaitForDebugger() != QLERR_OK || QLMISC_ShowConsole() != QLERR_OK ||
        !LastErrorIs(QLERR_INVALID_STATE, "GPS has not been initialized.")) {
        return 4;
    }
    return 0;
}

/* The functions whose exported names encode their signatures. */
static int CheckDecoratedNames(void) {
    char text[64];
    int count = -1;
    if (QLGPS_GetGpsDevices(&count) != QLERR_OK || count != 0) {
        return 5;
    }
    if (GPS_VerifyAvailable() != QLERR_OP_UNSUPPORTED || !LastErrorIs(QLERR_OP_UNSUPPORTED, "Device Not available")) {
        return 6;
    }
    if (QLGPS_GetDeviceName(text, 19) != QLERR_BUFFER_OVERFLOW ||
        !LastErrorIs(QLERR_BUFFER_OVERFLOW, "buf size is too small")) {
        return 7;
    }
    if (QLGPS_GetDeviceFirmwareVersion(text, 64) != QLERR_OP_UNSUPPORTED ||
        !LastErrorIs(QLERR_OP_UNSUPPORTED, "This GPS device doesn't have firmware version")) {
        return 8;
    }
    FixMode mode = FIX_MODE_UNKNOWN;
    if (QLGPS_GetFixMode(&mode) != QLERR_INVALID_STATE ||
        !LastErrorIs(QLERR_INVALID_STATE, "GPS has not been initialized.")) {
        return 9;
    }
    if (QLGPS_GetFixSelection(NOTHING) != QLERR_INVALID_ARGUMENT ||
        !LastErrorIs(QLERR_INVALID_ARGUMENT, "Pointer arg cannot be NULL")) {
        return 10;
    }
    GpsProtType protocol = GPS_PROTOCOL_NMEA;
    if (QLGPS_GetProtocol(&protocol) != QLERR_INVALID_STATE ||
        !LastErrorIs(QLERR_INVALID_STATE, "GPS has not been initialized.")) {
        return 11;
    }
    return 0;
}

int main(void) {
    const int wrong = CheckPlainNames();
    return wrong != 0 ? wrong : CheckDecoratedNames();
}
