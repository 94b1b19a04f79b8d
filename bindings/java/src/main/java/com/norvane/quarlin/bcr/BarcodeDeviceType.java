// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** Whose a scanner is. */
public enum BarcodeDeviceType {
    /** One that was plugged in. */
    EXTERNAL,
    /** The machine's own. */
    BUILT_IN;

    static BarcodeDeviceType of(int value) {
        return value == 1 ? BUILT_IN : EXTERNAL;
    }
}
