// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * A magnetic stripe reader in the list, and the native methods of the family, one for each function of the library's C
 * interface. {@link CardReader} is made of them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, {@link java.nio.BufferOverflowException} (its message is that of its cause),
 * or {@link RuntimeException} for all others.
 * A method that asks the library twice asks the second time also when the first has failed, and throws the second
 * failure when both have.
 *
 * <p>All methods may be called on any thread; they take turns. Objects are immutable.
 */
public final class MagStripeReader {
    static {
        NativeLoader.load();
    }

    /** Who makes a reader. */
    public enum MagStripeVendor {
        /** Readers of the MagneSafe family. */
        MagTek
    }

    private final int index;
    private final String name;
    private final String serialNumber;
    private final String softwareId;
    private final boolean encryptionEnabled;
    private final MagStripeVendor vendor;

    /**
     * Made by the native library.
     *
     * @param index             the reader's index, for selecting it
     * @param name              its name
     * @param serialNumber      as the reader tells it
     * @param softwareId        identifier of its firmware, as the reader tells it
     * @param encryptionEnabled whether it encrypts tracks
     * @param vendor            who makes it
     */
    public MagStripeReader(int index, String name, String serialNumber, String softwareId, boolean encryptionEnabled,
            MagStripeVendor vendor) {
        this.index = index;
        this.name = name;
        this.serialNumber = serialNumber;
        this.softwareId = softwareId;
        this.encryptionEnabled = encryptionEnabled;
        this.vendor = vendor;
    }

    /**
     * The reader's index, which it keeps for as long as it is plugged in.
     *
     * @return 0 and up, for selecting it
     */
    public int getIndex() {
        return index;
    }

    /**
     * The reader's name.
     *
     * @return the name, {@code "MAGTEK(USB)"}
     */
    public String getName() {
        return name;
    }

    /**
     * The serial number that the reader tells.
     *
     * @return the number
     */
    public String getSerialNumber() {
        return serialNumber;
    }

    /**
     * Identifier of the reader's firmware.
     *
     * @return the identifier
     */
    public String getSoftwareId() {
        return softwareId;
    }

    /**
     * Whether the reader encrypts tracks, which it does from security level 3 on.
     *
     * @return whether it does
     */
    public boolean isEncryptionEnabled() {
        return encryptionEnabled;
    }

    /**
     * Who makes the reader.
     *
     * @return the vendor
     */
    public MagStripeVendor getVendor() {
        return vendor;
    }

    /**
     * For people: index, name and serial number.
     *
     * @return such as {@code "0: MAGTEK(USB) B123456"}
     */
    @Override
    public String toString() {
        return index + ": " + name + " " + serialNumber;
    }

    /**
     * Starts the family from scratch: when it is initialised already, readers, callbacks and the selected index are
     * forgotten first. Looks for no readers.
     *
     * @param firstClass    kept by the native library, not used
     * @param callbackClass has a static method {@code void onMagStripeSwipe(MagStripeData)}
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLMSR_Initialize(Class<?> firstClass, Class<?> callbackClass) throws IOException;

    /**
     * Removes all callbacks, also those that were added in C, disables and forgets every reader, and selects index 0.
     * Waits for a delivery in progress.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLMSR_Uninitialize() throws IOException;

    /**
     * Enables the selected reader and adds a delivery of swipes. Each call adds one, also when the reader was enabled
     * before or could not be enabled, and swipes come once for each.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLMSR_Enable() throws IOException;

    /**
     * Disables the selected reader and takes back the delivery that was added last, both also when one of them fails.
     * Waits for a delivery in progress.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLMSR_Disable() throws IOException;

    /**
     * Asks whether the selected reader is enabled.
     *
     * @return whether it is; false after it was unplugged
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native boolean QLMSR_IsEnabled() throws IOException;

    /**
     * Chooses the reader that QLMSR_Enable, QLMSR_Disable and QLMSR_IsEnabled are about. Before the first call it is
     * index 0.
     *
     * @param index 0 to one less than the number of readers last found, checked now and not again; -1 chooses none
     * @return 0
     * @throws IllegalArgumentException when the index is not accepted
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLMSR_SelectDevice(int index) throws IOException;

    /**
     * Looks for readers and lists them. Those that are enabled stay enabled; a swipe during the call may be lost. A
     * reader found for the first time is asked for its identity, which takes some 0.2 s.
     *
     * @return the readers in the order of their indexes, which may have gaps; empty when there is none
     * @throws RuntimeException when a new reader does not answer; all readers are forgotten then
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native MagStripeReader[] QLMSR_GetMagStripeReaders() throws IOException;
}
