/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file quarlin.h
 * Everything that qlsdk.dll exports. error.h begins with the rules that all families share.
 */
#ifndef QUARLIN_QUARLIN_H
#define QUARLIN_QUARLIN_H

#include "barcode.h"
#include "camera.h"
#include "card_reader.h"
#include "device.h"
#include "error.h"
#include "gps.h"
#include "library.h"
#include "strings.h"
#include "uhf_rfid.h"

#endif
