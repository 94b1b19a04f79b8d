// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * The native methods of the barcode scanner, one for each function of the library's C interface. {@link BarcodeScanner}
 * is made of them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, or {@link BarcodeException} for all others. Texts that are handed over are cut
 * to 127 bytes of UTF-8; a longer name of a symbology or path of a file counts as empty.
 *
 * <p>All methods may be called on any thread. {@link #nQLBCR_Disable()} and {@link #nQLBCR_Uninitialize()} are refused
 * while a scan is being delivered on the same thread.
 */
public final class QlBarcode {
    static {
        NativeLoader.load();
        if (!CoreNatives.nInit(BarcodeException.class, ScanDispatcher.class)) {
            throw new UnsatisfiedLinkError("The native library does not find the method nativeBarcodeEvent of "
                    + ScanDispatcher.class.getName() + ", and cannot deliver scans: the jar is not whole, or a tool has"
                    + " renamed or removed its methods");
        }
    }

    private QlBarcode() {
    }

    /**
     * Starts the barcode family.
     *
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_Initialize() throws IOException;

    /**
     * Ends the barcode family.
     *
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_Uninitialize() throws IOException;

    /**
     * Connects to the selected scanner and has its scans delivered.
     *
     * @return 0; or the code of the failure, without an exception, when the scanner is enabled but its scans cannot be
     *         delivered
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_Enable() throws IOException;

    /**
     * Ends the connection to the scanner.
     *
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_Disable() throws IOException;

    /**
     * Asks whether the scanner is enabled.
     *
     * @return whether it is
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native boolean nQLBCR_IsEnabled() throws IOException;

    /**
     * Begins to scan, as the trigger does.
     *
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_StartScanning() throws IOException;

    /**
     * Ends scanning.
     *
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_StopScanning() throws IOException;

    /**
     * Lists the scanners.
     *
     * @param deviceClass a class with a constructor without arguments and the fields of {@link BarcodeDeviceInfo}
     * @param capacity    how many devices the list may have at most; a longer one is a failure
     * @return an array of {@code deviceClass}, one object for each scanner; empty when there is none
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native Object[] QLBCR_GetBarcodeDevices(Class<?> deviceClass, int capacity) throws IOException;

    /**
     * Selects a scanner of the list.
     *
     * @param index its place, 0 for the first
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SelectDevice(int index) throws IOException;

    /**
     * Asks how many scanners there are.
     *
     * @return the number
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_GetNoOfBarcodeDevices() throws IOException;

    /**
     * Asks for the kind of the selected scanner.
     *
     * @return 1 the machine's own, 0 an external one
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_GetDeviceType() throws IOException;

    /**
     * Asks for the name of the selected scanner.
     *
     * @return the name
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native String nQLBCR_GetDeviceName() throws IOException;

    /**
     * Asks for the firmware's version of the selected scanner.
     *
     * @return the version
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native String nQLBCR_GetDeviceFirmwareVersion() throws IOException;

    /**
     * Admits scanners that are not the machine's own.
     *
     * @param allow whether they are
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetAllowExternalBarcodeDevice(boolean allow) throws IOException;

    /**
     * Enables or disables a symbology by its name.
     *
     * @param enable whether it is read from now on
     * @param name   its name, such as {@code "Code128"}
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_EnableSymbology(boolean enable, String name) throws IOException;

    /**
     * Enables or disables a symbology by its number.
     *
     * @param enable    whether it is read from now on
     * @param symbology its number
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_EnableSymbologies(boolean enable, int symbology) throws IOException;

    /**
     * Sets what the trigger does.
     *
     * @param mode the mode's number
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetTriggerMode(int mode) throws IOException;

    /**
     * Makes the machine's trigger key work or not.
     *
     * @param enable whether it works
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetHardwareTriggerEnabled(boolean enable) throws IOException;

    /**
     * Asks whether the machine's trigger key works.
     *
     * @return whether it does
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native boolean nQLBCR_IsHardwareTriggerEnabled() throws IOException;

    /**
     * Sets whether each scan is followed by a sound.
     *
     * @param enable whether it is
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetSoundEnabled(boolean enable) throws IOException;

    /**
     * Asks whether each scan is followed by a sound.
     *
     * @return whether it is
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native boolean nQLBCR_IsSoundEnabled() throws IOException;

    /**
     * Sets the sound that follows a scan. The name of this method has one letter too many, which is kept.
     *
     * @param path the path of a WAV file
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetSReadSuccessSoundFile(String path) throws IOException;

    /**
     * Sets the text before each scan.
     *
     * @param asTop whether it comes before the field that an Intermec engine sends before the code's text, rather than
     *              behind it
     * @param text  the text
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetPrefixData(boolean asTop, String text) throws IOException;

    /**
     * Sets the text behind each scan.
     *
     * @param asTop whether it comes behind the field that an Intermec engine sends behind the code's text, rather than
     *              before it
     * @param text  the text
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetSuffixData(boolean asTop, String text) throws IOException;

    /**
     * Asks for the text before each scan.
     *
     * @return the text and where it was put
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native FixData nQLBCR_GetPrefixData() throws IOException;

    /**
     * Asks for the text behind each scan.
     *
     * @return the text and where it was put
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native FixData nQLBCR_GetSuffixData() throws IOException;

    /**
     * Sets how the text of scans is edited.
     *
     * @param mode   0 not at all, 1 replace, 2 insert, 3 delete
     * @param target the text that is looked for
     * @param cont   the text that takes its place, or is inserted
     * @param start  the character behind which editing begins; 0 for the beginning
     * @param end    the last character that is edited; 0 for the end
     * @return 0
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native int nQLBCR_SetDataEditingMode(int mode, String target, String cont, int start, int end)
            throws IOException;

    /**
     * Asks how the text of scans is edited.
     *
     * @return mode, texts and range
     * @throws IOException when the device answers wrongly or not at all
     */
    public static native EditModeData nQLBCR_GetDataEditingMode() throws IOException;
}
