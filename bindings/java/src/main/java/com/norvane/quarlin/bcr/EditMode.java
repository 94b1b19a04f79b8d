// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** What is done with the text of each scan; see {@link EditRule}. */
public enum EditMode {
    /** Nothing. */
    NONE(0),
    /** Texts are replaced. */
    REPLACE(1),
    /** A text is inserted. */
    INSERT(2),
    /** Texts are removed. */
    DELETE(3);

    private final int value;

    EditMode(int value) {
        this.value = value;
    }

    /**
     * The mode's number in the C interface.
     *
     * @return 0 to 3
     */
    public int value() {
        return value;
    }

    // A number without a meaning does nothing.
    static EditMode of(int value) {
        for (EditMode mode : values()) {
            if (mode.value == value) {
                return mode;
            }
        }
        return NONE;
    }
}
