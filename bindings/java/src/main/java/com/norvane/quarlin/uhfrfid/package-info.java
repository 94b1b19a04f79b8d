// SPDX-License-Identifier: Apache-2.0

/**
 * The UHF RFID reader: {@link com.norvane.quarlin.uhfrfid.RfidReader}.
 */
package com.norvane.quarlin.uhfrfid;
