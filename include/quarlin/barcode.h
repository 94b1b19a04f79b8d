/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file barcode.h
 * The machine's barcode scanner: Intermec engines (libraries ISDC_RS.dll and ISDC_HID.dll) and Honeywell engines
 * (HEDC_RS.dll). Which one the machine carries is found out when the list of devices is made.
 *
 * States: 0 not initialised -> QLBCR_Initialize -> 1 initialised -> QLBCR_Enable -> 2 enabled, scans arrive ->
 * QLBCR_Disable -> 1 -> QLBCR_Uninitialize -> 0. When a Honeywell scanner is taken away by the 2-D barcode emulator
 * program, the state falls from 2 to 1 by itself; QLBCR_Enable asks for it back. When the engine's library cannot be
 * loaded, QLBCR_Initialize fails; it can be called again.
 *
 * Most functions are about the current device: the first of the list, or the one chosen by QLBCR_SelectDevice. Codes
 * that they share, in the order of the checks:
 * - QLERR_INVALID_ARGUMENT: a pointer is null; the text names it. Checked first, unless a function says otherwise.
 * - QLERR_INVALID_STATE, "The device is not initialized": there is no current device in state 1 or 2.
 * - QLERR_INVALID_STATE, "The device is not enabled": the current device is not in state 2.
 * What a function adds to these stands with it. QLERR_INTERNAL_ERROR: the engine or the system refused; the text says
 * which step.
 *
 * The list of devices is made by the first QLBCR_GetBarcodeDevices, QLBCR_SelectDevice or QLBCR_Initialize and kept
 * until QLBCR_Uninitialize. As long as no device was found there is no list, and the next call looks again. Looking
 * takes up to 15 rounds, 150 ms apart, when a scanner should be there and does not show up. These functions, and those
 * for .NET callers, fail in it with QLERR_INTERNAL_ERROR when a Honeywell scanner is looked for and its library is not
 * there ("Unable to load HEDC_RS.dll.") or is not the one that is meant ("Unable to load internal functions. Possibly
 * due to misplaced or incorrect dlls.").
 *
 * Threads: any; the functions take turns under one lock, so that they may overlap. QLBCR_Initialize and
 * QLBCR_GetBarcodeDevices do not hold it while they work: other functions answer meanwhile, from the state before.
 * Scans arrive on a thread of the library, one after the other, and the callback runs without the lock: it may take
 * its time and may call the library. What it may not call are QLBCR_Disable and QLBCR_Uninitialize
 * (QLERR_INVALID_STATE, "The call is not allowed inside the callback."). A scan is delivered with the settings that
 * were in force when it was taken up. A callback that runs a message loop of its own, a message box for one, may be
 * called again inside it.
 *
 * QLBCR_Disable does not wait for a callback in progress: one that has begun, or is about to, may still run when it has
 * returned. QLBCR_Uninitialize waits: what a callback uses can be freed after it. Let a callback wait for no thread
 * that may be in QLBCR_Uninitialize, or in QLBCR_Initialize, QLBCR_SelectDevice or QLBCR_GetBarcodeDevices, which take
 * turns with it; sending a message to a window of such a thread is waiting, too. While QLBCR_Uninitialize waits, those
 * three fail inside the callback with QLERR_INVALID_STATE, "The device is not initialized".
 *
 * QLBCR_Enable may let the windows of its thread work: an engine on a serial line whose port is not known shows a
 * dialogue, and the emulator program is sent messages. Calls from there that would change the state or make the list
 * fail as if inside the callback.
 *
 * Making the list for the first time uses the functions of device.h: no other thread may be using them meanwhile.
 *
 * While initialised, a thread of the library keeps the DLL loaded: call QLBCR_Uninitialize before FreeLibrary.
 */
#ifndef QUARLIN_BARCODE_H
#define QUARLIN_BARCODE_H

#include "error.h"

#include <stddef.h>

/** One device of the list; 32 bytes. */
typedef struct QLBCR_DEVICE_INFO {
    /** The device's place in the list, 0 for the first; for QLBCR_SelectDevice. */
    int32_t index;
    /** 1: the machine's own scanner; 0: an external one, admitted by QLBCR_SetAllowExternalBarcodeDevice. */
    int32_t iDeviceType;
    /**
     * "Intermec EA15/EA21", "Intermec EA30", "Honeywell N6603", "Honeywell MiniDB", or "Barcode Reader" for an external
     * device. Belongs to the library and lives as long as the DLL is loaded.
     */
    const char* deviceName;
    /** 2 for "Intermec EA15/EA21", else 0. */
    int32_t linkKind;
    /** 1 for "Intermec EA15/EA21", else 0. */
    int32_t linkFlag;
    /** Zero. */
    uint8_t reserved[8];
} QLBCR_DEVICE_INFO;

/** One scan. It and everything that it points to belong to the library and live until the callback returns. */
typedef struct QLBCR_BARCODE_DATA {
    /** The index of the device that read the code. */
    int32_t deviceIndex;
    /**
     * The code's symbology identifier as the engine sent it, without a terminator: "]", a letter for the symbology and
     * what follows them (ISO/IEC 15424). Null when there is none.
     */
    const uint8_t* symbologyId;
    /** Bytes at @c symbologyId: 5 from a Honeywell engine, 1 to 8 from an Intermec engine, 0 when there is none. */
    int32_t symbologyIdLength;
    /** Prefix, edited text and suffix, in the engine's own encoding and without a terminator. */
    const uint8_t* data;
    /** Bytes at @c data; at least 1. */
    int32_t dataLength;
} QLBCR_BARCODE_DATA;

QL_ENUM_TYPE(BarcodeSymbology);
/** Symbologies for QLBCR_EnableSymbologies; behind each its name for QLBCR_EnableSymbology. */
enum BarcodeSymbology QL_ENUM_INT32 {
    BARCODE_SYMBOLOGY_CODABAR = 0,                /**< "Codabar" */
    BARCODE_SYMBOLOGY_CODE_11 = 1,                /**< "Code11" */
    BARCODE_SYMBOLOGY_CODE_128 = 2,               /**< "Code128" */
    BARCODE_SYMBOLOGY_ISBT = 3,                   /**< "ISBT"; on Intermec engines enabling it disables 2 and 14 */
    BARCODE_SYMBOLOGY_CODE_128_FRENCH_CIP = 4,    /**< "Code_128_FrenchCIP" */
    BARCODE_SYMBOLOGY_CODE_39 = 5,                /**< "Code39" */
    BARCODE_SYMBOLOGY_TLC_39 = 6,                 /**< "TLC39" */
    BARCODE_SYMBOLOGY_CODE_93 = 7,                /**< "Code93" */
    BARCODE_SYMBOLOGY_EAN_13 = 8,                 /**< "EAN_13" */
    BARCODE_SYMBOLOGY_EAN_128_IRREGULAR = 9,      /**< "EAN_128_Irregular"; Intermec engines only */
    BARCODE_SYMBOLOGY_ISBN = 10,                  /**< "ISBN" */
    BARCODE_SYMBOLOGY_EAN_ISMN = 11,              /**< "EAN_ISMN" */
    BARCODE_SYMBOLOGY_EAN_ISSN = 12,              /**< "EAN_ISSN" */
    BARCODE_SYMBOLOGY_EAN_8 = 13,                 /**< "EAN_8" */
    BARCODE_SYMBOLOGY_EAN_128 = 14,               /**< "EAN_128" */
    BARCODE_SYMBOLOGY_RSS_14 = 15,                /**< "RSS_14" */
    BARCODE_SYMBOLOGY_RSS_LIMITED = 16,           /**< "RSS_Limited" */
    BARCODE_SYMBOLOGY_RSS_EXPANDED = 17,          /**< "RSS_Expanded" */
    BARCODE_SYMBOLOGY_EAN_UCC_COMPOSITE_AB = 18,  /**< "EAN.UCC Composite_AB" */
    BARCODE_SYMBOLOGY_EAN_UCC_COMPOSITE_C = 19,   /**< "EAN.UCC Composite_C" */
    BARCODE_SYMBOLOGY_EAN_UCC_COMPOSITE_LIN = 20, /**< "EAN.UCC Composite_Lin"; always disabled by Honeywell engines */
    BARCODE_SYMBOLOGY_INTERLEAVED_2_OF_5 = 21,    /**< "Interleaved2of5" */
    BARCODE_SYMBOLOGY_MATRIX_2_OF_5 = 22,         /**< "Matrix" */
    BARCODE_SYMBOLOGY_STANDARD_2_OF_5 = 23,       /**< "Standard2of5" */
    BARCODE_SYMBOLOGY_MSI = 24,                   /**< "MSI" */
    BARCODE_SYMBOLOGY_PLESSEY = 25,               /**< "Plessey" */
    BARCODE_SYMBOLOGY_TELEPEN = 26,               /**< "Telepen" */
    BARCODE_SYMBOLOGY_UPC_A = 27,                 /**< "UPC_A" */
    BARCODE_SYMBOLOGY_UPC_E = 28,                 /**< "UPC_E" */
    BARCODE_SYMBOLOGY_UPC_E1 = 29,                /**< "UPC_E1" */
    BARCODE_SYMBOLOGY_AZTEC = 30,                 /**< "Aztec" */
    BARCODE_SYMBOLOGY_CODABLOCK_A = 31,           /**< "CODABLOCK_A" */
    BARCODE_SYMBOLOGY_CODABLOCK_F = 32,           /**< "CODABLOCK_F" */
    BARCODE_SYMBOLOGY_DATA_MATRIX = 33,           /**< "DataMatrix" */
    BARCODE_SYMBOLOGY_MAXICODE = 34,              /**< "Maxicode" */
    BARCODE_SYMBOLOGY_PDF_417 = 35,               /**< "PDF417" */
    BARCODE_SYMBOLOGY_MICRO_PDF_417 = 36,         /**< "MicroPDF 417" */
    BARCODE_SYMBOLOGY_QR = 37,                    /**< "QR" */
    BARCODE_SYMBOLOGY_AUSTRALIAN_POST = 38,       /**< "AustralianPost"; Honeywell engines disable 38 to 46 together */
    BARCODE_SYMBOLOGY_BPO_CODE = 39,              /**< "BPOCode" */
    BARCODE_SYMBOLOGY_CANADA_POST = 40,           /**< "CanadaPost" */
    BARCODE_SYMBOLOGY_INFOMAIL = 41,              /**< "Infomail" */
    BARCODE_SYMBOLOGY_JAPAN_POST = 42,            /**< "JapanPost" */
    BARCODE_SYMBOLOGY_DUTCH_POST = 43,            /**< "DutchPost" */
    BARCODE_SYMBOLOGY_PLANET = 44,                /**< "Planet" */
    BARCODE_SYMBOLOGY_POSTNET = 45,               /**< "Postnet" */
    BARCODE_SYMBOLOGY_SWEDEN_POST = 46            /**< "SwedenPost" */
};

/** What is done with the text of each scan; see QLBCR_SetDataEditingMode. */
enum QLBCR_EditMode {
    QLBCR_EDIT_NONE = 0,
    QLBCR_EDIT_REPLACE = 1,
    QLBCR_EDIT_INSERT = 2,
    QLBCR_EDIT_DELETE = 3
};

/** Room for a text that a function gives without being told the size of the buffer: terminator included. */
#define QLBCR_TEXT_SIZE 128

QL_BEGIN_C

/**
 * Receives a scan, on the library's listener thread. The record is valid until the function returns. An exception that
 * leaves it is dropped. What it may call: see the top of this file.
 */
typedef void (*QLBCR_Callback)(const QLBCR_BARCODE_DATA* scan);

/* ---- Finding the scanner ---- */

/**
 * Lists the barcode devices, one at most. Makes the list when there is none.
 *
 * @param devices  receives the list; null asks for the number alone.
 * @param count    in: entries that @p devices holds; 0 asks for the number alone. Out: devices found; unchanged when
 *                 the call fails. Null: QLERR_INVALID_ARGUMENT, "pNumDevices cannot be NULL".
 *
 * @return QLERR_OK, with a count of 0 when there is no scanner; QLERR_BUFFER_OVERFLOW, "Buffer size too small", when
 *         @p count is neither 0 nor enough; QLERR_INTERNAL_ERROR when looking for the scanner fails (see the top of
 *         this file), or when the system has no lock for the library ("Could not initialize critical section.").
 */
QL_IMPORT QLerr QLBCR_GetBarcodeDevices(QLBCR_DEVICE_INFO* devices, int* count);

/**
 * Makes a device of the list the current one and initialises it, as QLBCR_Initialize does. Makes the list when there is
 * none.
 * @param index  0 to one less than the number of devices.
 * @return QLERR_OK; QLERR_INVALID_STATE, "The device is not initialized", when the list is empty;
 *         QLERR_INVALID_ARGUMENT, "Given device index is out of range"; otherwise as QLBCR_Initialize.
 */
QL_IMPORT QLerr QLBCR_SelectDevice(int index);

/**
 * Says whether an external scanner counts when the list is made the next time. It is then the only device, "Barcode
 * Reader", and the machine's own is not looked for. Not at first.
 * @param allow  0: the machine's own scanner; otherwise an external one.
 * @return QLERR_OK.
 */
QL_IMPORT QLerr QLBCR_SetAllowExternalBarcodeDevice(unsigned int allow);

/* ---- States ---- */

/**
 * Loads and starts the engine of the current device, with all settings at their first values: no sound (file:
 * chimes.wav of Windows), no prefix, no suffix, no editing. Does nothing when it is initialised already. Makes the list
 * when there is none.
 *
 * @return QLERR_OK; QLERR_OP_UNSUPPORTED when there is no scanner ("The barcode device is not found.") or it is of no
 *         known kind ("The barcode device is nothing."); QLERR_INTERNAL_ERROR when the engine's library is missing
 *         ("Unable to load ISDC.dll.", "Unable to load HEDC_RS.dll.") or not the one that is meant ("Unable to load
 *         internal functions. Possibly due to misplaced or incorrect dlls."), when the engine does not start ("Unable
 *         to initialize Intermec barcode.", "Unable to initialize Honeywell barcode."), when the system refuses the
 *         listener's window ("Invalid Windows message window setup.", "Unable to create Windows message receiving
 *         window."), or "Could not initialize critical section.".
 */
QL_IMPORT QLerr QLBCR_Initialize(void);

/**
 * Stops the engine, frees its library and forgets the list of devices and the callback. Waits for a callback in
 * progress.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised ("The device is already un-initialized"), when enabled
 *         ("The device is not disabled. Please disable before further use") or when called by the callback ("The call
 *         is not allowed inside the callback.").
 */
QL_IMPORT QLerr QLBCR_Uninitialize(void);

/**
 * Connects the engine: scans arrive from now on. What the engine had read before is dropped. Tries nine times, half a
 * second apart. When the 2-D barcode emulator program runs, a Honeywell scanner is asked of it before each try: ten
 * times half a second apart, and an emulator may take up to a minute for each answer. One that refuses, hands nothing
 * over, has no window or gives no answer ends the call.
 * @return QLERR_OK; QLERR_INVALID_STATE, "The device is not initialized" or "The device is already enabled";
 *         QLERR_INTERNAL_ERROR: "Unable to connect barcode.", and for Intermec engines "Unable to register barcode
 *         event messages." or "Error setting up barcode connection.". After a failure the state is 1, and enabling can
 *         be tried again.
 */
QL_IMPORT QLerr QLBCR_Enable(void);

/**
 * Disconnects the engine. Ends a scanning that was started. The callback and the settings stay. Does not wait for a
 * callback in progress.
 * @return QLERR_OK; QLERR_INVALID_STATE, "The device is not initialized", "The device is already disabled" or "The call
 *         is not allowed inside the callback."; QLERR_INTERNAL_ERROR, "Error setting up barcode connection.", "Error
 *         resetting barcode connection." or "Unable to disconnect barcode.": the device is still enabled then.
 */
QL_IMPORT QLerr QLBCR_Disable(void);

/**
 * @param enabled  receives 1 in state 2, else 0. Null: "pEnable cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_IsEnabled(unsigned int* enabled);

/* ---- About the device ---- */

/**
 * @param type  receives the current device's @c iDeviceType. Null: "pType cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_GetDeviceType(unsigned int* type);

/**
 * Gives the current device's @c deviceName.
 *
 * @param buffer  receives the text and a terminator; null asks for the size.
 * @param size    in: bytes at @p buffer, 0 when that is null. Out: bytes needed, terminator included; unchanged when
 * the call fails.
 *
 * @return QLERR_OK; QLERR_INVALID_STATE, checked before the pointers; QLERR_INVALID_ARGUMENT, "dstSize cannot be NULL"
 *         or "OutStr cannot be NULL if OutStrSize is non-zero"; QLERR_BUFFER_OVERFLOW, "Buffer size too small".
 */
QL_IMPORT QLerr QLBCR_GetDeviceName(char* buffer, unsigned int* size);

/**
 * Asks the engine for the version of its firmware; empty when its answer holds none.
 * @param buffer  as for QLBCR_GetDeviceName.
 * @param size    likewise.
 * @return as QLBCR_GetDeviceName, and QLERR_INVALID_STATE when not enabled; QLERR_INTERNAL_ERROR, "Unable get firmware
 *         version.".
 */
QL_IMPORT QLerr QLBCR_GetDeviceFirmwareVersion(char* buffer, unsigned int* size);

/* ---- Scanning ---- */

/**
 * Says who receives the scans. The function stays until another takes its place or QLBCR_Uninitialize is called.
 * @param callback  the function. Null: "Callback cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_SetCallback(QLBCR_Callback callback);

/**
 * Lets the engine read one code, as if the trigger had been pulled. After the scan has been delivered the library turns
 * reading off again. Does nothing while such a scan is pending, also inside the callback that it is delivered to.
 * @return QLERR_OK; QLERR_INVALID_STATE, also "CallBack is not set."; QLERR_INTERNAL_ERROR, "Unable turn on barcode
 *         decoding.".
 */
QL_IMPORT QLerr QLBCR_StartScanning(void);

/**
 * Ends it without a scan. Harmless when none was started.
 * @return QLERR_OK; QLERR_INVALID_STATE, also "CallBack is not set."; QLERR_INTERNAL_ERROR, "Unable turn off barcode
 *         decoding."; scanning can be started again all the same.
 */
QL_IMPORT QLerr QLBCR_StopScanning(void);

/* ---- Symbologies and triggers ---- */

/**
 * Enables or disables a symbology by its name.
 * @param enable  0: disable; otherwise enable.
 * @param name    one of the names at BarcodeSymbology, to the letter. Null: "Symbology cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT, also "The argument of symbology is invalid"; QLERR_INVALID_STATE;
 *         QLERR_OP_UNSUPPORTED, "Not Supported.", when the engine has no command for it; QLERR_INTERNAL_ERROR,
 *         "Symbology could not enabled/disabled", when the engine refuses.
 */
QL_IMPORT QLerr QLBCR_EnableSymbology(unsigned char enable, const wchar_t* name);

/**
 * The same by a value of BarcodeSymbology.
 * @param enable     0: disable; otherwise enable.
 * @param symbology  0 to 46.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_OP_UNSUPPORTED, "Not Supported."; QLERR_INTERNAL_ERROR, "Symbology could
 *         not enabled/disabled", also for a value that is not known.
 */
QL_IMPORT QLerr QLBCR_EnableSymbologies(unsigned char enable, unsigned int symbology);

/**
 * @param mode  how the trigger works; the engines tell 0 from all other values alone.
 * @return QLERR_OK; QLERR_INVALID_STATE, "The device is not initialized" or, when it is not enabled, "Not connected.";
 *         QLERR_INTERNAL_ERROR, "Unable set trigger mode.".
 */
QL_IMPORT QLerr QLBCR_SetTriggerMode(unsigned int mode);

/**
 * Switches the scanner's own trigger on or off. Intermec engines only.
 * @param enable  0: off; otherwise on.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_OP_UNSUPPORTED, "Not Supported.", for a Honeywell engine;
 *         QLERR_INTERNAL_ERROR, "Unable enable hardware trigger." or "Unable disable hardware trigger.".
 */
QL_IMPORT QLerr QLBCR_SetHardwareTriggerEnabled(unsigned int enable);

/**
 * @param enabled  receives 1 when the scanner's own trigger is on, else 0; with a Honeywell engine always 1. Null:
 *                 "pEnable cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE; QLERR_INTERNAL_ERROR, "Unable get hardware trigger
 *         status.".
 */
QL_IMPORT QLerr QLBCR_IsHardwareTriggerEnabled(unsigned char* enabled);

/* ---- The sound after a scan ---- */

/**
 * @param enable  0: no sound; otherwise a sound is played for each scan that is delivered.
 * @return QLERR_OK; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_SetSoundEnabled(unsigned int enable);

/**
 * @param enabled  receives 1 or 0. Null: "pEnable cannot be NULL", checked last.
 * @return QLERR_OK; QLERR_INVALID_STATE; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLBCR_IsSoundEnabled(unsigned char* enabled);

/**
 * Chooses the sound. It is played only when sound is on.
 * @param path  of a WAVE file, at most 259 characters; copied.
 * @return QLERR_OK; QLERR_INVALID_STATE, checked first; QLERR_INVALID_ARGUMENT, "Specified File does not exist", also
 *         for null. The sound stays as it was then.
 */
QL_IMPORT QLerr QLBCR_SetReadSuccessSoundFile(const wchar_t* path);

/* ---- Prefix, suffix and editing: docs/barcode.md has worked examples ---- */

/**
 * Sets what comes before the text of each scan.
 * @param asTop  for Intermec engines, whose records have a field before the text: 0 puts the prefix behind that field,
 *               other values before it. The lowest 8 bits are kept. Honeywell engines have no such field.
 * @param text   any bytes up to a terminator; copied. Null counts as empty.
 * @return QLERR_OK; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_SetPrefixData(unsigned int asTop, const char* text);

/**
 * Sets what comes behind the text of each scan.
 * @param asTop  for Intermec engines, whose records have a field behind the text: 0 puts the suffix before that field,
 *               other values behind it. The lowest 8 bits are kept. Honeywell engines have no such field.
 * @param text   as for QLBCR_SetPrefixData.
 * @return QLERR_OK; QLERR_INVALID_STATE.
 */
QL_IMPORT QLerr QLBCR_SetSuffixData(unsigned int asTop, const char* text);

/**
 * Gives back what QLBCR_SetPrefixData has set. When it fails, nothing is written.
 * @param asTop  receives the flag. Null: "pAsTop cannot be NULL".
 * @param text   receives the text; holds at least QLBCR_TEXT_SIZE bytes. Null: "OutStr cannot be NULL if OutStrSize is
 *               non-zero".
 * @return QLERR_OK; QLERR_INVALID_STATE, checked first; QLERR_INVALID_ARGUMENT; QLERR_BUFFER_OVERFLOW, "Buffer size too
 *         small", when the text is longer than 127 bytes.
 */
QL_IMPORT QLerr QLBCR_GetPrefixData(unsigned int* asTop, char* text);

/** Gives back what QLBCR_SetSuffixData has set; parameters and codes as of QLBCR_GetPrefixData. */
QL_IMPORT QLerr QLBCR_GetSuffixData(unsigned int* asTop, char* text);

/**
 * Sets what is done with the text of each scan, before prefix and suffix are added. Positions count characters of
 * UTF-8; positive ones from the start, negative ones from the end.
 *
 * @param iEditMode  0 and any value without a meaning: nothing. 1: replace each @p strTarget by @p strCont, when
 * neither is empty. 2: insert @p strCont after character @p iStart; not before the first character. 3: remove each @p
 * strTarget between the characters @p iStart and @p iEnd.
 * @param strTarget  what is looked for, byte by byte; copied. Null counts as empty.
 * @param strCont    what is put in; copied. Null counts as empty.
 * @param iStart     for 2 and 3; below 1 counts as the beginning for 3.
 * @param iEnd       for 3; 0 counts as the end.
 *
 * @return QLERR_OK; QLERR_INVALID_STATE. No value is checked.
 */
QL_IMPORT QLerr QLBCR_SetDataEditingMode(unsigned int iEditMode, const char* strTarget, const char* strCont, int iStart,
                                         int iEnd);

/**
 * Gives back what QLBCR_SetDataEditingMode has set. When it fails, nothing is written.
 * @param iEditMode  receives the mode. Null: "pEditMode cannot be NULL".
 * @param strTarget  receives the text; holds at least QLBCR_TEXT_SIZE bytes. Null: "OutStr cannot be NULL if OutStrSize
 *                   is non-zero".
 * @param strCont    likewise.
 * @param iStart     receives the position. Null: "pStart cannot be NULL".
 * @param iEnd       receives the position. Null: "pEnd cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE, checked first; QLERR_INVALID_ARGUMENT; QLERR_BUFFER_OVERFLOW, "Buffer size too
 *         small", when a text is longer than 127 bytes.
 */
QL_IMPORT QLerr QLBCR_GetDataEditingMode(unsigned int* iEditMode, char* strTarget, char* strCont, int* iStart,
                                         int* iEnd);

/* ---- For .NET callers ---- */

/** QLBCR_GetBarcodeDevices without a list: gives the number of devices; @p count in: 0. */
QL_IMPORT QLerr QLBCR_dotNet_GetNoOfDevices(int* count);

/**
 * QLBCR_GetBarcodeDevices into a buffer of the library.
 *
 * @param result  receives 0; unchanged when the call fails. Null: QLERR_INVALID_ARGUMENT, "pResult cannot be NULL".
 * @param count   in: entries that the buffer shall hold. Out: devices found; 0 when the call fails. Null:
 *                QLERR_INVALID_ARGUMENT, "pNumDevices cannot be NULL".
 *
 * @return the list, entries not in use zero; null when the call fails, which QLAPI_GetLastError explains
 *         (QLERR_INTERNAL_ERROR, "memory allocate error.", when there is no room for so many). The buffer
 *         belongs to the caller: it comes from malloc of msvcrt.dll, the C runtime that is part of Windows, and free of
 *         that same msvcrt.dll releases it, not that of another runtime (ucrtbase.dll, a debug runtime).
 */
QL_IMPORT QLBCR_DEVICE_INFO* QLBCR_dotNet_GetBarcodeDevices(int* result, int* count);

QL_END_C

#endif
