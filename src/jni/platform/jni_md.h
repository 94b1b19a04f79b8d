/* SPDX-License-Identifier: Apache-2.0 */
/* What jni.h wants to know of the machine: 64-bit Windows, and hosts of the tests. */
#ifndef QUARLIN_JNI_MD_H
#define QUARLIN_JNI_MD_H

/* There is one calling convention, and qlsdk.def says what is exported. */
#define JNIEXPORT
#define JNIIMPORT
#define JNICALL

typedef int jint;
typedef long long jlong;
typedef signed char jbyte;

#endif
