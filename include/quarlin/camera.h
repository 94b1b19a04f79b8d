/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file camera.h
 * The camera light: on, off, or on for a number of seconds.
 *
 * The light is driven by the maker's library, camlamp_x64.dll, which QLCAM_Initialize loads by name (the system's
 * search order applies) and which stays loaded until the process ends. The light itself belongs to the machine: it
 * stays as it was switched when the program that switched it ends, and other programs may switch it meanwhile.
 *
 * States: not initialised -> QLCAM_Initialize -> initialised -> QLCAM_Uninitialize -> not initialised. A failed
 * QLCAM_Initialize leaves the family not initialised, also when it was initialised before; it may be repeated.
 *
 * Codes that all functions but QLCAM_Initialize share, in the order in which they are checked:
 * - QLERR_INVALID_STATE, "Camera light API has not been initialized.".
 * - QLERR_INVALID_ARGUMENT, "Camera light parameter is null.": the output pointer is null.
 *
 * Whether the light obeyed is not reported: the statuses of the maker's library decide in QLCAM_Initialize, and in
 * QLCAM_IsCameraLightOn, which answers false when there is none to trust.
 *
 * Threads: no function takes a lock; call them from one thread, or one at a time. No function calls back.
 */
#ifndef QUARLIN_CAMERA_H
#define QUARLIN_CAMERA_H

#include "error.h"

#include <stdbool.h>

QL_BEGIN_C

/**
 * Loads the camera light's library, starts it, and switches the light off. May be repeated while initialised; it then
 * does all of that again.
 *
 * @return QLERR_OK; QLERR_OP_UNSUPPORTED, "Camera light API is unsupported .", when the library or one of its functions
 *         is missing, or it does not start, or the light does not switch off.
 */
QL_IMPORT QLerr QLCAM_Initialize(void);

/**
 * Ends the use of the light, which stays as it is.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLCAM_Uninitialize(void);

/**
 * Switches the light on until it is switched off.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLCAM_SetCameraLightOn(void);

/**
 * Switches the light off, also when a time is running.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLCAM_SetCameraLightOff(void);

/**
 * Switches the light on for a time, after which it goes off by itself.
 * @param seconds  the time; more than 254 count as 254, less than 1 do nothing.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised.
 */
QL_IMPORT QLerr QLCAM_TurnCameraLightOnForTime(int seconds);

/**
 * Whether the light is on: its timer reads anything but 0.
 * @param on  receives the answer; false when the light's library cannot tell.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLCAM_IsCameraLightOn(bool* on);

/**
 * What the timer of the light reads, as the light's library gives it. Whether that is the seconds left or a mere on and
 * off is that library's own affair.
 * @param time  receives the value; 255 when the light's library gives none.
 * @return QLERR_OK; QLERR_INVALID_STATE when not initialised; QLERR_INVALID_ARGUMENT.
 */
QL_IMPORT QLerr QLCAM_GetCameraLightTime(uint8_t* time);

QL_END_C

#endif
