// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.bcr.BarcodeDeviceInfo;
import com.norvane.quarlin.bcr.BarcodeException;
import com.norvane.quarlin.bcr.EditModeData;
import com.norvane.quarlin.bcr.FixData;
import com.norvane.quarlin.bcr.QlBarcode;
import java.io.IOException;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** The native methods of the barcode scanner, with the machine's own Honeywell engine. */
@Tag("machine")
class BarcodeNativesMachineTest {
    private static final String NOT_INITIALIZED = "The device is not initialized";

    private static Machine machine;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        Scanners.playBuiltIn(machine);
    }

    @AfterAll
    static void end() throws IOException {
        Scanners.forgetList();
        machine.close();
    }

    @AfterEach
    void reset() {
        machine.command("scanner reset");
    }

    /** The scanner enabled. */
    private static final class Enabled implements AutoCloseable {
        Enabled() throws IOException {
            assertEquals(0, QlBarcode.nQLBCR_Initialize());
            assertEquals(0, QlBarcode.nQLBCR_Enable());
        }

        void failsInternally(String function, String message, Executable call) {
            machine.command("scanner refuse " + function + " 77 1");
            BarcodeException thrown = assertThrows(BarcodeException.class, call);
            assertEquals(ResultCode.INTERNAL_ERROR, thrown.code());
            assertEquals(message, thrown.getMessage());
        }

        @Override
        public void close() throws IOException {
            if (QlBarcode.nQLBCR_IsEnabled()) {
                assertEquals(0, QlBarcode.nQLBCR_Disable());
            }
            assertEquals(0, QlBarcode.nQLBCR_Uninitialize());
        }
    }

    @Test
    void theScannerIsListed() throws IOException {
        assertEquals(1, QlBarcode.nQLBCR_GetNoOfBarcodeDevices());
        Object[] devices = QlBarcode.QLBCR_GetBarcodeDevices(BarcodeDeviceInfo.class, 3);
        assertEquals(BarcodeDeviceInfo[].class, devices.getClass());
        assertEquals(1, devices.length);
        BarcodeDeviceInfo device = (BarcodeDeviceInfo) devices[0];
        assertEquals("Honeywell MiniDB", device.deviceName);
        assertEquals(0, device.index);
        assertEquals(1, device.iDeviceType);
        assertEquals(1, device.iInternalNoofDevices);
        assertEquals(1, QlBarcode.QLBCR_GetBarcodeDevices(BarcodeDeviceInfo.class, 1).length);
    }

    @Test
    void aClassThatCannotBeFilledIsTheVmsError() {
        for (Class<?> unfit : new Class<?>[] {BarcodeDeviceInfo[].class, Runnable.class}) {
            assertThrows(NoSuchMethodError.class, () -> QlBarcode.QLBCR_GetBarcodeDevices(unfit, 3), unfit::getName);
        }
        assertThrows(NoSuchFieldError.class, () -> QlBarcode.QLBCR_GetBarcodeDevices(Object.class, 3));
        assertRaises(IllegalArgumentException.class, "deviceClass cannot be NULL",
                () -> QlBarcode.QLBCR_GetBarcodeDevices(null, 3));
    }

    @Test
    void aCapacityThatIsTooSmallOverflows() throws Exception {
        BarcodeException thrown = assertThrows(BarcodeException.class,
                () -> QlBarcode.QLBCR_GetBarcodeDevices(BarcodeDeviceInfo.class, -1));
        assertEquals(ResultCode.BUFFER_OVERFLOW, thrown.code());
        assertEquals("Buffer size too small", thrown.getMessage());
    }

    @Test
    @SuppressWarnings("try")
    void theGroupsClassIsGivenItsTextBeforeTheMessage() throws Exception {
        try (NativeGroups.Raw raw = NativeGroups.rawBarcode(); Enabled scanner = new Enabled()) {
            assertRaises(NativeGroups.RawException.class, "QLERR_BUFFER_OVERFLOW,Buffer size too small",
                    () -> QlBarcode.QLBCR_GetBarcodeDevices(BarcodeDeviceInfo.class, -1));
            machine.command("scanner refuse HEDC_StartReadingSession 77 1");
            assertRaises(NativeGroups.RawException.class, "Unknown,Unable turn on barcode decoding.",
                    QlBarcode::nQLBCR_StartScanning);
        }
    }

    @Test
    @SuppressWarnings("try")
    void theScannerTellsWhatItIs() throws IOException {
        try (Enabled scanner = new Enabled()) {
            assertTrue(QlBarcode.nQLBCR_IsEnabled());
            assertEquals(1, QlBarcode.nQLBCR_GetDeviceType());
            assertEquals("Honeywell MiniDB", QlBarcode.nQLBCR_GetDeviceName());
            assertEquals("N6603 CE000064AAA", QlBarcode.nQLBCR_GetDeviceFirmwareVersion());
            assertEquals(0, QlBarcode.nQLBCR_Disable());
            assertFalse(QlBarcode.nQLBCR_IsEnabled());
            assertEquals(0, QlBarcode.nQLBCR_SelectDevice(0));
        }
    }

    @Test
    @SuppressWarnings("try")
    void textsAroundScansComeBackAsTheyWereSet() throws IOException {
        try (Enabled scanner = new Enabled()) {
            assertEquals(0, QlBarcode.nQLBCR_SetPrefixData(true, "<ä€"));
            FixData prefix = QlBarcode.nQLBCR_GetPrefixData();
            assertTrue(prefix.bAsTop);
            assertEquals("<ä€", prefix.strFixData);
            assertEquals(0, QlBarcode.nQLBCR_SetSuffixData(false, ""));
            FixData suffix = QlBarcode.nQLBCR_GetSuffixData();
            assertFalse(suffix.bAsTop);
            assertEquals("", suffix.strFixData);
            StringBuilder longText = new StringBuilder();
            for (int i = 0; i < 200; ++i) {
                longText.append((char) ('a' + i % 26));
            }
            // Cut to what the native text has room for.
            assertEquals(0, QlBarcode.nQLBCR_SetSuffixData(true, longText.toString()));
            assertEquals(longText.substring(0, 127), QlBarcode.nQLBCR_GetSuffixData().strFixData);

            assertEquals(0, QlBarcode.nQLBCR_SetDataEditingMode(3, "target", "cont", -4, 9));
            EditModeData edit = QlBarcode.nQLBCR_GetDataEditingMode();
            assertEquals(3, edit.iEditMode);
            assertEquals("target", edit.strTarget);
            assertEquals("cont", edit.strCont);
            assertEquals(-4, edit.iStart);
            assertEquals(9, edit.iEnd);
        }
    }

    @Test
    @SuppressWarnings("try")
    void switchesAreSetAndRead() throws IOException {
        try (Enabled scanner = new Enabled()) {
            assertFalse(QlBarcode.nQLBCR_IsSoundEnabled());
            assertEquals(0, QlBarcode.nQLBCR_SetSoundEnabled(true));
            assertTrue(QlBarcode.nQLBCR_IsSoundEnabled());
            assertEquals(0, QlBarcode.nQLBCR_SetSoundEnabled(false));
            assertEquals(0, QlBarcode.nQLBCR_StartScanning());
            assertEquals(0, QlBarcode.nQLBCR_StopScanning());
            assertEquals(0, QlBarcode.nQLBCR_EnableSymbology(false, "QR"));
            assertFalse(machine.command("scanner symbologies").contains("\"QR\""));
            assertEquals(0, QlBarcode.nQLBCR_EnableSymbologies(true, 37));
            assertTrue(machine.command("scanner symbologies").contains("\"QR\""));
        }
    }

    @Test
    void failuresAreRaisedAsTheClassOfTheirCode() throws IOException {
        try (Enabled scanner = new Enabled()) {
            assertRaises(IllegalArgumentException.class, "The argument of symbology is invalid",
                    () -> QlBarcode.nQLBCR_EnableSymbology(true, "Morse"));
            assertRaises(IllegalArgumentException.class, "Specified File does not exist",
                    () -> QlBarcode.nQLBCR_SetSReadSuccessSoundFile("C:\\none.wav"));
            assertRaises(UnsupportedOperationException.class, "Not Supported.",
                    () -> QlBarcode.nQLBCR_SetHardwareTriggerEnabled(true));
            assertRaises(IllegalStateException.class, "The device is already enabled", QlBarcode::nQLBCR_Enable);
            assertRaises(IllegalStateException.class,
                    "The device is not disabled. Please disable before further use", QlBarcode::nQLBCR_Uninitialize);
            scanner.failsInternally("HEDC_StartReadingSession", "Unable turn on barcode decoding.",
                    QlBarcode::nQLBCR_StartScanning);
            assertRaises(IllegalArgumentException.class, "Given device index is out of range",
                    () -> QlBarcode.nQLBCR_SelectDevice(4));
        }
    }

    @Test
    void withoutInitialisationNativeMethodsAreRefused() {
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_Enable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_Disable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_IsEnabled);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_GetDeviceType);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_GetDeviceName);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_GetDeviceFirmwareVersion);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_StartScanning);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_StopScanning);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_GetPrefixData);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_GetDataEditingMode);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, () -> QlBarcode.nQLBCR_SetPrefixData(true, "a"));
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, QlBarcode::nQLBCR_IsSoundEnabled);
        assertRaises(IllegalStateException.class, "The device is already un-initialized",
                QlBarcode::nQLBCR_Uninitialize);
    }
}
