// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.bcr.BarcodeDevice;
import com.norvane.quarlin.bcr.BarcodeDeviceType;
import com.norvane.quarlin.bcr.BarcodeScanner;
import com.norvane.quarlin.bcr.EditRule;
import com.norvane.quarlin.bcr.FixedText;
import com.norvane.quarlin.bcr.Scan;
import com.norvane.quarlin.bcr.Symbology;
import java.io.IOException;
import java.util.List;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** An external scanner, an Intermec engine on USB. */
@Tag("machine")
class ExternalScannerMachineTest {
    private static Machine machine;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        Scanners.playExternal(machine);
        BarcodeScanner.allowExternalDevices(true);
    }

    @AfterAll
    static void end() throws IOException {
        Scanners.forgetList();
        BarcodeScanner.allowExternalDevices(false);
        machine.close();
    }

    @AfterEach
    void reset() {
        machine.command("scanner reset");
    }

    @Test
    void theScannerIsListedAndTellsWhatItIs() {
        List<BarcodeDevice> devices = BarcodeScanner.devices();
        assertEquals(1, devices.size());
        assertEquals("Barcode Reader", devices.get(0).name());
        assertEquals(BarcodeDeviceType.EXTERNAL, devices.get(0).type());
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.enable();
            assertEquals("Barcode Reader", scanner.deviceName());
            assertEquals("EA30 3.21.007", scanner.firmwareVersion());
        }
    }

    @Test
    void scansArriveWithTheirSymbology() throws Exception {
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scans);
            scanner.enable();
            machine.command("scanner scan 4006381333931 EAN_13");
            Scan scan = scans.next();
            assertEquals("4006381333931", scan.text());
            assertTrue(scan.symbologyIdentifier().startsWith("]E0"), scan::symbologyIdentifier);
            assertEquals("quarlin-events", scans.thread().getName());
            machine.command("scanner scan \\xc3\\xa4\\r\\n Code128");
            assertEquals("\u00E4\r\n", scans.next().text());
        }
    }

    @Test
    void textsAroundScansAndEditingAreAppliedAndComeBack() throws Exception {
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scans);
            scanner.enable();
            scanner.setPrefix("<");
            scanner.setSuffix(">");
            assertEquals(new FixedText("<", true), scanner.prefix());
            scanner.setEditing(EditRule.delete("0", 0, 0));
            assertEquals(EditRule.delete("0", 0, 0), scanner.editing());
            machine.command("scanner scan 10203");
            assertEquals("<123>", scans.next().text());
        }
    }

    @Test
    void symbologiesAndTheTriggerAreSwitched() {
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.enable();
            scanner.setSymbologyEnabled(Symbology.EAN_13, false);
            assertFalse(machine.command("scanner symbologies").contains("\"EAN_13\""));
            scanner.setSymbologyEnabled(Symbology.EAN_13, true);
            assertTrue(machine.command("scanner symbologies").contains("\"EAN_13\""));
            scanner.setHardwareTriggerEnabled(false);
            assertFalse(scanner.isHardwareTriggerEnabled());
            scanner.setHardwareTriggerEnabled(true);
            assertTrue(scanner.isHardwareTriggerEnabled());
            scanner.startScanning();
            scanner.stopScanning();
        }
    }

    @Test
    void anEngineThatRefusesIsAFailure() {
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.enable();
            machine.command("scanner refuse ControlCommand 1 1");
            assertFails(ResultCode.INTERNAL_ERROR, "Unable turn on barcode decoding.", scanner::startScanning);
            scanner.startScanning();
            scanner.stopScanning();
        }
    }
}
