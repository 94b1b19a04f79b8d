/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file export.h
 * How the names of qlsdk.dll are declared. Every family header includes this one; applications need not.
 */
#ifndef QUARLIN_EXPORT_H
#define QUARLIN_EXPORT_H

#include <stdint.h>

/* QLSDK_BUILD is defined while qlsdk.dll itself is compiled. The library's export list decides what is exported, so
 * that its declarations carry no attribute then. */
#if defined(_WIN32) && !defined(QLSDK_BUILD)
#define QL_IMPORT __declspec(dllimport)
#else
#define QL_IMPORT
#endif

#ifdef __cplusplus
#define QL_C_API extern "C" QL_IMPORT
#define QL_BEGIN_C extern "C" {
#define QL_END_C }
#else
#define QL_C_API QL_IMPORT
#define QL_BEGIN_C
#define QL_END_C
#endif

/* Every enumeration of the interface is a signed 32-bit integer. C leaves the integer to its compiler, so that there
 * the type's name stands for the integer itself, and the enumeration for the constants. */
#ifdef __cplusplus
#define QL_ENUM_TYPE(name) enum name : int32_t
#define QL_ENUM_INT32 : int32_t
#else
#define QL_ENUM_TYPE(name) typedef int32_t name
#define QL_ENUM_INT32
#endif

/* A few functions are exported under names that encode their C++ signature. C++ compilers find them by themselves; a C
 * compiler has to be told the name. */
#define QL_CPP_API QL_IMPORT
#if defined(__GNUC__) && !defined(_MSC_VER) && !defined(__cplusplus)
#define QL_CPP_NAME(gnuName) __asm__(gnuName)
#else
#define QL_CPP_NAME(gnuName)
#endif

#endif
