/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file uhf_rfid.h
 * The UHF RFID reader: EPC Gen2 (ISO/IEC 18000-63) tags, through a USB HID reader (vendor 24E9, product 3993).
 *
 * States: QLUHFRFID_OpenReader -> reader open -> QLUHFRFID_CloseReader -> reader closed. One reader is open in a
 * process at most. The caller keeps the handle that opening gave and passes it to every call.
 *
 * Every function sends one command and waits for its reply (opening and closing send none). Nothing is retried and
 * nothing is kept: what a tag or the reader refuses comes back as a code.
 *
 * Codes that all functions but QLUHFRFID_OpenReader share, in the order in which they are checked, before the
 * arguments:
 * - QLERR_UHFRFID_SYSTEM: no QLUHFRFID_OpenReader has been called in this process yet.
 * - QLERR_UHFRFID_INVALID_HANDLE: no reader is open, or the handle is null or the invalid value ((void*)-1, which is
 *   INVALID_HANDLE_VALUE). A handle is not compared with the one that opening gave: any other value goes to the system.
 *
 * Codes of the exchange with the reader, shared by all functions but opening and closing:
 * - QLERR_UHFRFID_BUFFERTOOBIG: the command is longer than the reader's output report; nothing was sent.
 * - QLERR_UHFRFID_COMMAND_SEND: the command could not be sent, for one because the reader was unplugged before.
 * - QLERR_UHFRFID_COMMAND_RECEIVE: no reply could be read, for one because the reader was unplugged meanwhile. Whether
 *   the reader has carried the command out is not known.
 * - QLERR_UHFRFID_UNCLASSIFIED: the reply is not one to this command, or does not hold what it says it holds. Nothing
 *   is written to the caller's variables.
 * - QLERR_UHFRFID_SYSTEM: out of memory.
 * - 65536 plus the status of the reader when that is not 0. QLERR_UHFRFID_REQ_NOT_ALLOWED (status 01) to
 *   QLERR_UHFRFID_HW_FAILURE (status FF) name those in use; any other status comes as 65536 plus its value too.
 *
 * The record: unlike the other families, this one leaves a record after a success as well. QLAPI_GetLastError then
 * gives QLERR_OK and the text "QLERR_OK".
 *
 * Texts: most texts are the name of the code. Differing: status 01 and every status without a name read "Unknown
 * Error"; "QLERR_UHFRFID_READ ", "QLERR_UHFRFID_OTHER " and "QLERR_UHFRFID_SYSTEM " end with a space. The checks that
 * opening, closing and the functions for selecting, reading, writing, locking, killing and the power make before they
 * send carry the bare name of the code ("QLERR_INVALID_ARGUMENT", "QLERR_UHFRFID_SYSTEM"); the same checks of the
 * inventory and of the query functions read "Invalid Argument" and "QLERR_UHFRFID_SYSTEM ".
 *
 * Threads: any, at any time. Each call holds the family's one lock to its end, so that commands and replies of several
 * threads never mix. There is no time-out: a reader that never answers keeps its caller waiting, and with it every
 * other caller of this family, QLUHFRFID_CloseReader included, until it answers, however late, or is unplugged. An
 * unplugged reader ends the wait with QLERR_UHFRFID_COMMAND_RECEIVE; those that waited for the lock then get
 * QLERR_UHFRFID_COMMAND_SEND, the one that closes gets QLERR_OK, and those behind it QLERR_UHFRFID_INVALID_HANDLE. The
 * reader stays open until QLUHFRFID_CloseReader, also when it is gone: close, then open again. No function calls back.
 */
#ifndef QUARLIN_UHF_RFID_H
#define QUARLIN_UHF_RFID_H

#include "error.h"

QL_BEGIN_C

/**
 * Finds the reader among the HID devices that are present and opens it for this process alone.
 *
 * @param handle  receives the handle of the reader; the invalid value ((void*)-1) when the call fails. It stays as it
 *                is when a reader is open already, or when the family's lock cannot be made.
 *
 * @return QLERR_OK; QLERR_UHFRFID_SYSTEM when the family's lock cannot be made, the devices cannot be listed, or memory
 *         is short; QLERR_INVALID_ARGUMENT when @p handle is null; QLERR_UHFRFID_INVALID_HANDLE when a reader is open
 *         already (it stays usable), or when the reader was found but cannot be opened for reading and writing or does
 *         not tell its report sizes; QLERR_UHFRFID_DEVICENOTFOUND when no reader is there, or another program has it.
 */
QL_IMPORT QLerr QLUHFRFID_OpenReader(void** handle);

/**
 * Closes the reader. Waits for a call that is in progress on another thread, as all functions here do.
 *
 * @param handle  the handle that QLUHFRFID_OpenReader gave. It is not usable afterwards.
 *
 * @return QLERR_OK; QLERR_UHFRFID_SYSTEM; QLERR_UHFRFID_INVALID_HANDLE, also when the system does not know the handle
 *         (the reader then stays open).
 */
QL_IMPORT QLerr QLUHFRFID_CloseReader(void* handle);

/**
 * Starts a new inventory round and gives its first tag.
 *
 * @param handle  the reader.
 * @param tagId   receives the identifier as the reader reports it: two bytes of protocol control, then the EPC. Bytes,
 *                without terminator. Untouched when the reader reports an identifier of no bytes.
 * @param length  in: size of @p tagId in bytes, 0 to 255 (64 are always enough). Out: bytes written; untouched when the
 *                reader reports an identifier of no bytes, or the call fails.
 * @param signal  receives the strength of the tag's signal, -128 to 127, as the reader measures it.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when a pointer is null or the size is negative or above 255;
 *         QLERR_UHFRFID_NO_TAGS when the reader sees none; QLERR_UHFRFID_BUFFERTOOSMALL when @p tagId cannot hold the
 *         identifier (nothing is written); the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetFirstTag(void* handle, char* tagId, int* length, int* signal);

/**
 * Gives the next tag of the round that QLUHFRFID_GetFirstTag started.
 *
 * @param handle  the reader.
 * @param tagId   as for QLUHFRFID_GetFirstTag.
 * @param length  as for QLUHFRFID_GetFirstTag; set it to the size again before each call.
 * @param signal  as for QLUHFRFID_GetFirstTag.
 *
 * @return as QLUHFRFID_GetFirstTag; QLERR_UHFRFID_NO_TAGS when the round is over.
 */
QL_IMPORT QLerr QLUHFRFID_GetNextTag(void* handle, char* tagId, int* length, int* signal);

/**
 * Selects the one tag that reading, writing, locking and killing then act upon.
 *
 * @param handle  the reader.
 * @param tagId   the identifier as the inventory gave it. Its first two bytes (protocol control) are not sent.
 * @param length  bytes of @p tagId, those two included: 3 to 33.
 *
 * @return QLERR_OK; checked in this order: QLERR_INVALID_ARGUMENT when @p tagId is null or @p length is 256 or more;
 *         QLERR_UHFRFID_BUFFERTOOSMALL when @p length is below 3; QLERR_INVALID_ARGUMENT when it is above 33; the
 * shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SelectTag(void* handle, unsigned char* tagId, unsigned int length);

/**
 * Reads words of a tag's memory.
 *
 * @param handle          the reader.
 * @param bank            memory bank, 0 to 255: 0 reserved, 1 EPC, 2 TID, 3 user.
 * @param wordPointer     first word to read, 0 to 255.
 * @param password        access password, its least significant byte first: a 32-bit number as it lies in memory. All
 *                        bytes 0 when the tag has none.
 * @param passwordLength  bytes of @p password, 1 to 4; bytes that are not given count as 0.
 * @param data            receives the words as the tag sends them, most significant byte first.
 * @param wordCount       words (of 2 bytes) to read, and what @p data holds: 0 to 255. A reply holds 30 words.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when a pointer is null or a number is out of range;
 *         QLERR_UHFRFID_BUFFERTOOSMALL when more words come than @p wordCount (nothing is written); the shared codes.
 *         When fewer words come, the rest of @p data is untouched.
 */
QL_IMPORT QLerr QLUHFRFID_ReadTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                                  int passwordLength, void* data, int wordCount);

/**
 * Writes words of a tag's memory.
 *
 * @param handle          the reader.
 * @param bank            as for QLUHFRFID_ReadTag.
 * @param wordPointer     first word to write, 0 to 255.
 * @param password        access password, as for QLUHFRFID_ReadTag.
 * @param passwordLength  bytes of @p password, 1 to 4.
 * @param data            the words, most significant byte first.
 * @param wordCount       words (of 2 bytes) to write, 1 to 27.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when a pointer is null or a number is out of range; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_WriteTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                                   int passwordLength, unsigned char* data, int wordCount);

/**
 * Locks or unlocks areas of a tag's memory. Some locks are permanent.
 *
 * @param handle          the reader.
 * @param lockParameter1  0 to 255, passed to the reader, which gives it its meaning.
 * @param lockParameter2  0 to 255, passed to the reader, which gives it its meaning.
 * @param password        access password, as for QLUHFRFID_ReadTag.
 * @param passwordLength  bytes of @p password, 1 to 4.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p password is null or a number is out of range; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_LockTag(void* handle, unsigned int lockParameter1, unsigned int lockParameter2,
                                  unsigned char* password, int passwordLength);

/**
 * Kills a tag, for ever.
 *
 * @param handle          the reader.
 * @param password        kill password, in the byte order of QLUHFRFID_ReadTag's access password.
 * @param passwordLength  bytes of @p password, 1 to 4.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p password is null or the length is out of range; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_KillTag(void* handle, unsigned char* password, int passwordLength);

/**
 * Sets the transmit power.
 * @param handle  the reader.
 * @param power   0 to 255, in the unit of the reader.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p power is above 255; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetPower(void* handle, unsigned int power);

/**
 * Gets the transmit power.
 * @param handle  the reader.
 * @param power   receives 0 to 255, in the unit of the reader.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p power is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetPower(void* handle, unsigned int* power);

/**
 * Sets the backscatter link frequency of the inventory.
 * @param handle  the reader.
 * @param kHz     in: 40, 160, 213, 256, 320 or 640. Out, on success: what the reader reports back, as
 *                QLUHFRFID_GetLinkFreqForQuery would.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p kHz is null or its value is none of these; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetLinkFreqForQuery(void* handle, unsigned int* kHz);

/**
 * Sets how tags encode what they send.
 * @param handle  the reader.
 * @param value   in: 0 (FM0), 1 (Miller 2), 2 (Miller 4) or 3 (Miller 8). Out, on success: what the reader reports
 * back.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null or its value is above 3; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetMillerForQuery(void* handle, unsigned int* value);

/**
 * Sets the session of the inventory.
 * @param handle  the reader.
 * @param value   in: 0 to 3, for S0 to S3. Out, on success: what the reader reports back.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null or its value is above 3; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetSessionForQuery(void* handle, unsigned int* value);

/**
 * Sets the Q with which a round begins: the reader offers 2 to the power of Q slots.
 * @param handle  the reader.
 * @param value   in: 0 to 15. Out, on success: what the reader reports back.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null or its value is above 15; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetQBeginForQuery(void* handle, unsigned int* value);

/**
 * Sets the sensitivity of the receiver.
 * @param handle  the reader.
 * @param value   in: -86 to -50, in dBm. Out, on success: what the reader reports back.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null or its value is out of range; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_SetSensitivityForQuery(void* handle, int* value);

/**
 * Gets the backscatter link frequency of the inventory.
 * @param handle  the reader.
 * @param kHz     receives 40, 160, 213, 256, 320 or 640; 160 also when the reader reports a frequency that has no name
 *                here.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p kHz is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetLinkFreqForQuery(void* handle, unsigned int* kHz);

/**
 * Gets how tags encode what they send.
 * @param handle  the reader.
 * @param value   receives what the reader reports, 0 to 255; see QLUHFRFID_SetMillerForQuery.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetMillerForQuery(void* handle, unsigned int* value);

/**
 * Gets the session of the inventory.
 * @param handle  the reader.
 * @param value   receives what the reader reports, 0 to 255; see QLUHFRFID_SetSessionForQuery.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetSessionForQuery(void* handle, unsigned int* value);

/**
 * Gets the Q with which a round begins.
 * @param handle  the reader.
 * @param value   receives what the reader reports, 0 to 255; see QLUHFRFID_SetQBeginForQuery.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetQBeginForQuery(void* handle, unsigned int* value);

/**
 * Gets the sensitivity of the receiver.
 * @param handle  the reader.
 * @param value   receives what the reader reports, in dBm, -128 to 127.
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p value is null; the shared codes.
 */
QL_IMPORT QLerr QLUHFRFID_GetSensitivityForQuery(void* handle, int* value);

QL_END_C

#endif
