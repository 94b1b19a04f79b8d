// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

/** A bank of a tag's memory. The ordinal is the bank's number. */
public enum MemoryBank {
    /** Kill password, words 0 and 1; access password, words 2 and 3. */
    RESERVED,
    /** Checksum, word 0; protocol control, word 1; the EPC from word 2 on. */
    EPC,
    /** Who made the tag and of which model it is. */
    TID,
    /** The application's own; not every tag has it. */
    USER;

    int number() {
        return ordinal();
    }
}
