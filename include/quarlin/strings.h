/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file strings.h
 * The library's own rules for text in buffers of fixed size: copy, print and convert, never beyond the count.
 *
 * Counts are elements of the buffer's kind, terminator included. Copies and prints cut a text that does not fit to
 * count - 1 elements, add the terminator, and fail: a cut text is never reported as a success. 4 is too few for "abcd"
 * ("abc" is left in the buffer), 5 is enough. A conversion that fails leaves the buffer with anything in it, also
 * without a terminator. Text that is not well-formed UTF-8 or UTF-16 is converted with replacement characters.
 *
 * Codes:
 * - QLERR_OK.
 * - QLERR_INTERNAL_ERROR: the text did not fit, the count is below 1 (below 0 for conversions), or a text or buffer
 *   pointer is null. The last error reads "Failed to copy string", "Failed to print formatted string", "Multibyte to
 *   unicode conversion failed" or "Unicode to multibyte conversion failed", a line end, and the system's code and text.
 * - QLERR_INVALID_ARGUMENT: a required count pointer is null ("The argument count cannot be NULL.";
 *   QLSTR_CppStrToCStr has texts of its own). Nothing is written.
 * - QLERR_BUFFER_OVERFLOW: QLSTR_CppStrToCStr alone.
 *
 * Threads: any, all functions may overlap. No pointer is kept.
 */
#ifndef QUARLIN_STRINGS_H
#define QUARLIN_STRINGS_H

#include "error.h"

#include <stdarg.h>
#include <stddef.h>

QL_BEGIN_C

/**
 * Converts UTF-8 to UTF-16.
 * @param dst       receives the text. With a @p dstSize of 0 nothing is written and it may be null.
 * @param dstSize   capacity of @p dst in wchar_t; 0 asks for the size alone.
 * @param outCount  receives the wchar_t written (or needed, for a @p dstSize of 0), terminator included: 2 for "é".
 *                  Required; untouched on failure.
 * @param src       UTF-8 text with a terminator.
 */
QL_IMPORT QLerr QLSTR_NarrowToWide(wchar_t* dst, int dstSize, int* outCount, const char* src);

/**
 * Converts UTF-16 to UTF-8.
 * @param dst       receives the text. With a @p dstSize of 0 nothing is written and it may be null.
 * @param dstSize   capacity of @p dst in bytes; 0 asks for the size alone.
 * @param outCount  receives the bytes written (or needed, for a @p dstSize of 0), terminator included. Required;
 *                  untouched on failure.
 * @param src       UTF-16 text with a terminator.
 */
QL_IMPORT QLerr QLSTR_WideToNarrow(char* dst, int dstSize, int* outCount, const wchar_t* src);

/**
 * Copies wide text.
 * @param dst      receives the text.
 * @param dstSize  capacity of @p dst in wchar_t. 0 writes nothing; a negative count writes a terminator at dst[0]; both
 *                 fail.
 * @param src      text with a terminator.
 */
QL_IMPORT QLerr QLSTR_StrCopy(wchar_t* dst, int dstSize, const wchar_t* src);

/**
 * Copies narrow text. A cut falls between bytes, also inside a UTF-8 character.
 * @param dst      receives the text.
 * @param dstSize  capacity of @p dst in bytes. 0 writes nothing; a negative count writes a terminator at dst[0]; both
 *                 fail.
 * @param src      text with a terminator.
 */
QL_IMPORT QLerr QLSTR_StrCopyAnsi(char* dst, int dstSize, const char* src);

/**
 * Prints formatted wide text. Formats are those of Microsoft's runtime: %s in a wide format takes wide text.
 * @param dst      receives the text.
 * @param dstSize  capacity of @p dst in wchar_t, as for QLSTR_StrCopy.
 * @param written  left untouched, may be null: it holds the place that QLSTR_StrVarPrintf fills.
 * @param format   wide format text, followed by its arguments.
 */
QL_IMPORT QLerr QLSTR_StrPrintf(wchar_t* dst, int dstSize, int* written, const wchar_t* format, ...);

/**
 * Prints formatted wide text from an argument list. Formats are those of Microsoft's runtime.
 * @param dst      receives the text.
 * @param dstSize  capacity of @p dst in wchar_t, as for QLSTR_StrCopy.
 * @param written  receives the wchar_t written, terminator not included: 2 for "%d" with 42. Required; untouched on
 *                 failure.
 * @param format   wide format text.
 * @param args     the format's arguments.
 */
QL_IMPORT QLerr QLSTR_StrVarPrintf(wchar_t* dst, int dstSize, int* written, const wchar_t* format, va_list args);

QL_END_C

#if defined(__cplusplus) && defined(QL_WITH_STD_STRING)
#include <string>
/**
 * Copies a library string out to a caller's buffer. For programs built with the same toolset and runtime as the DLL
 * alone, because a std::string crosses the border by value; define QL_WITH_STD_STRING to have it declared.
 *
 * @param outStr      receives the text; null asks for the size.
 * @param outStrSize  in: capacity of @p outStr in bytes, 0 for a size query. Out: bytes needed, terminator included (4
 *                    for "abc"); untouched on failure.
 * @param text        the string.
 *
 * @return QLERR_OK; QLERR_INVALID_ARGUMENT when @p outStrSize is null ("dstSize cannot be NULL") or @p outStr is null
 *         and *outStrSize is not 0 ("OutStr cannot be NULL if OutStrSize is non-zero"); QLERR_BUFFER_OVERFLOW when the
 *         buffer is too small ("Buffer size too small"; nothing is written).
 */
QL_C_API QLerr QLSTR_CppStrToCStr(char* outStr, int* outStrSize, std::string text);
#endif

#endif
