// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** One track of a swiped card. Immutable. */
public final class MagStripeTrackData {
    private final int bufferSize;
    private final int length;
    private final byte[] data;

    /**
     * Made by the native library.
     *
     * @param bufferSize bytes that the reader has for a track
     * @param length     bytes in use, as the reader says, unchecked
     * @param data       {@code bufferSize} bytes; copied
     */
    public MagStripeTrackData(int bufferSize, int length, byte[] data) {
        this.bufferSize = bufferSize;
        this.length = length;
        this.data = data.clone();
    }

    /**
     * Bytes that the reader has for a track.
     *
     * @return always 112
     */
    public int getBufferSize() {
        return bufferSize;
    }

    /**
     * What the reader says of the bytes in use.
     *
     * @return -128 to 127, unchecked; see {@link #getData()}
     */
    public int getLength() {
        return length;
    }

    /**
     * The whole buffer of the track.
     *
     * @return a copy, {@link #getBufferSize()} bytes
     */
    public byte[] getBuffer() {
        return data.clone();
    }

    /**
     * The bytes in use: clear, masked or encrypted.
     *
     * @return a copy; as many bytes as the reader says and the buffer has
     */
    public byte[] getData() {
        return Arrays.copyOf(data, used());
    }

    /**
     * The bytes in use as a text, each a character from U+0000 to U+00FF (ISO-8859-1). Makes sense for clear and masked
     * tracks.
     *
     * @return such as {@code ";4761730000000010=2512?"}; never null, empty when nothing is in use
     */
    public String getText() {
        return new String(data, 0, used(), StandardCharsets.ISO_8859_1);
    }

    /** What the reader says is not checked by anybody else. */
    private int used() {
        return Math.max(0, Math.min(length, data.length));
    }

    /**
     * For people, without the card's data: none of it belongs into a log.
     *
     * @return such as {@code "37 bytes"}
     */
    @Override
    public String toString() {
        return used() + " bytes";
    }
}
