/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file error.h
 * Result codes of every function of qlsdk.dll, and the text that explains the last one.
 *
 * The library in one page
 * -----------------------
 * - Prefixes: QLAPI_ errors, QLSTR_ text, QLLIB_ and QLMISC_ the library and the machine, QLBCR_ the barcode scanner,
 *   QLMSR_ card readers, QLGPS_ (and GPS_VerifyAvailable) the GPS receiver, QLUHFRFID_ the UHF RFID reader, QLDEVICE_
 *   built-in devices and batteries, QLCAM_ the camera light.
 * - Every function returns a QLerr; that of QLAPI_GetLastError is the code that it fetched. Codes decide,
 *   texts explain: branch on the code, show the text to a person. The texts are fixed English
 *   sentences; where the system failed, its own words follow in the user's language.
 * - A failing call leaves its code and its text for the calling thread; QLAPI_GetLastError fetches them, once. A
 *   succeeding call erases what an earlier one left (the three QLMISC_ functions that do nothing erase nothing either);
 *   one of QLUHFRFID_ leaves QLERR_OK and the text "QLERR_OK" instead. No thread sees another thread's record.
 * - Narrow text is UTF-8, wide text is UTF-16. Sizes of text buffers count elements (char or wchar_t), terminator
 *   included, unless said otherwise.
 * - All buffers belong to the caller. The library keeps no pointer beyond the call, except where a function says so.
 * - No function but QLAPI_GetLastError lets a C++ exception out.
 * - Threads: each family header says which of its functions may overlap. The functions of this header and of strings.h
 *   may be called from any number of threads at once.
 */
#ifndef QUARLIN_ERROR_H
#define QUARLIN_ERROR_H

#include "export.h"

QL_ENUM_TYPE(QLerr);
/**
 * Result of a call. The first seven are used by every family; the QLERR_UHFRFID_ codes by the UHF RFID family alone:
 * 65536 plus the status byte of the reader, or 65536 plus 256 and more for a failure of the transport itself.
 */
enum QLerr QL_ENUM_INT32 {
    /** The call did what it says. */
    QLERR_OK = 0,
    /** The caller passed a value or a pointer that the function refuses. */
    QLERR_INVALID_ARGUMENT = 1,
    /** The caller called at the wrong time: not initialised, or the port cannot be opened now. */
    QLERR_INVALID_STATE = 2,
    /** The device answered wrongly or not at all. */
    QLERR_IO_ERROR = 3,
    /** This machine or this device cannot do it. */
    QLERR_OP_UNSUPPORTED = 4,
    /** The operating system or a library underneath failed; the text says which step and why. */
    QLERR_INTERNAL_ERROR = 5,
    /** The caller's buffer is too small (a few functions also report a null buffer so). */
    QLERR_BUFFER_OVERFLOW = 6,

    QLERR_UHFRFID_REQ_NOT_ALLOWED = 0x10001,
    QLERR_UHFRFID_ACCESS = 0x10002,
    QLERR_UHFRFID_KILL = 0x10003,
    QLERR_UHFRFID_NOREPLY = 0x10004,
    QLERR_UHFRFID_LOCK = 0x10005,
    QLERR_UHFRFID_WRITE = 0x10006,
    QLERR_UHFRFID_ERASE = 0x10007,
    QLERR_UHFRFID_READ = 0x10008,
    QLERR_UHFRFID_SELECT = 0x10009,
    QLERR_UHFRFID_CHANNEL_TIMEOUT = 0x1000A,
    QLERR_UHFRFID_INVALID_PARAMETER2 = 0x1000F,
    QLERR_UHFRFID_EASCODE = 0x10020,
    QLERR_UHFRFID_OTHER = 0x10080,
    QLERR_UHFRFID_MEMORY_OVERRUN = 0x10083,
    QLERR_UHFRFID_MEMORY_LOCKED = 0x10084,
    QLERR_UHFRFID_INSUFFICIENT_POWER = 0x1008B,
    QLERR_UHFRFID_NONSPECIFIC = 0x1008F,
    QLERR_UHFRFID_READONLY_ADDRESS = 0x100A0,
    QLERR_UHFRFID_PCIE_RADIO_DISABLED = 0x100B0,
    QLERR_UHFRFID_SECURITY_FAILURE = 0x100FE,
    QLERR_UHFRFID_HW_FAILURE = 0x100FF,
    QLERR_UHFRFID_INVALID_HANDLE = 0x10102,
    QLERR_UHFRFID_NO_TAGS = 0x10104,
    QLERR_UHFRFID_COMMAND_SEND = 0x10105,
    QLERR_UHFRFID_COMMAND_RECEIVE = 0x10106,
    QLERR_UHFRFID_BUFFERTOOSMALL = 0x10107,
    QLERR_UHFRFID_BUFFERTOOBIG = 0x10108,
    QLERR_UHFRFID_SYSTEM = 0x1010A,
    QLERR_UHFRFID_DEVICENOTFOUND = 0x1010B,
    QLERR_UHFRFID_UNCLASSIFIED = 0x1010C
};

QL_BEGIN_C

/**
 * Fetches the calling thread's last error and forgets it.
 *
 * @param buffer      receives the text, UTF-8, with a terminator. The longest text is that of an operating-system
 *                    failure; 1024 bytes are plenty.
 * @param bufferSize  size of @p buffer in bytes, terminator included. When there is no error, a size below 1 writes
 *                    nothing, and @p buffer may then be null.
 *
 * @return the code of the thread's last failed call; QLERR_OK with an empty text when there is none: the thread's last
 *         call succeeded (one of QLUHFRFID_: QLERR_OK with the text "QLERR_OK"), or the error was fetched before.
 *
 * When there is an error, a text that does not fit (30 characters into a @p bufferSize of 10: 9 characters and a
 * terminator are written) is itself a failure, and so is a @p bufferSize of 0 (nothing is written) or below 0 (a
 * terminator is written at buffer[0]). Such a failure has no record to go to, so it leaves this function, and only this
 * one, as a C++ exception derived from std::runtime_error ("Failed to copy string" and the system's text); the error
 * stays to be fetched with a larger buffer. A caller that cannot catch it must offer enough room. (On a system without
 * message texts nothing is thrown: the cut text stays in the buffer and the error counts as fetched.)
 *
 * Threads: any; each thread has its own record.
 */
QL_IMPORT QLerr QLAPI_GetLastError(char* buffer, int bufferSize);

QL_END_C

#endif
