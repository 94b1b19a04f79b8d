// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.gps;

/** How good a position is, as the receiver says in the sentence that carries it. */
public enum FixQuality {
    /** There is no fix: the position is the last one that was known. */
    NONE,
    /** A fix of the satellites alone. */
    GPS,
    /** A fix that is corrected by a reference station. */
    DIFFERENTIAL,
    /** A fix of another kind. */
    OTHER;

    static FixQuality of(int number) {
        return number >= 0 && number < OTHER.ordinal() ? values()[number] : OTHER;
    }
}
