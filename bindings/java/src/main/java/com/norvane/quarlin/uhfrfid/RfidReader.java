// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;
import java.util.List;
import java.util.Objects;
import java.util.Optional;

/**
 * The UHF RFID reader, for EPC Gen2 (ISO/IEC 18000-63) tags.
 *
 * <pre>{@code
 * try (RfidReader reader = RfidReader.open()) {
 *     for (Tag tag : reader.inventory()) {
 *         reader.select(tag);
 *         byte[] tid = reader.read(MemoryBank.TID, 0, 2, RfidReader.NO_PASSWORD);
 *         ...
 *     }
 * }
 * }</pre>
 *
 * <p>Reading, writing, locking and killing act upon the tag that was selected last. Words have two bytes, most
 * significant byte first. Passwords are numbers of 32 bits: a tag whose password is 11 22 33 44 wants
 * {@code 0x11223344}.
 *
 * <p>May be used on any thread; calls take turns. There is no time-out: a reader that never answers keeps its caller
 * waiting, and with it every other, {@link #close()} included, until it is unplugged. A program with a user interface
 * uses the reader on a thread of its own.
 *
 * <p>Every method but {@link #close()} throws {@link QuarlinException} with result code 2 (invalid state) when the
 * reader is closed, 1 (invalid argument) when a number is out of range, and {@link RfidException} with a
 * {@code UHFRFID_} code for what the reader or the tag refuses. Nothing is retried. After
 * {@link ResultCode#UHFRFID_COMMAND_SEND} and {@link ResultCode#UHFRFID_COMMAND_RECEIVE}, the reader unplugged for one,
 * close it and open it once a second until that succeeds; then select the tag again.
 */
public final class RfidReader implements AutoCloseable {
    /** For tags that have no password. */
    public static final int NO_PASSWORD = 0;

    private static final int MOST_WORDS = 255;
    private static final int WORD_BYTES = 2;

    private static final Family FAMILY = Family.single("RFID reader");

    private final Session session;

    /** Written and read under the session's lock. */
    private int handle;

    private RfidReader() {
        session = FAMILY.open(() -> handle = UhfRfidNativeBase.QLUHFRFID_OpenReader());
    }

    /**
     * Finds the reader and opens it for this process alone.
     *
     * @return the reader; to be closed
     * @throws QuarlinException 2 when it is open in this process already; an {@link RfidException} with
     *                          {@link ResultCode#UHFRFID_DEVICENOTFOUND} when there is none or another program has it
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; the message says where it was looked for
     */
    public static RfidReader open() {
        NativeLoader.load();
        return new RfidReader();
    }

    /**
     * Makes an inventory round of its own.
     *
     * @return the tags in the order in which the reader found them; never null, empty when there is none, not to be
     *         changed
     * @throws QuarlinException as told above
     */
    public List<Tag> inventory() {
        return session.change(() -> Round.all(
                (id, length, signal) -> UhfRfidNativeBase.QLUHFRFID_GetFirstTag(handle, id, length, signal),
                (id, length, signal) -> UhfRfidNativeBase.QLUHFRFID_GetNextTag(handle, id, length, signal)));
    }

    /**
     * Begins an inventory round, for those who want to see each tag as it comes.
     *
     * @return the first tag; nothing when the reader sees none
     * @throws QuarlinException as told above
     */
    public Optional<Tag> firstTag() {
        return session.change(() -> Round.tag(
                (id, length, signal) -> UhfRfidNativeBase.QLUHFRFID_GetFirstTag(handle, id, length, signal)));
    }

    /**
     * Goes on with the round that {@link #firstTag()} began. There is one round of the reader: an inventory of another
     * thread in between takes its place.
     *
     * @return the next tag; nothing when the round is over
     * @throws QuarlinException as told above
     */
    public Optional<Tag> nextTag() {
        return session.change(() -> Round.tag(
                (id, length, signal) -> UhfRfidNativeBase.QLUHFRFID_GetNextTag(handle, id, length, signal)));
    }

    /**
     * Selects a tag.
     *
     * @param tag of an inventory; not null
     * @throws QuarlinException as {@link #select(byte[])}
     */
    public void select(Tag tag) {
        select(tag.identifier());
    }

    /**
     * Selects a tag.
     *
     * @param identifier as the inventory gave it, 3 to 33 bytes; the first two, protocol control, are not sent; not
     *                   null
     * @throws QuarlinException {@link ResultCode#UHFRFID_BUFFERTOOSMALL} for fewer than 3 bytes, 1 for more than 33; as
     *                          told above
     */
    public void select(byte[] identifier) {
        byte[] copy = identifier.clone();
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SelectTag(handle, copy, copy.length));
    }

    /**
     * Reads words of the selected tag.
     *
     * @param bank     the bank; not null
     * @param word     number of the first word, 0 to 255
     * @param count    how many words, 0 to 255; a reply holds 30
     * @param password access password; {@link #NO_PASSWORD} when the tag has none
     * @return two bytes for each word; 0 for words that did not come
     * @throws QuarlinException as told above
     */
    public byte[] read(MemoryBank bank, int word, int count, int password) {
        Objects.requireNonNull(bank, "bank");
        return session.change(() -> {
            if (count < 0 || count > MOST_WORDS) {
                throw new QuarlinException(ResultCode.INVALID_ARGUMENT, "The number of words is not 0 to 255.");
            }
            byte[] data = new byte[count * WORD_BYTES];
            byte[] key = Password.bytes(password);
            UhfRfidNativeBase.QLUHFRFID_ReadTag(handle, bank.number(), word, key, key.length, data, count);
            return data;
        });
    }

    /**
     * Writes words of the selected tag.
     *
     * @param bank     the bank; not null
     * @param word     number of the first word, 0 to 255
     * @param data     1 to 27 words, two bytes each; not null
     * @param password access password; {@link #NO_PASSWORD} when the tag has none
     * @throws QuarlinException 1 also for half a word; as told above
     */
    public void write(MemoryBank bank, int word, byte[] data, int password) {
        Objects.requireNonNull(bank, "bank");
        byte[] copy = data.clone();
        session.change(() -> {
            if (copy.length % WORD_BYTES != 0) {
                throw new QuarlinException(ResultCode.INVALID_ARGUMENT, "The last word is half a word.");
            }
            byte[] key = Password.bytes(password);
            return UhfRfidNativeBase.QLUHFRFID_WriteTag(handle, bank.number(), word, key, key.length, copy,
                    copy.length / WORD_BYTES);
        });
    }

    /**
     * Locks or unlocks areas of the selected tag's memory. Some locks are permanent.
     *
     * @param parameter1 0 to 255, passed to the reader, which gives it its meaning
     * @param parameter2 0 to 255, passed to the reader, which gives it its meaning
     * @param password   access password; {@link #NO_PASSWORD} when the tag has none
     * @throws QuarlinException as told above
     */
    public void lock(int parameter1, int parameter2, int password) {
        session.change(() -> {
            byte[] key = Password.bytes(password);
            return UhfRfidNativeBase.QLUHFRFID_LockTag(handle, parameter1, parameter2, key, key.length);
        });
    }

    /**
     * Kills the selected tag, for ever.
     *
     * @param password kill password
     * @throws QuarlinException as told above
     */
    public void kill(int password) {
        session.change(() -> {
            byte[] key = Password.bytes(password);
            return UhfRfidNativeBase.QLUHFRFID_KillTag(handle, key, key.length);
        });
    }

    /**
     * Asks for the transmit power.
     *
     * @return 0 to 255, in the unit of the reader
     * @throws QuarlinException as told above
     */
    public int power() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetPower(handle));
    }

    /**
     * Sets the transmit power.
     *
     * @param power 0 to 255, in the unit of the reader
     * @throws QuarlinException as told above
     */
    public void setPower(int power) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetPower(handle, power));
    }

    /**
     * Asks for the backscatter link frequency of the inventory.
     *
     * @return 40, 160, 213, 256, 320 or 640 kHz; 160 also for a frequency of the reader that is none of these
     * @throws QuarlinException as told above
     */
    public int linkFrequency() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetLinkFreqForQuery(handle));
    }

    /**
     * Sets the backscatter link frequency of the inventory.
     *
     * @param kHz 40, 160, 213, 256, 320 or 640 kHz
     * @throws QuarlinException as told above
     */
    public void setLinkFrequency(int kHz) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetLinkFreqForQuery(handle, kHz));
    }

    /**
     * Asks how tags encode what they send.
     *
     * @return 0 FM0, 1 Miller 2, 2 Miller 4, 3 Miller 8; what the reader reports, 0 to 255
     * @throws QuarlinException as told above
     */
    public int miller() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetMillerForQuery(handle));
    }

    /**
     * Sets how tags encode what they send.
     *
     * @param miller 0 FM0, 1 Miller 2, 2 Miller 4, 3 Miller 8
     * @throws QuarlinException as told above
     */
    public void setMiller(int miller) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetMillerForQuery(handle, miller));
    }

    /**
     * Asks for the session of the inventory.
     *
     * @return 0 to 3 for S0 to S3; what the reader reports, 0 to 255
     * @throws QuarlinException as told above
     */
    public int session() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetSessionForQuery(handle));
    }

    /**
     * Sets the session of the inventory.
     *
     * @param number 0 to 3, for S0 to S3
     * @throws QuarlinException as told above
     */
    public void setSession(int number) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetSessionForQuery(handle, number));
    }

    /**
     * Asks for the Q with which a round begins: the reader offers 2 to the power of Q slots.
     *
     * @return 0 to 15; what the reader reports, 0 to 255
     * @throws QuarlinException as told above
     */
    public int firstQ() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetQBeginForQuery(handle));
    }

    /**
     * Sets the Q with which a round begins.
     *
     * @param q 0 to 15
     * @throws QuarlinException as told above
     */
    public void setFirstQ(int q) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetQBeginForQuery(handle, q));
    }

    /**
     * Asks for the sensitivity of the receiver.
     *
     * @return -128 to 127 dBm, as the reader reports it
     * @throws QuarlinException as told above
     */
    public int sensitivity() {
        return session.change(() -> UhfRfidNativeBase.QLUHFRFID_GetSensitivityForQuery(handle));
    }

    /**
     * Sets the sensitivity of the receiver.
     *
     * @param dBm -86 to -50 dBm
     * @throws QuarlinException as told above
     */
    public void setSensitivity(int dBm) {
        session.change(() -> UhfRfidNativeBase.QLUHFRFID_SetSensitivityForQuery(handle, dBm));
    }

    /**
     * Closes the reader, after a call in progress. Does nothing when closed already.
     *
     * @throws QuarlinException when the library reports a failure; the reader is not used by this object any more all
     *                          the same
     */
    @Override
    public void close() {
        session.close(() -> UhfRfidNativeBase.QLUHFRFID_CloseReader(handle));
    }
}
