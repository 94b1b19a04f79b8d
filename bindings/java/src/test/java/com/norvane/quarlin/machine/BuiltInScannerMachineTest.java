// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.bcr.BarcodeDevice;
import com.norvane.quarlin.bcr.BarcodeScanner;
import com.norvane.quarlin.bcr.EditRule;
import com.norvane.quarlin.bcr.FixedText;
import com.norvane.quarlin.bcr.Scan;
import com.norvane.quarlin.bcr.Symbology;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.util.List;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.LinkedBlockingQueue;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** The machine's own scanner, a Honeywell engine, and what becomes of its scans. */
@Tag("machine")
class BuiltInScannerMachineTest {
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

    private static String hex(byte[] bytes) {
        StringBuilder text = new StringBuilder();
        for (byte one : bytes) {
            text.append(String.format("%02X", one));
        }
        return text.toString();
    }

    @Test
    void scansReachTheListenerOnTheThreadForEvents() throws Exception {
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scans);
            scanner.enable();
            machine.command("scanner scan 4006381333931 EAN_13");
            Scan scan = scans.next();
            assertEquals("4006381333931", scan.text());
            assertArrayEquals("4006381333931".getBytes(StandardCharsets.US_ASCII), scan.bytes());
            assertEquals(0, scan.deviceIndex());
            assertTrue(scan.symbologyIdentifier().startsWith("]E0"), scan::symbologyIdentifier);
            assertEquals("5D45300000", hex(scan.symbologyIdentifierBytes()));
            assertEquals("quarlin-events", scans.thread().getName());
            machine.command("scanner scan https://example.com/ QR");
            assertEquals("https://example.com/", scans.next().text());

            scanner.removeScanListener(scans);
            ScanRecorder other = new ScanRecorder();
            scanner.addScanListener(other);
            machine.command("scanner scan 1");
            assertEquals("1", other.next().text());
            assertTrue(scans.isEmpty());
        }
    }

    @Test
    void bytesThatAreNoTextArriveAsTheyAre() throws Exception {
        ScanRecorder scans = new ScanRecorder();
        byte[] all = new byte[255];
        for (int i = 0; i < all.length; ++i) {
            all[i] = (byte) (i + 1);
        }
        // Two bytes of UTF-8, four bytes of UTF-8, bytes that are none, an end in the middle of a character.
        byte[][] codes = {"Größe".getBytes(StandardCharsets.UTF_8), "\uD83D\uDE00".getBytes(StandardCharsets.UTF_8),
            all, {'a', (byte) 0xE2, (byte) 0x82}, {(byte) 0xC0, (byte) 0x80, 'z'}, {(byte) 0xFF}};
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scans);
            scanner.enable();
            for (byte[] code : codes) {
                machine.command("scanner scan-raw " + hex(code) + "005D43300000 claimed=" + code.length);
                Scan scan = scans.next();
                assertArrayEquals(code, scan.bytes());
                assertEquals("5D43300000", hex(scan.symbologyIdentifierBytes()));
            }
            machine.command("scanner scan-raw " + hex(codes[0]) + "000000000000 claimed=" + codes[0].length);
            Scan plain = scans.next();
            assertEquals("Größe", plain.text());
            assertEquals("", plain.symbologyIdentifier());
            assertEquals(0, plain.symbologyIdentifierBytes().length);
        }
    }

    @Test
    void textsAroundScansAndEditingAreAppliedAndComeBack() throws Exception {
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scans);
            scanner.enable();
            scanner.setPrefix("<<");
            scanner.setSuffix(new FixedText("€>", false));
            assertEquals(new FixedText("<<", true), scanner.prefix());
            assertEquals(new FixedText("€>", false), scanner.suffix());
            machine.command("scanner scan 1020");
            assertEquals("<<1020€>", scans.next().text());

            EditRule rule = EditRule.replace("0", "oo");
            scanner.setEditing(rule);
            assertEquals(rule, scanner.editing());
            machine.command("scanner scan 1020");
            assertEquals("<<1oo2oo€>", scans.next().text());
            scanner.setEditing(EditRule.insert("/", 1));
            machine.command("scanner scan 1020");
            assertEquals("<<1/020€>", scans.next().text());
            scanner.setEditing(EditRule.none());
            machine.command("scanner scan 1020");
            assertEquals("<<1020€>", scans.next().text());
        }
    }

    @Test
    void theScannerIsListedAndTellsWhatItIs() {
        List<BarcodeDevice> devices = BarcodeScanner.devices();
        assertEquals(1, devices.size());
        assertEquals("Honeywell MiniDB", devices.get(0).name());
        assertEquals(0, devices.get(0).index());
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.select(0);
            scanner.enable();
            assertEquals("Honeywell MiniDB", scanner.deviceName());
            assertEquals("N6603 CE000064AAA", scanner.firmwareVersion());
            assertEquals(devices.get(0).type(), scanner.deviceType());
            assertTrue(scanner.isEnabled());
            scanner.disable();
            assertFalse(scanner.isEnabled());
        }
    }

    @Test
    void symbologiesAreSwitched() {
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.enable();
            scanner.setSymbologyEnabled(Symbology.QR, false);
            assertFalse(machine.command("scanner symbologies").contains("\"QR\""));
            scanner.setSymbologyEnabled("QR", true);
            assertTrue(machine.command("scanner symbologies").contains("\"QR\""));
        }
    }

    @Test
    void failuresHaveCodeAndMessage() {
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            assertFails(ResultCode.INVALID_STATE, "The device is not enabled", scanner::firmwareVersion);
            scanner.enable();
            assertFails(ResultCode.INVALID_ARGUMENT, "The argument of symbology is invalid",
                    () -> scanner.setSymbologyEnabled("Morse", true));
            assertFails(ResultCode.OP_UNSUPPORTED, "Not Supported.", () -> scanner.setHardwareTriggerEnabled(true));
            machine.command("scanner refuse HEDC_StartReadingSession 77 1");
            assertFails(ResultCode.INTERNAL_ERROR, "Unable turn on barcode decoding.", scanner::startScanning);
            assertEquals(ResultCode.INVALID_STATE, assertThrows(QuarlinException.class, BarcodeScanner::open).code());
        }
    }

    @Test
    void throwingAndSlowListenersHarmNoScan() throws Exception {
        int count = 50;
        ScanRecorder scans = new ScanRecorder();
        CountDownLatch goOn = new CountDownLatch(1);
        BlockingQueue<Throwable> reported = new LinkedBlockingQueue<>();
        Thread.UncaughtExceptionHandler before = Thread.getDefaultUncaughtExceptionHandler();
        Thread.setDefaultUncaughtExceptionHandler((thread, failure) -> reported.add(failure));
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            scanner.addScanListener(scan -> {
                throw new AssertionError("no scans, please");
            });
            scanner.addScanListener(scan -> {
                try {
                    Wait.forLatch("the end of a slow listener", goOn);
                } catch (InterruptedException interrupted) {
                    Thread.currentThread().interrupt();
                }
            });
            scanner.addScanListener(scans);
            scanner.enable();
            for (int i = 0; i < count; ++i) {
                machine.command("scanner scan " + i);
            }
            // The engine is not held up, and neither is who asks the scanner.
            assertTrue(scanner.isEnabled());
            assertTrue(scans.isEmpty());
            goOn.countDown();
            for (int i = 0; i < count; ++i) {
                assertEquals(Integer.toString(i), scans.next().text());
            }
            assertTrue(scans.isEmpty());
            assertEquals(count, reported.size());
        } finally {
            goOn.countDown();
            Thread.setDefaultUncaughtExceptionHandler(before);
        }
    }

    @Test
    void aListenerMayCloseItsScanner() throws Exception {
        CountDownLatch closed = new CountDownLatch(1);
        BarcodeScanner scanner = BarcodeScanner.open();
        scanner.addScanListener(scan -> {
            scanner.close();
            closed.countDown();
        });
        scanner.enable();
        machine.command("scanner scan 1");
        Wait.forLatch("the close of the scanner", closed);
        assertEquals(ResultCode.INVALID_STATE, assertThrows(QuarlinException.class, scanner::isEnabled).code());
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner again = BarcodeScanner.open()) {
            again.addScanListener(scans);
            again.enable();
            machine.command("scanner scan 2");
            assertEquals("2", scans.next().text());
            assertTrue(scans.isEmpty());
        }
    }

    @Test
    @SuppressWarnings("try")
    void aScannerMayBeClosedWhileScansArrive() throws Exception {
        for (int round = 0; round < 5; ++round) {
            try (BarcodeScanner scanner = openedWith(new ScanRecorder(), "round " + round)) {
                machine.command("scanner present 1000 0 more");
            }
            machine.command("scanner present 0");
        }
        ScanRecorder scans = new ScanRecorder();
        try (BarcodeScanner scanner = openedWith(scans, "the end")) {
            machine.command("scanner scan 1");
            assertEquals("1", scans.next().text());
            assertTrue(scanner.isEnabled());
        }
    }

    // Returns when the text has arrived. Before it may come what was on its way to somebody who closed the scanner.
    private static BarcodeScanner openedWith(ScanRecorder scans, String text) throws InterruptedException {
        BarcodeScanner scanner = BarcodeScanner.open();
        scanner.addScanListener(scans);
        scanner.enable();
        machine.command("scanner scan \"" + text + "\"");
        String last = scans.next().text();
        while (!last.equals(text)) {
            last = scans.next().text();
        }
        return scanner;
    }
}
