/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file device.h
 * The computer's built-in devices and its batteries: what is present, powered and enabled, and how a battery is doing.
 *
 * The answers are those of the maker's device-check library, HwProbeLib.dll, which QLDEVICE_Initialize loads by name
 * (the system's search order applies). Which device each number from 1 to 15 stands for, and in which units and
 * encodings a battery is described, is that library's own affair: its values pass through unchanged.
 *
 * States: not initialised -> QLDEVICE_Initialize -> initialised -> QLDEVICE_Uninitialize -> not initialised.
 * Initialisations are counted: each further QLDEVICE_Initialize wants a QLDEVICE_Uninitialize of its own, and the last
 * of them unloads the device-check library.
 *
 * Codes that the functions share, in the order in which they are checked:
 * - QLERR_INVALID_STATE, "Device API has not been initialized.": QLDEVICE_Initialize has not succeeded, or every
 *   initialisation has been undone.
 * - QLERR_INVALID_ARGUMENT, and a text that speaks of the argument: the number of the device or battery is out of
 *   range, or an output pointer is null. Nothing is written.
 * - What the device-check library reports ("probe failures" below):
 *   - QLERR_OP_UNSUPPORTED, "Unsupported OS", "Incompatable or missing misc driver" or "Invalid device check library
 *     operation" (its statuses -1, -2 and -3);
 *   - QLERR_INVALID_STATE, "Device check library has not been initialized" (-10);
 *   - QLERR_INVALID_ARGUMENT, "Invalid device check library parameter" (-11);
 *   - QLERR_IO_ERROR, "Buffer overflow error" (-12);
 *   - QLERR_INTERNAL_ERROR, "Unknown device check error" (every other status but 0 and 1, which are good).
 *
 * Threads: no function takes a lock. Call QLDEVICE_Initialize and QLDEVICE_Uninitialize from one thread, and not while
 * another function of this header runs. The others may be called from any thread as far as the device-check library
 * allows; the library adds no state of its own to a query. No function calls back.
 */
#ifndef QUARLIN_DEVICE_H
#define QUARLIN_DEVICE_H

#include "error.h"

#include <stdbool.h>
#include <stddef.h>

/** One device; 16 bytes. */
typedef struct DeviceStatusEntry {
    /** Bytes of this record: always 16. */
    uint32_t size;
    /** The device's number. */
    uint32_t device;
    /** 1 when the device is powered on. */
    uint32_t powerState;
    /** 1 or 2 when the device is enabled in the BIOS. */
    uint32_t biosState;
} DeviceStatusEntry;

/** One battery, as the device-check library describes it; 96 bytes. */
typedef struct BatteryInfo {
    /** Exactly 12 characters of UTF-16; there need not be a terminator among them. */
    wchar_t BatteryName[12];
    int32_t Chemistry;
    int32_t PowerState;
    int32_t RemainingCapacity;
    int32_t FullChargedCapacity;
    int32_t DesignedCapacity;
    int32_t Voltage;
    int32_t Rate;
    int32_t TotalChargeIndex;
    int32_t Temperature;
    int32_t BatteryHealth;
    /** Exactly 12 characters of UTF-16; there need not be a terminator among them. */
    wchar_t BatteryID[12];
    int32_t LastRecalibrationDate;
    int32_t EnvironmentStatus;
} BatteryInfo;

QL_BEGIN_C

/**
 * Loads the device-check library and starts it. While initialised, a further call only counts.
 *
 * @return QLERR_OK; QLERR_INTERNAL_ERROR when the library is not found ("Failed LoadLibrary(HwProbeLib)") or lacks a
 *         function ("Failed GetProcAddress(HwProbe_Initialize)", and likewise for HwProbe_Uninitialize,
 *         HwProbe_GetDeviceInfo, HwProbe_GetNumberOfDevices, HwProbe_GetDeviceList and HwProbe_GetBatteryCurrentInfo,
 *         looked for in this order); the probe failures when it does not start. After a failure nothing is initialised
 *         and the call may be repeated; a device-check library that was found stays loaded until the process ends.
 */
QL_IMPORT QLerr QLDEVICE_Initialize(void);

/**
 * Undoes one initialisation. The last one stops and unloads the device-check library.
 *
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; the probe failures when the device-check library reports
 *         one as it is stopped: it is unloaded and not initialised any more all the same.
 */
QL_IMPORT QLerr QLDEVICE_Uninitialize(void);

/**
 * Whether the computer has a device.
 * @param device     1 to 15.
 * @param available  receives the answer; false after a probe failure.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT for the number ("The argument
 *         device is invalid. Unknown device.") or a null pointer ("The argument available cannot be NULL."); the probe
 *         failures.
 */
QL_IMPORT QLerr QLDEVICE_GetDeviceAvailable(int device, bool* available);

/**
 * Whether a device is powered on.
 * @param device     1 to 15.
 * @param poweredOn  receives the answer; false after a probe failure.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT for the number ("The argument
 *         device is invalid. Unknown device.") or a null pointer ("The argument enabled cannot be NULL."); the probe
 *         failures.
 */
QL_IMPORT QLerr QLDEVICE_GetDevicePoweredOn(int device, bool* poweredOn);

/**
 * Whether a device is enabled in the BIOS. A device without power counts as not enabled, whatever the BIOS says.
 * @param device   1 to 15.
 * @param enabled  receives the answer; false after a probe failure.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT for the number ("The argument
 *         device is invalid. Unknown device.") or a null pointer ("The argument enabled cannot be NULL."); the probe
 *         failures.
 */
QL_IMPORT QLerr QLDEVICE_GetDeviceEnabledInBios(int device, bool* enabled);

/**
 * All devices that the device-check library lists. Ask for their number first:
 * @code
 * int count = 0;
 * QLDEVICE_GetDevices(NULL, &count);            // count receives the number of devices
 * DeviceStatusEntry* entries = calloc(count, sizeof *entries);
 * QLDEVICE_GetDevices(entries, &count);         // count receives the number of entries filled
 * @endcode
 *
 * @param entries  receives the devices, in the device-check library's order; entries that are not filled stay as they
 *                 are. Null asks for the number alone.
 * @param count    in: entries that @p entries holds, not looked at when @p entries is null. Out: without @p entries the
 *                 number of devices; with @p entries it is lowered to the number of devices when it was larger, and
 *                 stays as it is when there are more devices than room. A negative one copies nothing. Untouched on
 *                 failure.
 *
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT when @p count is null ("The
 *         argument count cannot be NULL."); the probe failures, of which "Unknown device check error" is also the
 *         answer to a negative number of devices or one above 1024.
 */
QL_IMPORT QLerr QLDEVICE_GetDevices(DeviceStatusEntry* entries, int* count);

/**
 * The state of a battery now.
 * @param battery  1 or 2.
 * @param info     receives the record. After a probe failure it holds what the device-check library left in it.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT for another number and for a null
 *         pointer, both "The argument device is invalid."; the probe failures.
 */
QL_IMPORT QLerr QLDEVICE_GetBatteryInfo(int battery, BatteryInfo* info);

QL_END_C

#endif
