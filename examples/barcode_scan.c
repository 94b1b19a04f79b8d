/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Reads one barcode, prints it with its symbology identifier, and stops.
 *
 *     barcode_scan.exe SECONDS
 *
 * SECONDS is how long it waits for a code, 1 to 3600. Exit status: 0 after a code, 1 after an error, 2 when called
 * wrongly, 3 without a scanner or a code.
 */
#include <quarlin/quarlin.h>

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum {
    kScanned = 0,
    kFailed = 1,
    kUsage = 2,
    kNothing = 3
};

enum {
    kMaxText = 4096,
    kMaxSymbologyId = 8
};

/* What the callback keeps of a scan: the record and all that it points to end with the call. */
typedef struct Scan {
    uint8_t text[kMaxText];
    int textLength;
    uint8_t symbologyId[kMaxSymbologyId];
    int symbologyIdLength;
} Scan;

static Scan scan;
static HANDLE scanned;

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return kFailed;
}

static int Copy(uint8_t* to, int room, const uint8_t* from, int length) {
    const int copied = length < room ? length : room;
    if (copied > 0) {
        memcpy(to, from, (size_t)copied);
    }
    return copied;
}

/* On a thread of the library: copies and returns. Scans never overlap; only the first counts. */
static void OnScan(const QLBCR_BARCODE_DATA* record) {
    if (WaitForSingleObject(scanned, 0) == WAIT_OBJECT_0) {
        return;
    }
    scan.textLength = Copy(scan.text, kMaxText, record->data, record->dataLength);
    scan.symbologyIdLength = Copy(scan.symbologyId, kMaxSymbologyId, record->symbologyId, record->symbologyIdLength);
    SetEvent(scanned);
}

/* Whatever a code holds: nothing that a terminal would obey. */
static void PrintText(const char* label, const uint8_t* bytes, int count) {
    printf("%s", label);
    for (int i = 0; i < count && bytes[i] != 0; ++i) {
        putchar(bytes[i] >= ' ' && bytes[i] <= '~' ? bytes[i] : '.');
    }
    putchar('\n');
}

static int WaitForScan(int seconds) {
    /* The trigger works without this call; this reads a code although nobody pulls it. */
    if (QLBCR_SetCallback(OnScan) != QLERR_OK || QLBCR_StartScanning() != QLERR_OK) {
        return Fail("Starting to scan");
    }
    printf("Hold a code before the scanner.\n");
    fflush(stdout);
    if (WaitForSingleObject(scanned, 1000UL * (DWORD)seconds) != WAIT_OBJECT_0) {
        fprintf(stderr, "No code came.\n");
        return kNothing;
    }
    return kScanned;
}

static int ReadOneCode(int seconds) {
    if (QLBCR_Enable() != QLERR_OK) {
        return Fail("QLBCR_Enable");
    }
    const int result = WaitForScan(seconds);
    /* Ends a scanning that found nothing, too. */
    if (QLBCR_Disable() != QLERR_OK) {
        return Fail("QLBCR_Disable");
    }
    return result;
}

static int UseScanner(int seconds) {
    const QLerr code = QLBCR_Initialize();
    if (code == QLERR_OP_UNSUPPORTED) {
        fprintf(stderr, "There is no barcode scanner.\n");
        return kNothing;
    }
    if (code != QLERR_OK) {
        return Fail("QLBCR_Initialize");
    }
    int result = ReadOneCode(seconds);
    /* No callback runs when it has returned. */
    if (QLBCR_Uninitialize() != QLERR_OK && result == kScanned) {
        result = Fail("QLBCR_Uninitialize");
    }
    return result;
}

int main(int argc, char** argv) {
    const int seconds = argc == 2 ? atoi(argv[1]) : 0;
    if (seconds < 1 || seconds > 3600) {
        fprintf(stderr, "usage: barcode_scan SECONDS\n");
        return kUsage;
    }
    scanned = CreateEventW(NULL, TRUE, FALSE, NULL);
    if (scanned == NULL) {
        fprintf(stderr, "The system has no event left.\n");
        return kFailed;
    }
    const int result = UseScanner(seconds);
    if (result == kScanned) {
        PrintText("Code:      ", scan.text, scan.textLength);
        PrintText("Symbology: ", scan.symbologyId, scan.symbologyIdLength);
    }
    CloseHandle(scanned);
    return result;
}
