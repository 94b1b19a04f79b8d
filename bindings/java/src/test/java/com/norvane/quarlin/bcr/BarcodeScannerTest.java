// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.EventThread;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.Latches;
import com.norvane.quarlin.internal.Session;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

/** From opening to closing, with a family that is played here. */
@Timeout(120)
class BarcodeScannerTest {
    /** The states of the native family, and what it refuses. */
    private static final class PlayedFamily implements ScannerStates {
        final List<String> calls = Collections.synchronizedList(new ArrayList<>());
        boolean initialized;
        boolean enabled;
        boolean goneWithDisable;
        String initializeRefusal;
        String enableRefusal;
        String disableRefusal;
        String uninitializeRefusal;
        int enableResult;

        private void note(String call, String refusal) {
            calls.add(call);
            if (refusal != null) {
                throw new BarcodeException("Unknown," + refusal);
            }
        }

        @Override
        public int initialize() {
            note("initialize", initializeRefusal);
            initialized = true;
            return 0;
        }

        @Override
        public int uninitialize() {
            note("uninitialize", uninitializeRefusal);
            if (enabled) {
                throw new IllegalStateException("The device is not disabled. Please disable before further use");
            }
            initialized = false;
            return 0;
        }

        @Override
        public int enable() {
            note("enable", enableRefusal);
            if (enabled) {
                throw new IllegalStateException("The device is already enabled");
            }
            enabled = true;
            return enableResult;
        }

        @Override
        public int disable() throws IOException {
            if (goneWithDisable) {
                enabled = false;
            }
            note("disable", disableRefusal);
            enabled = false;
            return 0;
        }

        @Override
        public boolean isEnabled() {
            return enabled;
        }
    }

    private final PlayedFamily family = new PlayedFamily();
    private final List<String> heard = Collections.synchronizedList(new ArrayList<>());

    private static void deliver(String text) {
        ScanDispatcher.nativeBarcodeEvent(0, text, text.length(), text.getBytes(StandardCharsets.US_ASCII), "]C0", 3,
            new byte[] {']', 'C', '0'});
    }

    private static void assertCode(ResultCode code, String message, QuarlinException failure) {
        assertSame(code, failure.code());
        assertEquals(message, failure.getMessage());
    }

    @Test
    void aScannerGoesThroughItsStates() {
        try (BarcodeScanner scanner = BarcodeScanner.open(family)) {
            assertFalse(scanner.isEnabled());
            scanner.enable();
            assertTrue(scanner.isEnabled());
            scanner.disable();
            assertFalse(scanner.isEnabled());
        }
        assertEquals(Arrays.asList("initialize", "enable", "disable", "uninitialize"), family.calls);
    }

    @Test
    void closingDisables() {
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.enable();
        scanner.close();
        assertEquals(Arrays.asList("initialize", "enable", "disable", "uninitialize"), family.calls);
    }

    @Test
    void closingTwiceIsClosingOnce() {
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.close();
        scanner.close();
        assertEquals(Arrays.asList("initialize", "uninitialize"), family.calls);
    }

    @Test
    void oneIsOpenAtATime() {
        try (BarcodeScanner scanner = BarcodeScanner.open(family)) {
            assertFalse(scanner.isEnabled());
            assertCode(ResultCode.INVALID_STATE, "The barcode scanner is open already.",
                assertThrows(QuarlinException.class, () -> BarcodeScanner.open(family)));
        }
        assertEquals(Arrays.asList("initialize", "uninitialize"), family.calls);
        BarcodeScanner.open(family).close();
    }

    @Test
    void afterAFailedOpeningItCanBeTriedAgain() {
        family.initializeRefusal = "Unable to initialize Intermec barcode.";
        assertCode(ResultCode.INTERNAL_ERROR, "Unable to initialize Intermec barcode.",
            assertThrows(BarcodeException.class, () -> BarcodeScanner.open(family)));
        family.initializeRefusal = null;
        BarcodeScanner.open(family).close();
    }

    @Test
    void aClosedScannerRefusesEverything() {
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.close();
        family.calls.clear();
        List<Runnable> uses = Arrays.asList(scanner::enable, scanner::disable, scanner::isEnabled,
            scanner::startScanning, scanner::stopScanning, scanner::deviceName, scanner::deviceType,
            scanner::firmwareVersion, scanner::isHardwareTriggerEnabled, scanner::isSoundEnabled, scanner::prefix,
            scanner::suffix, scanner::editing, () -> scanner.select(0), () -> scanner.setPrefix(""),
            () -> scanner.setSuffix(""), () -> scanner.setEditing(EditRule.none()),
            () -> scanner.setSymbologyEnabled(Symbology.QR, true), () -> scanner.setSymbologyEnabled("QR", true),
            () -> scanner.setTriggerMode(TriggerMode.MODE_0), () -> scanner.setHardwareTriggerEnabled(true),
            () -> scanner.setSoundEnabled(true), () -> scanner.setSoundFile(Paths.get("a.wav")),
            () -> scanner.addScanListener(scan -> { }));
        for (Runnable use : uses) {
            assertCode(ResultCode.INVALID_STATE, "The barcode scanner is closed.",
                assertThrows(QuarlinException.class, use::run));
        }
        assertEquals(Collections.emptyList(), family.calls);
        scanner.removeScanListener(scan -> { });
    }

    @Test
    void theFirstFailureOfClosingIsThrownWithTheSecondInIt() {
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.enable();
        family.disableRefusal = "Unable to disconnect barcode.";
        family.uninitializeRefusal = "second";
        QuarlinException failure = assertThrows(QuarlinException.class, scanner::close);
        assertCode(ResultCode.INTERNAL_ERROR, "Unable to disconnect barcode.", failure);
        assertEquals(1, failure.getSuppressed().length);
        assertEquals("second", failure.getSuppressed()[0].getMessage());

        // Closed all the same; the next one ends what is left.
        scanner.close();
        family.disableRefusal = null;
        family.uninitializeRefusal = null;
        family.calls.clear();
        try (BarcodeScanner next = BarcodeScanner.open(family)) {
            next.enable();
        }
        // From the beginning, because the settings are left as well.
        assertEquals(Arrays.asList("initialize", "disable", "uninitialize", "initialize", "enable", "disable",
            "uninitialize"), family.calls);
    }

    @Test
    void aScannerThatGoesWhileItIsDisabledIsClosedWithoutFailure() {
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.enable();
        family.goneWithDisable = true;
        family.disableRefusal = "The device is already disabled";
        scanner.close();
        assertEquals(Arrays.asList("initialize", "enable", "disable", "uninitialize"), family.calls);
    }

    @Test
    void aFailedEnablingLeavesTheScannerOpen() {
        try (BarcodeScanner scanner = BarcodeScanner.open(family)) {
            family.enableRefusal = "Unable to connect barcode.";
            assertCode(ResultCode.INTERNAL_ERROR, "Unable to connect barcode.",
                assertThrows(QuarlinException.class, scanner::enable));
            family.enableRefusal = null;
            scanner.enable();
            assertCode(ResultCode.INVALID_STATE, "The device is already enabled",
                assertThrows(QuarlinException.class, scanner::enable));
        }
    }

    @Test
    void oneWhoseScansCannotBeDeliveredIsNotLeftEnabled() {
        try (BarcodeScanner scanner = BarcodeScanner.open(family)) {
            family.enableResult = 2;
            assertCode(ResultCode.INVALID_STATE, "The scanner's scans cannot be delivered.",
                assertThrows(QuarlinException.class, scanner::enable));
            assertFalse(scanner.isEnabled());
        }
    }

    @Test
    void theScannerIsLookedForWhileNobodyAsksTheDeviceInventory() throws InterruptedException {
        CountDownLatch asking = new CountDownLatch(1);
        CountDownLatch release = new CountDownLatch(1);
        Session inventory = Family.DEVICE_INVENTORY.open(() -> 0);
        Thread asker = new Thread(() -> inventory.change(() -> {
            asking.countDown();
            Latches.await(release);
            return 0;
        }));
        Thread opener = new Thread(() -> BarcodeScanner.open(family).close());
        asker.start();
        Latches.await(asking);
        opener.start();
        Latches.awaitBlocked(opener);
        assertEquals(Collections.emptyList(), family.calls);
        release.countDown();
        opener.join();
        asker.join();
        inventory.close();
        assertEquals(Arrays.asList("initialize", "uninitialize"), family.calls);
    }

    @Test
    void scansReachTheListenersUntilClosing() {
        deliver("before");
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.addScanListener(scan -> heard.add(scan.toString() + " on " + Thread.currentThread().getName()));
        deliver("1");
        deliver("2");
        Latches.drain(EventThread.shared());
        scanner.close();
        deliver("after");
        Latches.drain(EventThread.shared());
        assertEquals(Arrays.asList("]C0 1 on quarlin-events", "]C0 2 on quarlin-events"), heard);
    }

    @Test
    void aRemovedListenerHearsNothing() {
        try (BarcodeScanner scanner = BarcodeScanner.open(family)) {
            ScanListener listener = scan -> heard.add(scan.text());
            scanner.addScanListener(listener);
            deliver("1");
            Latches.drain(EventThread.shared());
            scanner.removeScanListener(listener);
            deliver("2");
            Latches.drain(EventThread.shared());
        }
        assertEquals(Collections.singletonList("1"), heard);
    }

    @Test
    void scansThatWaitWhenTheScannerIsClosedAreDropped() {
        CountDownLatch release = new CountDownLatch(1);
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.addScanListener(scan -> heard.add(scan.text()));
        EventThread.shared().post(() -> Latches.await(release));
        deliver("waiting");
        scanner.close();
        release.countDown();
        Latches.drain(EventThread.shared());
        assertEquals(Collections.emptyList(), heard);
    }

    @Test
    void aListenerMayCloseItsScanner() {
        CountDownLatch closed = new CountDownLatch(1);
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.addScanListener(scan -> {
            scanner.disable();
            scanner.close();
            closed.countDown();
        });
        scanner.enable();
        deliver("1");
        Latches.await(closed);
        assertEquals(Arrays.asList("initialize", "enable", "disable", "uninitialize"), family.calls);
    }

    @Test
    void noLockIsHeldWhileAListenerRuns() {
        CountDownLatch running = new CountDownLatch(1);
        CountDownLatch release = new CountDownLatch(1);
        BarcodeScanner scanner = BarcodeScanner.open(family);
        scanner.addScanListener(scan -> {
            running.countDown();
            Latches.await(release);
        });
        scanner.enable();
        deliver("1");
        Latches.await(running);
        // With a lock held these would wait for the listener, which waits for this thread.
        scanner.disable();
        scanner.close();
        BarcodeScanner.open(family).close();
        release.countDown();
        Latches.drain(EventThread.shared());
    }

    @Test
    void aDeliveryNeverWaitsForAScannerThatIsClosing() throws InterruptedException {
        CountDownLatch closing = new CountDownLatch(1);
        CountDownLatch delivered = new CountDownLatch(1);
        ScannerStates waits = new ScannerStates() {
            @Override
            public int initialize() {
                return 0;
            }

            @Override
            public int uninitialize() {
                // As the native library, which ends when its deliveries have.
                closing.countDown();
                Latches.await(delivered);
                return 0;
            }

            @Override
            public int enable() {
                return 0;
            }

            @Override
            public int disable() {
                return 0;
            }

            @Override
            public boolean isEnabled() {
                return false;
            }
        };
        BarcodeScanner scanner = BarcodeScanner.open(waits);
        scanner.addScanListener(scan -> heard.add(scan.text()));
        Thread listenerThread = new Thread(() -> {
            Latches.await(closing);
            deliver("late");
            delivered.countDown();
        });
        listenerThread.start();
        scanner.close();
        listenerThread.join();
        Latches.drain(EventThread.shared());
        assertEquals(Collections.emptyList(), heard);
    }
}
