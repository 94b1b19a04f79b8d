// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.time.Instant;

/** One scanned code. Immutable. */
public final class Scan {
    private final int deviceIndex;
    private final String text;
    private final byte[] bytes;
    private final String symbologyIdentifier;
    private final byte[] symbologyIdentifierBytes;
    private final Instant arrival;

    /**
     * Makes a scan; tests of an application may want to.
     *
     * @param deviceIndex              the scanner's place in the list
     * @param text                     the text; null stands for that of {@code bytes}, read as UTF-8
     * @param bytes                    the bytes; copied; null counts as none
     * @param symbologyIdentifier      the identifier; null stands for that of {@code symbologyIdentifierBytes}
     * @param symbologyIdentifierBytes the identifier's bytes; copied; null counts as none
     * @param arrival                  when the scan came; null counts as now
     */
    public Scan(int deviceIndex, String text, byte[] bytes, String symbologyIdentifier,
            byte[] symbologyIdentifierBytes, Instant arrival) {
        this.deviceIndex = deviceIndex;
        this.bytes = bytes == null ? new byte[0] : bytes.clone();
        this.text = text == null ? new String(this.bytes, StandardCharsets.UTF_8) : text;
        this.symbologyIdentifierBytes =
                symbologyIdentifierBytes == null ? new byte[0] : symbologyIdentifierBytes.clone();
        this.symbologyIdentifier = symbologyIdentifier == null
                ? new String(this.symbologyIdentifierBytes, StandardCharsets.UTF_8) : symbologyIdentifier;
        this.arrival = arrival == null ? Instant.now() : arrival;
    }

    /**
     * Which scanner read the code.
     *
     * @return its place in the list, 0 for the first
     */
    public int deviceIndex() {
        return deviceIndex;
    }

    /**
     * Prefix, edited text and suffix, read as UTF-8. A text ends before the first zero byte, and bytes that are no
     * UTF-8 are replaced: see {@link #bytes()} for what was read.
     *
     * @return the text; never null
     */
    public String text() {
        return text;
    }

    /**
     * Prefix, edited text and suffix, read in the encoding that the code was printed in.
     *
     * @param encoding the encoding; not null
     * @return all of {@link #bytes()} as a text; never null
     */
    public String text(Charset encoding) {
        return new String(bytes, encoding);
    }

    /**
     * Prefix, edited text and suffix, exactly as the scanner sent them. A code may hold any bytes.
     *
     * @return a copy; never null
     */
    public byte[] bytes() {
        return bytes.clone();
    }

    /**
     * The code's symbology identifier: "]", a letter for the symbology and what follows them (ISO/IEC 15424), such as
     * {@code "]C1"}. Honeywell engines fill it up to five characters with whatever they choose.
     *
     * @return the identifier; empty when the scanner sent none; never null
     */
    public String symbologyIdentifier() {
        return symbologyIdentifier;
    }

    /**
     * The symbology identifier, exactly as the scanner sent it.
     *
     * @return a copy; never null
     */
    public byte[] symbologyIdentifierBytes() {
        return symbologyIdentifierBytes.clone();
    }

    /**
     * When the scan came from the native library, by the machine's clock.
     *
     * @return the time; never null
     */
    public Instant arrival() {
        return arrival;
    }

    /**
     * For people: identifier and text.
     *
     * @return such as {@code "]C1 4006381333931"}
     */
    @Override
    public String toString() {
        return symbologyIdentifier.isEmpty() ? text : symbologyIdentifier + " " + text;
    }
}
