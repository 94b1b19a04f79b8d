// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/**
 * How the trigger works. What a mode means is the engine's affair, and the two engine families do not agree; engines
 * tell 0 from all other numbers alone.
 */
public enum TriggerMode {
    /** An Intermec engine is sent the trigger mode 0, a Honeywell engine {@code TRGMOD3}. */
    MODE_0(0),
    /** An Intermec engine is sent the trigger mode 1, a Honeywell engine {@code TRGMOD0}. */
    MODE_1(1);

    private final int value;

    TriggerMode(int value) {
        this.value = value;
    }

    /**
     * The mode's number in the C interface.
     *
     * @return 0 or 1
     */
    public int value() {
        return value;
    }
}
