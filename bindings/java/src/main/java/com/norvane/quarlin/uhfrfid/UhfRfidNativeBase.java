// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * The native methods of the UHF RFID reader, one for each function of the library's C interface. {@link RfidReader} is
 * made of them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, or {@link RfidException} for all others, among them all codes of the reader.
 *
 * <p>The reader's handle is an {@code int}: handles of 64-bit Windows have 32 significant bits, and the library widens
 * the number with its sign.
 *
 * <p>Identifiers, passwords and the memory of tags are bytes, in the order in which the C interface takes them. A
 * length beyond the end of its array is an {@link IllegalArgumentException}; the reader is sent nothing then, and no
 * array is changed.
 *
 * <p>All methods may be called on any thread; each waits for the one before it, and for the reader. There is no
 * time-out: a reader that never answers keeps its caller waiting until it is unplugged.
 */
public final class UhfRfidNativeBase {
    static {
        NativeLoader.load();
        if (!CoreNatives.nInit(RfidException.class)) {
            throw new UnsatisfiedLinkError("The native library does not find the Java VM that has loaded it");
        }
    }

    private UhfRfidNativeBase() {
    }

    /**
     * Finds the reader and opens it for this process alone. One reader is open in a process at most.
     *
     * @return the reader's handle
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_OpenReader() throws IOException;

    /**
     * Closes the reader. Waits for a call that is in progress on another thread.
     *
     * @param reader the reader's handle, not usable afterwards
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_CloseReader(int reader) throws IOException;

    /**
     * Starts an inventory round and gives its first tag. When the reader reports an identifier of no bytes,
     * {@code tagId} and {@code length} stay as they are.
     *
     * @param reader the reader's handle
     * @param tagId  receives the identifier: two bytes of protocol control, then the EPC
     * @param length one number; in: the bytes of {@code tagId} that may be used, 0 to 255, of which 64 are always
     *               enough; out: those that were written
     * @param signal one number; receives the strength of the signal as the reader measures it, -128 to 127
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetFirstTag(int reader, byte[] tagId, int[] length, int[] signal)
            throws IOException;

    /**
     * Gives the next tag of the round; the end of the round is a failure that says so.
     *
     * @param reader the reader's handle
     * @param tagId  as for {@link #QLUHFRFID_GetFirstTag}
     * @param length as for {@link #QLUHFRFID_GetFirstTag}; to be set again before each call
     * @param signal as for {@link #QLUHFRFID_GetFirstTag}
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetNextTag(int reader, byte[] tagId, int[] length, int[] signal)
            throws IOException;

    /**
     * Selects the tag that is read, written, locked or killed.
     *
     * @param reader the reader's handle
     * @param tagId  the identifier as the inventory gave it
     * @param length bytes of it, 3 to 33; the first two, protocol control, are not sent
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SelectTag(int reader, byte[] tagId, int length) throws IOException;

    /**
     * Reads words of a tag's memory.
     *
     * @param reader         the reader's handle
     * @param bank           0 reserved, 1 EPC, 2 TID, 3 user
     * @param wordPointer    first word, 0 to 255
     * @param password       access password, its least significant byte first; all 0 when the tag has none
     * @param passwordLength bytes of it, 1 to 4; those that are not given count as 0
     * @param data           receives two bytes for each word, most significant byte first; what lies behind the words
     *                       that came stays as it is
     * @param wordCount      words to read, 0 to 255; a reply holds 30
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_ReadTag(int reader, int bank, int wordPointer, byte[] password,
            int passwordLength, byte[] data, int wordCount) throws IOException;

    /**
     * Writes words of a tag's memory.
     *
     * @param reader         the reader's handle
     * @param bank           0 reserved, 1 EPC, 2 TID, 3 user
     * @param wordPointer    first word, 0 to 255
     * @param password       access password, its least significant byte first
     * @param passwordLength bytes of it, 1 to 4
     * @param data           two bytes for each word, most significant byte first
     * @param wordCount      words to write, 1 to 27
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_WriteTag(int reader, int bank, int wordPointer, byte[] password,
            int passwordLength, byte[] data, int wordCount) throws IOException;

    /**
     * Locks or unlocks areas of a tag's memory. Some locks are permanent.
     *
     * @param reader         the reader's handle
     * @param lockParameter1 0 to 255, its meaning is the reader's
     * @param lockParameter2 0 to 255, its meaning is the reader's
     * @param password       access password, its least significant byte first
     * @param passwordLength bytes of it, 1 to 4
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_LockTag(int reader, int lockParameter1, int lockParameter2, byte[] password,
            int passwordLength) throws IOException;

    /**
     * Kills a tag, for ever.
     *
     * @param reader         the reader's handle
     * @param password       kill password, its least significant byte first
     * @param passwordLength bytes of it, 1 to 4
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_KillTag(int reader, byte[] password, int passwordLength) throws IOException;

    /**
     * Asks for the transmit power.
     *
     * @param reader the reader's handle
     * @return 0 to 255, in the unit of the reader
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetPower(int reader) throws IOException;

    /**
     * Sets the transmit power.
     *
     * @param reader the reader's handle
     * @param power  0 to 255, in the unit of the reader
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetPower(int reader, int power) throws IOException;

    /**
     * Asks for the backscatter link frequency of the inventory.
     *
     * @param reader the reader's handle
     * @return 40, 160, 213, 256, 320 or 640 kHz; 160 also for a frequency of the reader that has no name here
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetLinkFreqForQuery(int reader) throws IOException;

    /**
     * Sets the backscatter link frequency of the inventory.
     *
     * @param reader the reader's handle
     * @param value  40, 160, 213, 256, 320 or 640 kHz
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetLinkFreqForQuery(int reader, int value) throws IOException;

    /**
     * Asks how tags encode what they send.
     *
     * @param reader the reader's handle
     * @return what the reader reports, 0 to 255: 0 FM0, 1 Miller 2, 2 Miller 4, 3 Miller 8
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetMillerForQuery(int reader) throws IOException;

    /**
     * Sets how tags encode what they send.
     *
     * @param reader the reader's handle
     * @param value  0 FM0, 1 Miller 2, 2 Miller 4, 3 Miller 8
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetMillerForQuery(int reader, int value) throws IOException;

    /**
     * Asks for the session of the inventory.
     *
     * @param reader the reader's handle
     * @return what the reader reports, 0 to 255; 0 to 3 stand for S0 to S3
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetSessionForQuery(int reader) throws IOException;

    /**
     * Sets the session of the inventory.
     *
     * @param reader the reader's handle
     * @param value  0 to 3, for S0 to S3
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetSessionForQuery(int reader, int value) throws IOException;

    /**
     * Asks for the Q with which a round begins: the reader offers 2 to the power of Q slots.
     *
     * @param reader the reader's handle
     * @return what the reader reports, 0 to 255
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetQBeginForQuery(int reader) throws IOException;

    /**
     * Sets the Q with which a round begins: the reader offers 2 to the power of Q slots.
     *
     * @param reader the reader's handle
     * @param value  0 to 15
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetQBeginForQuery(int reader, int value) throws IOException;

    /**
     * Asks for the sensitivity of the receiver.
     *
     * @param reader the reader's handle
     * @return what the reader reports, -128 to 127 dBm
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_GetSensitivityForQuery(int reader) throws IOException;

    /**
     * Sets the sensitivity of the receiver.
     *
     * @param reader the reader's handle
     * @param value  -86 to -50 dBm
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLUHFRFID_SetSensitivityForQuery(int reader, int value) throws IOException;
}
