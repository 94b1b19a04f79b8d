// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Failures;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.ListenerList;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;
import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * The machine's barcode scanner.
 *
 * <pre>{@code
 * try (BarcodeScanner scanner = BarcodeScanner.open()) {
 *     scanner.addScanListener(scan -> System.out.println(scan.text()));
 *     scanner.enable();
 *     scanner.startScanning(); // or pull the trigger
 *     ...
 * }
 * }</pre>
 *
 * <p>A scanner is open from {@link #open()} to {@link #close()}, and there is one open scanner in a process at most.
 * Scans arrive from {@link #enable()} to {@link #disable()}. All settings can be changed while it is enabled only:
 * prefix, suffix, editing and sound last until {@link #close()}; symbologies and triggers are settings of the engine,
 * which are sent and not kept.
 *
 * <p>All methods may be called on any thread, also by a listener; they take turns. A call can take a while:
 * {@link #open()} and {@link #devices()} look for the scanner, for two seconds and more when there is none, and
 * {@link #enable()} tries for several seconds, for minutes when the 2-D barcode emulator program has to hand the
 * scanner over. Looking for the scanner waits for calls of the device inventory, and keeps them waiting: the native
 * library asks it.
 *
 * <p>Every method may throw a {@link QuarlinException} with these codes, in addition to what it says itself:
 * {@code INVALID_STATE} when the scanner is closed, or not enabled and has to be; {@code INTERNAL_ERROR} when the
 * engine or the system refuses. What has to be not null is a {@link NullPointerException} otherwise. When the native
 * library cannot be loaded, {@link #open()}, {@link #devices()} and {@link #allowExternalDevices} throw an
 * {@link UnsatisfiedLinkError} that says where it was looked for.
 */
public final class BarcodeScanner implements AutoCloseable {
    private static final Family FAMILY = Family.single("barcode scanner");

    private final ScannerStates states;
    private final ListenerList<ScanListener> listeners = new ListenerList<>();
    private final Session session;

    private BarcodeScanner(ScannerStates states) {
        this.states = states;
        session = FAMILY.open(() -> {
            initialize(states);
            // Left by a close() that could not end the connection. Settings are left with it.
            if (states.isEnabled()) {
                states.disable();
                states.uninitialize();
                initialize(states);
            }
            ScanDispatcher.deliverTo(listeners);
            return null;
        });
    }

    private static void initialize(ScannerStates states) {
        Family.DEVICE_INVENTORY.alone(states::initialize);
    }

    /**
     * Lists the scanners. Possible while none is open.
     *
     * @return the scanners, one at most; empty when there is none; not changeable; never null
     * @throws QuarlinException INTERNAL_ERROR when looking for the scanner fails
     */
    public static List<BarcodeDevice> devices() {
        NativeLoader.load();
        int count = Family.DEVICE_INVENTORY.alone(QlBarcode::nQLBCR_GetNoOfBarcodeDevices);
        if (count == 0) {
            // Asking again would look again, which takes its time.
            return Collections.emptyList();
        }
        List<BarcodeDevice> devices = new ArrayList<>();
        for (Object info : Family.DEVICE_INVENTORY.alone(
                () -> QlBarcode.QLBCR_GetBarcodeDevices(BarcodeDeviceInfo.class, count))) {
            devices.add(BarcodeDevice.of((BarcodeDeviceInfo) info));
        }
        return Collections.unmodifiableList(devices);
    }

    /**
     * Says whether an external scanner counts, in place of the machine's own, when the list is made the next time. Not
     * at first. The list is made by the first {@link #devices()} or {@link #open()}, and anew after {@link #close()}:
     * call this before.
     *
     * @param allow whether an external scanner counts
     */
    public static void allowExternalDevices(boolean allow) {
        NativeLoader.load();
        Failures.translate(() -> QlBarcode.nQLBCR_SetAllowExternalBarcodeDevice(allow));
    }

    /**
     * Opens the first scanner of the list. It has all settings at their first values: no sound, no prefix, no suffix,
     * no editing.
     *
     * @return the scanner; never null; to be closed
     * @throws QuarlinException INVALID_STATE when another one is open; OP_UNSUPPORTED when there is no scanner;
     *                          INTERNAL_ERROR when the engine's library is missing or refuses
     */
    public static BarcodeScanner open() {
        return open(ScannerStates.LIBRARY);
    }

    static BarcodeScanner open(ScannerStates states) {
        return new BarcodeScanner(states);
    }

    /**
     * Makes another scanner of the list the current one. The one before must not be enabled.
     *
     * @param index its place in the list, 0 for the first
     * @throws QuarlinException INVALID_ARGUMENT when the list has no such place; otherwise as {@link #open()}
     */
    public void select(int index) {
        session.change(() -> Family.DEVICE_INVENTORY.alone(() -> QlBarcode.nQLBCR_SelectDevice(index)));
    }

    /**
     * Connects the scanner: scans arrive from now on. What it had read before is dropped.
     *
     * @throws QuarlinException INVALID_STATE when it is enabled already; INTERNAL_ERROR when the engine cannot be
     *                          connected. It can be tried again.
     */
    public void enable() {
        session.change(() -> {
            int result = states.enable();
            if (result != 0) {
                // Connected, and its scans would go nowhere.
                QuarlinException failure = new QuarlinException(ResultCode.of(result),
                        "The scanner's scans cannot be delivered.");
                try {
                    Failures.translate(states::disable);
                } catch (QuarlinException second) {
                    failure.addSuppressed(second);
                }
                throw failure;
            }
            return null;
        });
    }

    /**
     * Disconnects the scanner, and ends a scanning that was started. Settings stay. Does not wait: a listener that is
     * at work goes on, and scans that have come already are delivered still.
     *
     * @throws QuarlinException INVALID_STATE when it is not enabled; INTERNAL_ERROR when the engine refuses: it is
     *                          still enabled then
     */
    public void disable() {
        session.change(states::disable);
    }

    /**
     * Asks whether the scanner is enabled. It stops being so by itself when the 2-D barcode emulator program takes a
     * Honeywell scanner away.
     *
     * @return whether it is
     */
    public boolean isEnabled() {
        return session.ask(states::isEnabled);
    }

    /** Lets the scanner read one code, as if the trigger had been pulled. Does nothing while such a scan is pending. */
    public void startScanning() {
        session.change(QlBarcode::nQLBCR_StartScanning);
    }

    /** Ends that without a scan. Does nothing when none was started. */
    public void stopScanning() {
        session.change(QlBarcode::nQLBCR_StopScanning);
    }

    /**
     * Asks for the scanner's name. Possible while it is not enabled.
     *
     * @return such as {@code "Intermec EA30"}; never null
     */
    public String deviceName() {
        return session.ask(QlBarcode::nQLBCR_GetDeviceName);
    }

    /**
     * Asks whose the scanner is. Possible while it is not enabled.
     *
     * @return the type; never null
     */
    public BarcodeDeviceType deviceType() {
        return BarcodeDeviceType.of(session.ask(QlBarcode::nQLBCR_GetDeviceType));
    }

    /**
     * Asks the engine for the version of its firmware.
     *
     * @return the version; empty when the engine does not say; never null
     */
    public String firmwareVersion() {
        return session.ask(QlBarcode::nQLBCR_GetDeviceFirmwareVersion);
    }

    /**
     * Has codes of a symbology read or not.
     *
     * @param symbology the symbology; not null
     * @param enabled   whether its codes are read
     * @throws QuarlinException OP_UNSUPPORTED when the engine does not know it; INTERNAL_ERROR when the engine refuses
     */
    public void setSymbologyEnabled(Symbology symbology, boolean enabled) {
        int value = symbology.value();
        session.change(() -> QlBarcode.nQLBCR_EnableSymbologies(enabled, value));
    }

    /**
     * Has codes of a symbology read or not.
     *
     * @param symbology its name, to the letter, such as {@code "Code128"}; not null
     * @param enabled   whether its codes are read
     * @throws QuarlinException INVALID_ARGUMENT when there is no such name; OP_UNSUPPORTED when the engine does not
     *                          know it; INTERNAL_ERROR when the engine refuses
     */
    public void setSymbologyEnabled(String symbology, boolean enabled) {
        String name = NativeText.wide(Objects.requireNonNull(symbology, "symbology"), "name of the symbology");
        session.change(() -> QlBarcode.nQLBCR_EnableSymbology(enabled, name));
    }

    /**
     * Sets how the trigger works. An engine does not tell how it is set.
     *
     * @param mode the mode; not null
     */
    public void setTriggerMode(TriggerMode mode) {
        int value = mode.value();
        session.change(() -> QlBarcode.nQLBCR_SetTriggerMode(value));
    }

    /**
     * Switches the scanner's own trigger on or off.
     *
     * @param enabled whether it is on
     * @throws QuarlinException OP_UNSUPPORTED for a Honeywell engine
     */
    public void setHardwareTriggerEnabled(boolean enabled) {
        session.change(() -> QlBarcode.nQLBCR_SetHardwareTriggerEnabled(enabled));
    }

    /**
     * Asks whether the scanner's own trigger is on.
     *
     * @return whether it is; always true for a Honeywell engine
     */
    public boolean isHardwareTriggerEnabled() {
        return session.ask(QlBarcode::nQLBCR_IsHardwareTriggerEnabled);
    }

    /**
     * Sets whether a sound is played for each scan.
     *
     * @param enabled whether it is
     */
    public void setSoundEnabled(boolean enabled) {
        session.change(() -> QlBarcode.nQLBCR_SetSoundEnabled(enabled));
    }

    /**
     * Asks whether a sound is played for each scan.
     *
     * @return whether it is
     */
    public boolean isSoundEnabled() {
        return session.ask(QlBarcode::nQLBCR_IsSoundEnabled);
    }

    /**
     * Chooses the sound. It is {@code chimes.wav} of Windows at first, and played when {@link #setSoundEnabled} says
     * so.
     *
     * @param file a WAVE file; its path has at most 127 characters; not null
     * @throws QuarlinException INVALID_ARGUMENT when there is no such file, or its path is longer
     */
    public void setSoundFile(Path file) {
        String path = NativeText.wide(file.toString(), "path of the sound");
        session.change(() -> QlBarcode.nQLBCR_SetSReadSuccessSoundFile(path));
    }

    /**
     * Sets the outermost text before each scan.
     *
     * @param text the text, as for {@link #setPrefix(FixedText)}; not null; empty for none
     * @throws QuarlinException INVALID_ARGUMENT when the native library cannot take the text
     */
    public void setPrefix(String text) {
        setPrefix(new FixedText(text, true));
    }

    /**
     * Sets what comes before the text of each scan.
     *
     * @param prefix the prefix; at most 127 bytes of UTF-8 (a character beyond U+FFFF counts as six), no character 0;
     *               not null
     * @throws QuarlinException INVALID_ARGUMENT when the native library cannot take the text
     */
    public void setPrefix(FixedText prefix) {
        String text = NativeText.narrow(prefix.text(), "prefix");
        session.change(() -> QlBarcode.nQLBCR_SetPrefixData(prefix.isOutermost(), text));
    }

    /**
     * Asks what comes before the text of each scan.
     *
     * @return the prefix; never null
     */
    public FixedText prefix() {
        return fixedText(session.ask(QlBarcode::nQLBCR_GetPrefixData));
    }

    /**
     * Sets the outermost text behind each scan.
     *
     * @param text the text, as for {@link #setPrefix(FixedText)}; not null; empty for none
     * @throws QuarlinException INVALID_ARGUMENT when the native library cannot take the text
     */
    public void setSuffix(String text) {
        setSuffix(new FixedText(text, true));
    }

    /**
     * Sets what comes behind the text of each scan.
     *
     * @param suffix the suffix; its text as for {@link #setPrefix(FixedText)}; not null
     * @throws QuarlinException INVALID_ARGUMENT when the native library cannot take the text
     */
    public void setSuffix(FixedText suffix) {
        String text = NativeText.narrow(suffix.text(), "suffix");
        session.change(() -> QlBarcode.nQLBCR_SetSuffixData(suffix.isOutermost(), text));
    }

    /**
     * Asks what comes behind the text of each scan.
     *
     * @return the suffix; never null
     */
    public FixedText suffix() {
        return fixedText(session.ask(QlBarcode::nQLBCR_GetSuffixData));
    }

    /**
     * Sets what is done with the text of each scan.
     *
     * @param rule the rule; its texts as for {@link #setPrefix(FixedText)}; not null
     * @throws QuarlinException INVALID_ARGUMENT when the native library cannot take a text
     */
    public void setEditing(EditRule rule) {
        String target = NativeText.narrow(rule.target(), "text to look for");
        String content = NativeText.narrow(rule.content(), "text to put in");
        session.change(() -> QlBarcode.nQLBCR_SetDataEditingMode(rule.mode().value(), target, content, rule.start(),
                rule.end()));
    }

    /**
     * Asks what is done with the text of each scan.
     *
     * @return the rule; never null
     */
    public EditRule editing() {
        return EditRule.of(session.ask(QlBarcode::nQLBCR_GetDataEditingMode));
    }

    /**
     * Adds a listener, which is told of each scan from now on. One that was added already is told once.
     *
     * @param listener the listener; not null
     */
    public void addScanListener(ScanListener listener) {
        Objects.requireNonNull(listener, "listener");
        session.ask(() -> {
            listeners.add(listener);
            return null;
        });
    }

    /**
     * Removes a listener. A call of it that is in progress goes on. Does nothing when it was not added; possible when
     * the scanner is closed.
     *
     * @param listener the listener
     */
    public void removeScanListener(ScanListener listener) {
        listeners.remove(listener);
    }

    /**
     * Disables the scanner if necessary and ends its use. No listener is called any more, except that a call in
     * progress goes on. Does nothing the second time.
     *
     * @throws QuarlinException the first failure, if any; the other ones are suppressed in it. The scanner is closed
     *                          all the same, and the next one to be opened ends what is left.
     */
    @Override
    public void close() {
        session.close(() -> {
            // First, so that no listener is told of a scan while the rest takes its time.
            listeners.close();
            ScanDispatcher.deliverTo(null);
            return null;
        }, this::disableIfEnabled, states::uninitialize);
    }

    private Void disableIfEnabled() throws IOException {
        if (states.isEnabled()) {
            try {
                states.disable();
            } catch (IOException | RuntimeException failure) {
                // The emulator may have taken the scanner between the two.
                if (states.isEnabled()) {
                    throw failure;
                }
            }
        }
        return null;
    }

    private static FixedText fixedText(FixData data) {
        return new FixedText(data.strFixData == null ? "" : data.strFixData, data.bAsTop);
    }
}
