// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import java.util.Arrays;

/**
 * A tag that an inventory found. Immutable; may be used on any thread. Two are equal when their identifiers are,
 * however strong the signal was.
 */
public final class Tag {
    private static final int PROTOCOL_CONTROL_BYTES = 2;

    private final byte[] identifier;
    private final int signal;

    /**
     * Makes a tag, for one whose identifier is known from elsewhere.
     *
     * @param identifier two bytes of protocol control, then the EPC; copied; not null
     * @param signal     strength of the signal, -128 to 127
     */
    public Tag(byte[] identifier, int signal) {
        this.identifier = identifier.clone();
        this.signal = signal;
    }

    /**
     * The identifier as the reader reports it.
     *
     * @return a copy: two bytes of protocol control, then the EPC; no bytes when the reader reported none
     */
    public byte[] identifier() {
        return identifier.clone();
    }

    /**
     * The protocol control word, which tells among other things how long the EPC is.
     *
     * @return 0 to 65535; 0 when the identifier is too short to have one
     */
    public int protocolControl() {
        return identifier.length < PROTOCOL_CONTROL_BYTES ? 0
                : (identifier[0] & 0xFF) << 8 | identifier[1] & 0xFF;
    }

    /**
     * The EPC.
     *
     * @return two hexadecimal digits for each byte, capitals, such as {@code "E20034120139"}; never null, empty when
     *         the tag has none
     */
    public String epc() {
        StringBuilder text = new StringBuilder();
        for (int i = PROTOCOL_CONTROL_BYTES; i < identifier.length; ++i) {
            text.append(Character.toUpperCase(Character.forDigit(identifier[i] >> 4 & 0xF, 16)));
            text.append(Character.toUpperCase(Character.forDigit(identifier[i] & 0xF, 16)));
        }
        return text.toString();
    }

    /**
     * The strength of the tag's signal.
     *
     * @return -128 to 127, as the reader measures it
     */
    public int signal() {
        return signal;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof Tag && Arrays.equals(identifier, ((Tag) other).identifier);
    }

    @Override
    public int hashCode() {
        return Arrays.hashCode(identifier);
    }

    /**
     * For people: EPC and signal.
     *
     * @return such as {@code "E20034120139 (signal -45)"}
     */
    @Override
    public String toString() {
        return epc() + " (signal " + signal + ")";
    }
}
