/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file gps.h
 * The GPS receiver: an NMEA 0183 receiver on a serial port.
 *
 * States: not initialised -> QLGPS_Initialize -> initialised, port closed -> QLGPS_Enable -> reading -> QLGPS_Disable
 * -> initialised, port closed -> QLGPS_Uninitialize -> not initialised. Enable and Disable may be repeated; what was
 * received survives them.
 *
 * Codes that many functions share, in the order in which they are checked:
 * - QLERR_INVALID_STATE, "GPS has not been initialized.": QLGPS_Initialize has not succeeded, or QLGPS_Uninitialize has
 *   been called since. It comes before the check of the pointers, except where a function says otherwise.
 * - QLERR_INVALID_ARGUMENT, and a text that speaks of the pointer: an output pointer is null.
 *
 * Values are those of the receiver, as its sentences give them: 0 until the first sentence, then the last value that
 * was sent, also when the receiver has lost its fix. No checksum is verified. QLGPS_GetFixStatus says whether there is
 * a fix now.
 *
 * Threads: call QLGPS_Initialize, QLGPS_Uninitialize, QLGPS_Enable and QLGPS_Disable from one thread. Every Get
 * function and QLGPS_IsEnabled may be called from any thread while the receiver is read, also at once, but not while
 * QLGPS_Initialize or QLGPS_Uninitialize runs. A sentence is seen wholly or not at all. No function calls back.
 *
 * The last seven functions are exported under names that encode their C++ signature (that of GCC and that of
 * Microsoft's compiler): call them from C++, or from C through this header, but not by a plain name.
 */
#ifndef QUARLIN_GPS_H
#define QUARLIN_GPS_H

#include "error.h"

#include <stdbool.h>

QL_ENUM_TYPE(FixMode);
/** Kind of fix, from the last GSA sentence. */
enum FixMode QL_ENUM_INT32 {
    /** No GSA sentence has come yet. */
    FIX_MODE_UNKNOWN = 0,
    FIX_MODE_NO_FIX = 1,
    FIX_MODE_2D = 2,
    FIX_MODE_3D = 3
};

QL_ENUM_TYPE(FixSelection);
/** How the receiver chooses between 2-D and 3-D, from the last GSA sentence. */
enum FixSelection QL_ENUM_INT32 {
    /** Forced; also the value before the first GSA sentence. */
    FIX_SELECTION_MANUAL = 0,
    FIX_SELECTION_AUTOMATIC = 1
};

QL_ENUM_TYPE(GpsProtType);
/** Protocol of the receiver. */
enum GpsProtType QL_ENUM_INT32 {
    GPS_PROTOCOL_NMEA = 1
};

/** One satellite in view; 20 bytes. */
typedef struct GpsGlonassSatellite {
    /** Satellite number; -1 for a block that the receiver sent without one. */
    int32_t PRN;
    /** Degrees above the horizon; 0 when not given. */
    int32_t Elevation;
    /** Degrees from true north; 0 when not given. */
    int32_t Azimuth;
    /** Carrier to noise ratio in dB-Hz; 0 when not given. */
    int32_t SNR;
    /** 1 when the satellite was among those used for the fix as its block arrived, else 0. */
    int32_t used;
} GpsGlonassSatellite;

QL_BEGIN_C

/**
 * Chooses the port and checks that it is a serial port. The port is not opened.
 * While initialised, a further call succeeds at once and changes nothing, whatever the port number.
 *
 * @param portNumber  1 to 255; 3 means COM3. Windows opens by these names COM1 to COM9 only.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when the number is out of range ("COM port value is out of bounds") or the
 *         machine has no such serial port ("Incorrect COM port"); QLERR_INTERNAL_ERROR when the system cannot tell
 *         ("Failed to check COM port availability!" and the system's text).
 */
QL_IMPORT QLerr QLGPS_Initialize(int portNumber);

/**
 * Disables the receiver when it is enabled and forgets everything received.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLGPS_Uninitialize(void);

/**
 * Opens the port (9600 baud, 8 data bits, no parity, 1 stop bit, hardware handshake) and starts reading on a thread of
 * the library. Nothing is ever written to the receiver. Succeeds at once when already enabled. The reading thread keeps
 * the DLL loaded.
 *
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised, or "CreateFile failed", "SetCommState failed",
 *         "SetComTimeouts failed", "CreateThread Failed" for the step that failed. After "CreateFile failed" try
 *         again when the port is there. After the three others this process keeps the port taken until it ends, and a
 *         further try may find it so.
 */
QL_IMPORT QLerr QLGPS_Enable(void);

/**
 * Closes the port and waits until the reading thread has ended (up to 1.5 s while the line is silent). Succeeds at once
 * when not enabled. Values stay.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLGPS_Disable(void);

/**
 * Whether the receiver is sending: true once any line, even a bad one, has come since QLGPS_Enable; false after
 * QLGPS_Disable.
 * @param enabled  receives the answer. Null: QLERR_INVALID_ARGUMENT, "Pointer is NULL.".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_IsEnabled(bool* enabled);

/**
 * Course over ground.
 * @param bearing  receives degrees from true north. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetBearing(double* bearing);

/**
 * Position. The three values are read in one step, between two sentences. (A sentence that the receiver cut short may
 * have renewed the latitude alone.)
 * @param latitude   receives decimal degrees, south negative.
 * @param longitude  receives decimal degrees, west negative.
 * @param altitude   receives the antenna's height above mean sea level in metres.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT when a pointer is null ("Pointer
 * is NULL."; nothing is written).
 */
QL_IMPORT QLerr QLGPS_GetCoordinates(double* latitude, double* longitude, double* altitude);

/**
 * Quality of the fix, from the last GGA sentence.
 * @param quality  receives 0 no fix, 1 GPS, 2 differential GPS, 3 any other. Null: QLERR_INVALID_ARGUMENT, "pointer is
 *                 NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetFixQuality(int* quality);

/**
 * Whether there is a fix, from the last GSA sentence.
 * @param status  receives 1 with a 2-D or 3-D fix, else 0. Null: QLERR_INVALID_ARGUMENT, "Buffer pointer is NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetFixStatus(int* status);

/**
 * Horizontal dilution of precision.
 * @param hdop  receives the value. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetHDOP(double* hdop);

/**
 * Satellites in view, GPS and GLONASS, as counted at this moment. It may be ahead of what QLGPS_GetSatellites gives.
 * @param count  receives 0 to 150. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetMaxSat(int* count);

/**
 * Position dilution of precision.
 * @param pdop  receives the value. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetPDOP(double* pdop);

/**
 * Satellites in view: the GPS satellites, then the GLONASS satellites.
 * @param records   receives the records; those that are not filled stay as they are. How many were filled is not told:
 *                  set @c used of every record to -1 first, which the library never writes. Null:
 *                  QLERR_INVALID_ARGUMENT, "Buffer pointer is NULL".
 * @param capacity  records that @p records holds; 150 are always enough.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT; QLERR_BUFFER_OVERFLOW when there
 *         are more satellites than @p capacity ("Buffer size too small"; nothing is written).
 */
QL_IMPORT QLerr QLGPS_GetSatellites(GpsGlonassSatellite* records, int capacity);

/**
 * Satellites used for the fix.
 * @param count  receives 0 to 24. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetSatellitesUsedForFix(int* count);

/**
 * Speed over ground.
 * @param speed  receives knots. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetSpeed(double* speed);

/**
 * Time and date, UTC: "9:27:50 19/11/2094". The hour has no leading zero. The time comes with a GGA sentence, the date
 * with an RMC sentence (the century is taken to be 20); what has not come is missing.
 * @param text  receives the text and its terminator, at most 80 characters: give it room for 80. Null:
 *              QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetTimeStamp(char* text);

/**
 * Vertical dilution of precision.
 * @param vdop  receives the value. Null: QLERR_INVALID_ARGUMENT, "pointer arg cannot be NULL".
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLGPS_GetVDOP(double* vdop);

QL_END_C

/**
 * Whether a receiver has been found in this process: QLGPS_Initialize has succeeded and no later one has failed its
 * port check. QLGPS_Uninitialize changes nothing here.
 * @return QLERR_OK; QLERR_OP_UNSUPPORTED, "Device Not available".
 */
QL_CPP_API QLerr GPS_VerifyAvailable(void) QL_CPP_NAME("_Z19GPS_VerifyAvailablev");

/**
 * Firmware version of the receiver. No receiver has a readable one: the call never succeeds and writes nothing.
 * @param buffer  null: QLERR_BUFFER_OVERFLOW, "module_name arg cannot be NULL".
 * @param size    20 or more: QLERR_OP_UNSUPPORTED, "This GPS device doesn't have firmware version"; less:
 *                QLERR_BUFFER_OVERFLOW, "buf size is too small".
 */
QL_CPP_API QLerr QLGPS_GetDeviceFirmwareVersion(char* buffer, int size)
    QL_CPP_NAME("_Z30QLGPS_GetDeviceFirmwareVersionPci");

/**
 * Name of the receiver that this machine's model carries, "LEADTEK Mod:LR9101". Needs no initialisation.
 * @param buffer  receives the text, or "NOT_SUPPORTED" when the model has no known receiver.
 * @param size    size of @p buffer in bytes, at least 20.
 * @return QLERR_OK; QLERR_BUFFER_OVERFLOW when @p size is below 20 ("buf size is too small"); the failures of the
 *         management query, for which it also waits as QLMISC_GetModelNumber does; QLERR_BUFFER_OVERFLOW when
 *         @p buffer is null ("module_name arg cannot be NULL"); QLERR_OP_UNSUPPORTED when the model has no known
 *         receiver ("UNKNOWN DEVICE").
 */
QL_CPP_API QLerr QLGPS_GetDeviceName(char* buffer, int size) QL_CPP_NAME("_Z19QLGPS_GetDeviceNamePci");

/**
 * Kind of fix.
 * @param mode  receives the value. Null: QLERR_INVALID_ARGUMENT, "Pointer arg cannot be NULL", checked first.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE when not initialised.
 */
QL_CPP_API QLerr QLGPS_GetFixMode(FixMode* mode) QL_CPP_NAME("_Z16QLGPS_GetFixModeP7FixMode");

/**
 * How the receiver chooses the kind of fix.
 * @param selection  receives the value. Null: QLERR_INVALID_ARGUMENT, "Pointer arg cannot be NULL", checked first.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE when not initialised.
 */
QL_CPP_API QLerr QLGPS_GetFixSelection(FixSelection* selection) QL_CPP_NAME("_Z21QLGPS_GetFixSelectionP12FixSelection");

/**
 * Number of receivers found in this process, as for GPS_VerifyAvailable. Needs no initialisation.
 * @param count  receives 0 or 1. Null: QLERR_BUFFER_OVERFLOW, "buffer pointer is NULL".
 * @return QLERR_OK; QLERR_BUFFER_OVERFLOW.
 */
QL_CPP_API QLerr QLGPS_GetGpsDevices(int* count) QL_CPP_NAME("_Z19QLGPS_GetGpsDevicesPi");

/**
 * Protocol of the receiver.
 * @param protocol  receives GPS_PROTOCOL_NMEA. Null: QLERR_INVALID_ARGUMENT, "Pointer arg cannot be NULL", checked
 * first.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT; QLERR_INVALID_STATE when not initialised.
 */
QL_CPP_API QLerr QLGPS_GetProtocol(GpsProtType* protocol) QL_CPP_NAME("_Z17QLGPS_GetProtocolP11GpsProtType");

#if defined(_MSC_VER) && !defined(__cplusplus)
/* C programs of Microsoft's tools find the decorated names through these aliases. */
#pragma comment(linker, "/alternatename:__imp_GPS_VerifyAvailable=__imp_?GPS_VerifyAvailable@@YA?AW4QLerr@@XZ")
#pragma comment( \
    linker,      \
    "/alternatename:__imp_QLGPS_GetDeviceFirmwareVersion=__imp_?QLGPS_GetDeviceFirmwareVersion@@YA?AW4QLerr@@PEADH@Z")
#pragma comment(linker, "/alternatename:__imp_QLGPS_GetDeviceName=__imp_?QLGPS_GetDeviceName@@YA?AW4QLerr@@PEADH@Z")
#pragma comment(linker, "/alternatename:__imp_QLGPS_GetFixMode=__imp_?QLGPS_GetFixMode@@YA?AW4QLerr@@PEAW4FixMode@@@Z")
#pragma comment( \
    linker,      \
    "/alternatename:__imp_QLGPS_GetFixSelection=__imp_?QLGPS_GetFixSelection@@YA?AW4QLerr@@PEAW4FixSelection@@@Z")
#pragma comment(linker, "/alternatename:__imp_QLGPS_GetGpsDevices=__imp_?QLGPS_GetGpsDevices@@YA?AW4QLerr@@PEAH@Z")
#pragma comment(linker, \
                "/alternatename:__imp_QLGPS_GetProtocol=__imp_?QLGPS_GetProtocol@@YA?AW4QLerr@@PEAW4GpsProtType@@@Z")
#endif

#endif
