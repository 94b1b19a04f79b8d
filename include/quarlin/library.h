/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file library.h
 * Which release of the library this is, and which machine it runs on.
 *
 * Two sources name the machine, and they may differ: the firmware's product name (QLLIB_GetModelNumber) and the model
 * that Windows management reports (QLMISC_GetModelNumber).
 */
#ifndef QUARLIN_LIBRARY_H
#define QUARLIN_LIBRARY_H

#include "error.h"

#include <stddef.h>

QL_BEGIN_C

/**
 * Release of the library, "3.0.1000.0".
 *
 * Two calls: first with a null buffer and *size 0 to learn the size, then with a buffer of that many characters.
 *
 * @param buffer  receives the text; null asks for the size.
 * @param size    in: capacity of @p buffer in wchar_t, 0 for a size query. Out: wchar_t needed, terminator included
 *                (11); untouched on failure.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p size is null, or @p buffer is null and *size is not 0 ("The argument
 *         count cannot be NULL."); QLERR_BUFFER_OVERFLOW when *size is too small ("Buffer size too small").
 *
 * Threads: any, may overlap with everything.
 */
QL_IMPORT QLerr QLLIB_GetSDKVersion(wchar_t* buffer, int* size);

/**
 * Product name of the machine as its firmware gives it.
 *
 * @param buffer  as for QLLIB_GetSDKVersion.
 * @param size    as for QLLIB_GetSDKVersion.
 *
 * @return as QLLIB_GetSDKVersion, and QLERR_INTERNAL_ERROR when the firmware gives no name ("error."), which is found
 *         out after the checks of the arguments and before the check of the size.
 *
 * Threads: any, may overlap with everything.
 */
QL_IMPORT QLerr QLLIB_GetModelNumber(wchar_t* buffer, int* size);

/**
 * Model of the machine as Windows management reports it, UTF-8. Asked for once per process (this takes a while, and
 * initialises and releases COM on the calling thread); after the first success the answer is remembered. A model of 250
 * characters or more reads as empty.
 *
 * @param buffer      receives the text and its terminator; may be null. Nothing is written, and the call succeeds, when
 *                    @p bufferSize is below the length.
 * @param bufferSize  capacity of @p buffer in bytes. Exactly the length leaves no room for the terminator and fails:
 * give length + 1. 250 bytes hold every model.
 * @param length      receives the length of the text without terminator; may be null. Filled before the copy.
 *
 * @return QLERR_OK; QLERR_INTERNAL_ERROR when a management step fails ("Could not connect to WMI" and so on, with its
 *         HRESULT; "WMI Service not initialized" without one), when the model has more than 249 bytes in UTF-8 although
 *         it has fewer than 250 characters ("Unicode to multibyte conversion failed" and the system's text), or when
 * the copy fails ("Failed to copy string" and the system's text).
 *
 * Threads: any. Calls wait for one another. A call that fails keeps its thread the only one that can ask again: calls
 * of other threads wait until the process ends.
 */
QL_IMPORT QLerr QLMISC_GetModelNumber(char* buffer, int bufferSize, int* length);

/** Does nothing and leaves the last error as it is; there for programs that were built against it. @return QLERR_OK. */
QL_IMPORT QLerr QLMISC_ShowConsole(void);
/** Does nothing, as QLMISC_ShowConsole. @return QLERR_OK. */
QL_IMPORT QLerr QLMISC_ThreadSleep(void);
/** Does nothing, as QLMISC_ShowConsole. @return QLERR_OK. */
QL_IMPORT QLerr QLMISC_WaitForDebugger(void);

QL_END_C

#endif
