/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Waits for one card, prints what may be shown of it, and stops. Account numbers and names are masked.
 *
 *     card_swipe.exe SECONDS
 *
 * SECONDS is how long it waits for a card, 1 to 3600. Exit status: 0 after a swipe, 1 after an error, 2 when called
 * wrongly, 3 without a reader or a swipe.
 */
#include <quarlin/quarlin.h>

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum {
    kSwiped = 0,
    kFailed = 1,
    kUsage = 2,
    kNothing = 3
};

enum {
    kMaxReaders = 8,
    kReportSize = 888,
    kTrackSize = 112,
    kTracks = 3
};

/* What the callback keeps of a swipe: the record and its buffers end with the call. */
typedef struct Swipe {
    uint8_t report[kReportSize];
    bool isEncrypted;
    bool isValid;
} Swipe;

static Swipe swipe;
static HANDLE swiped;

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return kFailed;
}

/* On the reader's thread: copies and returns. Swipes never overlap; only the first counts. */
static void OnSwipe(const MagStripeData* record) {
    if (WaitForSingleObject(swiped, 0) == WAIT_OBJECT_0 || record->rawLength != kReportSize) {
        return;
    }
    memcpy(swipe.report, record->raw, kReportSize);
    swipe.isEncrypted = record->isEncrypted;
    swipe.isValid = record->isValid;
    SetEvent(swiped);
}

/* A track between its first character and its end, with every digit and letter hidden but the last four digits of the
 * account number. The reader masks too, but not every reader does. */
static void PrintTrack(int number, const uint8_t* data, int length) {
    const int end = length < kTrackSize ? length : kTrackSize;
    int account = 0;
    while (account < end && data[account] != '=' && data[account] != '^') {
        ++account;
    }
    printf("Track %d: ", number);
    for (int i = 0; i < end; ++i) {
        const uint8_t c = data[i];
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        const bool isDigit = c >= '0' && c <= '9';
        const bool isShown = number < kTracks && account < end && isDigit && i < account && i >= account - 4;
        putchar(c < ' ' || c > '~' ? '.' : (isLetter || isDigit) && !isShown ? '*' : c);
    }
    printf(end == 0 ? "(empty)\n" : "\n");
}

static void PrintBytes(const char* label, const uint8_t* bytes, int count) {
    printf("%s", label);
    for (int i = 0; i < count; ++i) {
        printf("%02X", bytes[i]);
    }
    putchar('\n');
}

static int PrintSwipe(void) {
    MagStripeData record;
    MagTekExtras extras;
    memset(&record, 0, sizeof record);
    record.rawLength = kReportSize;
    record.raw = swipe.report;
    if (QLMSR_GetMagTekExtras(&record, &extras) != QLERR_OK) {
        return Fail("QLMSR_GetMagTekExtras");
    }
    printf("Card:    %s, %s\n", swipe.isValid ? "read well" : "not read well, swipe again",
           swipe.isEncrypted ? "encrypted" : "not encrypted");
    for (int i = 0; i < kTracks; ++i) {
        PrintTrack(i + 1, extras.maskedData[i], extras.maskedLength[i]);
    }
    if (swipe.isEncrypted) {
        PrintBytes("Key:     ", extras.keySerialNumber, (int)sizeof extras.keySerialNumber);
    }
    return kSwiped;
}

static int WaitForSwipe(int seconds) {
    const ULONGLONG end = GetTickCount64() + 1000ULL * (ULONGLONG)seconds;
    for (;;) {
        if (WaitForSingleObject(swiped, 500) == WAIT_OBJECT_0) {
            return kSwiped;
        }
        /* Nobody tells that a reader has been unplugged: ask. */
        bool enabled = false;
        if (QLMSR_IsEnabled(&enabled) != QLERR_OK) {
            return Fail("QLMSR_IsEnabled");
        }
        if (!enabled) {
            fprintf(stderr, "The reader was unplugged.\n");
            return kNothing;
        }
        if (GetTickCount64() >= end) {
            fprintf(stderr, "No card came.\n");
            return kNothing;
        }
    }
}

static int ReadOneCard(int seconds) {
    MagStripeReaderInfo readers[kMaxReaders];
    int count = kMaxReaders;
    unsigned int id = 0;
    if (QLMSR_GetMagStripeDevices(readers, &count) != QLERR_OK) {
        return Fail("QLMSR_GetMagStripeDevices");
    }
    if (count == 0) {
        fprintf(stderr, "There is no card reader.\n");
        return kNothing;
    }
    printf("Reader:  %ls, serial number %ls\n", readers[0].name, readers[0].serialNumber);
    printf("Swipe a card.\n");
    fflush(stdout);
    if (QLMSR_SelectDevice(readers[0].index) != QLERR_OK || QLMSR_AddCallback(OnSwipe, &id) != QLERR_OK ||
        QLMSR_Enable() != QLERR_OK) {
        return Fail("Enabling the reader");
    }
    const int waited = WaitForSwipe(seconds);
    return waited == kSwiped ? PrintSwipe() : waited;
}

int main(int argc, char** argv) {
    const int seconds = argc == 2 ? atoi(argv[1]) : 0;
    if (seconds < 1 || seconds > 3600) {
        fprintf(stderr, "usage: card_swipe SECONDS\n");
        return kUsage;
    }
    swiped = CreateEventW(NULL, TRUE, FALSE, NULL);
    if (swiped == NULL) {
        fprintf(stderr, "The system has no event left.\n");
        return kFailed;
    }
    int result = QLMSR_Initialize() == QLERR_OK ? ReadOneCard(seconds) : Fail("QLMSR_Initialize");
    /* Disables the reader, too. No callback runs when it has returned. */
    if (QLMSR_Uninitialize() != QLERR_OK && result == kSwiped) {
        result = Fail("QLMSR_Uninitialize");
    }
    CloseHandle(swiped);
    return result;
}
