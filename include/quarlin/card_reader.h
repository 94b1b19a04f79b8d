/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file card_reader.h
 * Magnetic stripe readers: MagTek MagneSafe V5 readers on USB HID.
 *
 * States: no manager -> QLMSR_Initialize -> manager without readers -> QLMSR_GetMagStripeDevices -> readers known ->
 * QLMSR_SelectDevice, QLMSR_AddCallback, QLMSR_Enable -> swipes arrive -> QLMSR_Disable -> QLMSR_Uninitialize -> no
 * manager. QLMSR_Initialize does not look for readers: QLMSR_GetMagStripeDevices does, each time it is called. A reader
 * that stays plugged in keeps its index from one call to the next; a new one takes the lowest free index.
 *
 * Codes that many functions share:
 * - QLERR_INVALID_STATE, "No exist manager instance.": QLMSR_Initialize has not been called, or QLMSR_Uninitialize has
 *   been called since. (QLMSR_GetMagStripeDevices says "no exist IQlMagStripeMgr instance.".)
 * - QLERR_INVALID_ARGUMENT: a pointer is null, or an index or an identifier is not known.
 * - QLERR_INTERNAL_ERROR: the reader or the system refused; the text says which step.
 * Where a function checks its pointers before the manager, it says so.
 *
 * When a reader is unplugged while it is enabled, its swipes end and nothing else is told: QLMSR_IsEnabled then gives
 * false and QLMSR_Enable fails. Call QLMSR_Disable, and QLMSR_GetMagStripeDevices when a reader has been plugged in.
 *
 * Threads: any; all functions take turns under one lock, so that they may overlap. Swipes arrive on a thread of each
 * enabled reader. Callbacks never overlap, not even those of two readers. QLMSR_Disable, QLMSR_RemoveCallback,
 * QLMSR_ClearCallbacks and QLMSR_Uninitialize return after a callback in progress has ended; afterwards none begins for
 * a swipe of the reader that was disabled, or of a function that was removed. A swipe that arrives while its reader is
 * being disabled is dropped. While a callback runs, QLMSR_ calls of other threads wait for it: keep it short, and let
 * it wait for no thread that may be in such a call.
 *
 * A callback may itself call the library; what it calls takes effect at once. Calls that disable its reader, list
 * readers or end the family do not wait for the callback: the reader's thread ends after it has returned. The swipe
 * that it was called for still goes to the functions after it, those excepted that have been removed by then.
 *
 * A thread of a reader keeps the DLL loaded.
 */
#ifndef QUARLIN_CARD_READER_H
#define QUARLIN_CARD_READER_H

#include "error.h"

#include <stdbool.h>
#include <stddef.h>

QL_ENUM_TYPE(MagStripeVendor);
/** Maker of a reader. */
enum MagStripeVendor QL_ENUM_INT32 {
    MAG_STRIPE_VENDOR_MAGTEK = 0
};

/** One reader of the list; 912 bytes. The texts are cut to 149 characters. */
typedef struct MagStripeReaderInfo {
    /** The reader's index, 0 and up, for QLMSR_SelectDevice. */
    int32_t index;
    /** "MAGTEK(USB)". */
    wchar_t name[150];
    /** As the reader gives it; bytes of 0x80 and above are the characters U+0080 to U+00FF. */
    wchar_t serialNumber[150];
    /** Identifier of the reader's firmware, as the reader gives it. */
    wchar_t softwareId[150];
    /** 1 when the reader's security level is 3 or higher, which makes it encrypt track data; else 0. */
    int32_t encryptionEnabled;
    MagStripeVendor vendor;
} MagStripeReaderInfo;

/** One track of a swipe. */
typedef struct MagStripeTrackData {
    /** Bytes at @c data: always 112. */
    int32_t bufferSize;
    /** Bytes of @c data that the reader says are in use; -128 to 127, unchecked. Check it before you use it. */
    int32_t length;
    /** The track as the reader gives it: clear, masked or encrypted. Without a terminator. */
    uint8_t* data;
} MagStripeTrackData;

/** One swipe. It and everything that it points to belong to the library and live until the callback returns. */
typedef struct MagStripeData {
    /** Always 3. */
    int32_t trackCount;
    /** Tracks 1, 2 and 3; encrypted when the reader encrypts. */
    MagStripeTrackData* tracks;
    /** Always 3. */
    int32_t maskedTrackCount;
    /** Tracks 1, 2 and 3 with most digits masked by the reader. */
    MagStripeTrackData* maskedTracks;
    /** Bytes at @c raw: always 888. */
    uint64_t rawLength;
    /** The reader's whole report, beginning with the report ID 0. */
    uint8_t* raw;
    /** Whether the reader has encrypted the track data. */
    bool isEncrypted;
    /**
     * False when a track was not decoded, all lengths or all masked lengths are 0, or track 1 begins with "%E" or track
     * 2 with ";E". Such a swipe is delivered all the same.
     */
    bool isValid;
} MagStripeData;

/**
 * Every field of a swipe, in the reader's own order; 887 bytes, the report without its report ID. Fields of more than
 * one byte are copied unchanged.
 */
typedef struct MagTekExtras {
    /** Of tracks 1, 2 and 3: 0 = good. */
    uint8_t decodeStatus[3];
    /** Of tracks 1, 2 and 3. */
    uint8_t length[3];
    uint8_t cardEncodeType;
    /** Tracks 1, 2 and 3. */
    uint8_t data[3][112];
    /** Passed through. */
    uint8_t reserved1;
    uint8_t magnePrintStatus[4];
    uint8_t magnePrintLength;
    uint8_t magnePrint[128];
    uint8_t deviceSerialNumber[16];
    uint8_t encryptionStatus[2];
    /** Of the DUKPT key. */
    uint8_t keySerialNumber[10];
    /** Of tracks 1, 2 and 3. */
    uint8_t maskedLength[3];
    /** Tracks 1, 2 and 3. */
    uint8_t maskedData[3][112];
    uint8_t encryptedSessionId[8];
    /** Of tracks 1, 2 and 3 and of the MagnePrint data. */
    uint8_t absoluteLength[4];
    uint8_t encryptionCounter[3];
    /** Passed through. */
    uint8_t reserved2[8];
    /** Passed through. */
    uint8_t reserved3[16];
    /** Passed through. */
    uint8_t reserved4[4];
} MagTekExtras;

QL_BEGIN_C

/**
 * Receives a swipe, on the reader's thread. The record is valid until the function returns. It must not throw and must
 * not end its thread. What it may call: see the top of this file.
 */
typedef void (*QLMSR_Callback)(const MagStripeData* record);

/**
 * Starts from scratch: when initialised already, does what QLMSR_Uninitialize does first. Looks for no readers.
 * @return QLERR_OK; QLERR_INTERNAL_ERROR when the system has no lock for the library ("Could not initialize critical
 *         section.", "fail initialize IQlMagStripeMgr.") or no memory ("Could not create IQlMagStripeMgr instance.").
 */
QL_IMPORT QLerr QLMSR_Initialize(void);

/**
 * Disables and forgets every reader and every callback, and selects index 0.
 * @return QLERR_OK, also when not initialised.
 */
QL_IMPORT QLerr QLMSR_Uninitialize(void);

/**
 * Looks for readers and lists them, in the order of their indexes. Readers that are enabled stay enabled; a swipe
 * during the call may be lost. A reader found for the first time is opened and asked for its identity, which takes some
 * 0.2 s.
 *
 * @param readers  receives the list.
 * @param count    in: entries that @p readers holds. Out: readers found; set too when they are more than that.
 *
 * @return QLERR_OK, with a count of 0 when there is no reader; QLERR_INVALID_STATE, "no exist IQlMagStripeMgr
 *         instance.", checked first; QLERR_INVALID_ARGUMENT when a pointer is null ("1st or 2nd parameter is
 *         invalid.(NULL)") or @p readers is too small ("readers buffer is too small."; nothing is written to it);
 *         QLERR_INTERNAL_ERROR when a new reader does not answer or an enabled one cannot be started again ("fail MSR
 *         devices scan."; all readers are forgotten then, callbacks and the selected index stay), the list cannot be
 *         made ("fail query devices description.") or memory is short ("memory allocate error.").
 */
QL_IMPORT QLerr QLMSR_GetMagStripeDevices(MagStripeReaderInfo* readers, int* count);

/**
 * For .NET callers alone, who get the list in a buffer of the library: QLMSR_GetMagStripeDevices with room for 3
 * readers.
 *
 * @param result  receives the code.
 * @param count   receives the count as QLMSR_GetMagStripeDevices leaves it: with a result of QLERR_OK the entries in
 *                use; when there are more than 3 readers, their number; 3 after another failure.
 *
 * @return 3 entries, 2736 bytes, those not in use zero; also when the call failed, and when a pointer is null (the last
 *         error then holds QLERR_INVALID_ARGUMENT). Null when memory is short. The buffer belongs to the caller, for
 *         good: it comes from malloc of msvcrt.dll, the C runtime that is part of Windows, and free of that same
 *         msvcrt.dll releases it, not that of another runtime (ucrtbase.dll, a debug runtime).
 */
QL_IMPORT MagStripeReaderInfo* QLMSR_GetMagStripeDevices_DotNET(QLerr* result, int* count);

/**
 * Chooses the reader that QLMSR_Enable, QLMSR_Disable and QLMSR_IsEnabled are about. Before the first call, and after
 * QLMSR_Uninitialize, it is index 0.
 * @param index  0 to one less than the number of readers last found; checked now and not again. -1 is accepted and
 *               chooses none.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_INVALID_ARGUMENT, "Not valid device index.".
 */
QL_IMPORT QLerr QLMSR_SelectDevice(int index);

/**
 * Starts delivering the swipes of the selected reader. Succeeds at once when it is enabled already.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "fail device enabled.": the index is not known or
 *         above the number of readers, the reader cannot be opened, or it was unplugged while enabled and has not been
 *         disabled since.
 */
QL_IMPORT QLerr QLMSR_Enable(void);

/**
 * Ends it: waits for a callback in progress, closes the reader (0.2 s) and succeeds, also when it was not enabled.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "fail device enabled." (the words of QLMSR_Enable): the
 *         index is not known or above the number of readers.
 */
QL_IMPORT QLerr QLMSR_Disable(void);

/**
 * Whether the selected reader is enabled. False after it was unplugged.
 * @param enabled  receives the answer; false when the call fails later than its first check. Null, checked first:
 *                 QLERR_INVALID_ARGUMENT, "1st parameter is invalid.(NULL)".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "fail check enabled status.",
 *         when the index is not known.
 */
QL_IMPORT QLerr QLMSR_IsEnabled(bool* enabled);

/**
 * Adds a function that receives every swipe of every enabled reader, after those added before it. It stays until it is
 * removed or QLMSR_Uninitialize is called; readers may come and go meanwhile. A function added twice is called twice.
 * @param callback  the function. Null, checked first: QLERR_INVALID_ARGUMENT, "1st or 2nd parameter is invalid.(NULL)".
 * @param id        receives its identifier, never 0, which is not given again; 0 when the call fails later than its
 *                  first check. Null: as for @p callback.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "Add callback failure.".
 */
QL_IMPORT QLerr QLMSR_AddCallback(QLMSR_Callback callback, unsigned int* id);

/**
 * Removes one function.
 * @param id  from QLMSR_AddCallback.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_INVALID_ARGUMENT, "Fail remove callback.Check parameter and usage.",
 *         when the identifier is not known.
 */
QL_IMPORT QLerr QLMSR_RemoveCallback(unsigned int id);

/**
 * Removes all functions.
 * @return QLERR_OK; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLMSR_ClearCallbacks(void);

/**
 * Gives every field of a swipe.
 * @param record  a record from a callback, or a copy whose @c raw points to a copy of the report.
 * @param extras  receives the fields. Null, or a null @p record, checked first: QLERR_INVALID_ARGUMENT, "1st or 2nd
 *                parameter is invalid.(NULL)".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "Invalid raw data.", when
 *         @c rawLength is not 888 or @c raw is null.
 */
QL_IMPORT QLerr QLMSR_GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras);

QL_END_C

#endif
