// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.msr.CardReader;
import com.norvane.quarlin.msr.MagStripeData;
import com.norvane.quarlin.msr.MagStripeReader;
import com.norvane.quarlin.msr.MagStripeTrackData;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.util.List;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** Card readers on the HID bus: their list, and swipes that arrive on threads of the native library. */
@Tag("machine")
class CardMachineTest {
    private static final String NOT_INITIALIZED = "No exist manager instance.";
    private static final int TRACK_SIZE = 112;
    private static final int REPORT_SIZE = 888;

    private static Machine machine;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        machine.turns().cardReaders();
        machine.play(
                "[[device]]",
                "kind = \"card-reader\"",
                "name = \"left\"",
                "serial = \"B30A5C7\"",
                "software_id = \"21088812D01\"",
                "security_level = 2",
                "instance = \"6&2f9a1b0c&0&0000\"",
                "[[device.card]]",
                "id = \"visa\"",
                "name = \"MUSTERMANN/ERIKA\"",
                "account = \"4111111111111111\"",
                "expiry = \"2812\"",
                "service_code = \"101\"",
                "discretionary = \"0123456\"",
                "[[device.card]]",
                "id = \"staff\"",
                "track2 = \";9000012345=000042?\"",
                "[[device.card]]",
                "id = \"scratched\"",
                "track2 = \";9000012345=000042?\"",
                "bad_tracks = \"1\"",
                "[[device]]",
                "kind = \"card-reader\"",
                "name = \"right\"",
                "serial = \"B30A5C8\"",
                "security_level = 3",
                "instance = \"6&2f9a1b0c&0&0001\"",
                "plugged = false",
                "[[device]]",
                "kind = \"hid\"",
                "name = \"pin-pad\"",
                "vendor = 0x0801",
                "product = 0x3009");
    }

    @AfterAll
    static void end() throws IOException {
        machine.close();
    }

    /** Where swipes go that are taken from the native methods directly. */
    static final class NativeSwipes {
        static final BlockingQueue<MagStripeData> SWIPES = new LinkedBlockingQueue<>();
        static volatile Thread thread;

        private NativeSwipes() {
        }

        static void onMagStripeSwipe(MagStripeData swipe) {
            thread = Thread.currentThread();
            SWIPES.add(swipe);
        }
    }

    @BeforeEach
    void asAtTheBeginning() {
        NativeSwipes.SWIPES.clear();
        machine.command("left no-faults");
        machine.command("left security-level 2");
    }

    private static MagStripeData next(BlockingQueue<MagStripeData> swipes) throws InterruptedException {
        MagStripeData swipe = swipes.poll(Wait.PATIENCE.getSeconds(), TimeUnit.SECONDS);
        if (swipe == null) {
            throw new AssertionError("no swipe came");
        }
        return swipe;
    }

    private static String text(MagStripeTrackData track) {
        return new String(track.getData(), StandardCharsets.ISO_8859_1);
    }

    /** The swipe's number in its report. */
    static int number(MagStripeData swipe) {
        byte[] raw = swipe.getRaw();
        return (raw[857] & 0xFF) << 16 | (raw[858] & 0xFF) << 8 | raw[859] & 0xFF;
    }

    @Test
    void nativeMethodsListReadersAndDeliverSwipes() throws Exception {
        assertEquals(0, MagStripeReader.QLMSR_Initialize(Object.class, NativeSwipes.class));
        try {
            MagStripeReader[] readers = MagStripeReader.QLMSR_GetMagStripeReaders();
            assertEquals(1, readers.length);
            assertEquals(0, readers[0].getIndex());
            assertEquals("MAGTEK(USB)", readers[0].getName());
            assertEquals("B30A5C7", readers[0].getSerialNumber());
            assertEquals("21088812D01", readers[0].getSoftwareId());
            assertFalse(readers[0].isEncryptionEnabled());
            assertEquals(MagStripeReader.MagStripeVendor.MagTek, readers[0].getVendor());

            assertFalse(MagStripeReader.QLMSR_IsEnabled());
            assertEquals(0, MagStripeReader.QLMSR_SelectDevice(0));
            assertEquals(0, MagStripeReader.QLMSR_Enable());
            assertTrue(MagStripeReader.QLMSR_IsEnabled());

            machine.command("left swipe visa");
            MagStripeData swipe = next(NativeSwipes.SWIPES);
            assertTrue(swipe.isValid());
            assertFalse(swipe.isEncrypted());
            assertEquals(3, swipe.getTracks().length);
            assertEquals(3, swipe.getMaskedTracks().length);
            assertEquals("%B4111111111111111^MUSTERMANN/ERIKA^28121010123456?", text(swipe.getTracks()[0]));
            assertEquals(";4111111111111111=28121010123456?", text(swipe.getTracks()[1]));
            assertEquals("", text(swipe.getTracks()[2]));
            for (MagStripeTrackData track : swipe.getTracks()) {
                assertEquals(TRACK_SIZE, track.getBufferSize());
                assertEquals(TRACK_SIZE, track.getBuffer().length);
            }
            assertEquals(REPORT_SIZE, swipe.getRaw().length);
            assertNotEquals(Thread.currentThread(), NativeSwipes.thread);

            assertEquals(0, MagStripeReader.QLMSR_Disable());
            assertFalse(MagStripeReader.QLMSR_IsEnabled());
        } finally {
            assertEquals(0, MagStripeReader.QLMSR_Uninitialize());
        }
    }

    @Test
    void anEncryptedSwipeComesWithMaskedTracks() throws Exception {
        MagStripeReader.QLMSR_Initialize(Object.class, NativeSwipes.class);
        try {
            MagStripeReader.QLMSR_GetMagStripeReaders();
            MagStripeReader.QLMSR_Enable();
            machine.command("left swipe visa encrypted");
            MagStripeData swipe = next(NativeSwipes.SWIPES);
            assertTrue(swipe.isEncrypted());
            assertTrue(swipe.isValid());
            assertEquals(";4111000000001111=28120000000000?".length(), text(swipe.getMaskedTracks()[1]).length());
            assertTrue(text(swipe.getMaskedTracks()[1]).startsWith(";4111000000001111=2812"));
            assertNotEquals(text(swipe.getMaskedTracks()[1]), text(swipe.getTracks()[1]));
            machine.command("left swipe scratched");
            assertFalse(next(NativeSwipes.SWIPES).isValid());
        } finally {
            MagStripeReader.QLMSR_Uninitialize();
        }
    }

    @Test
    void withoutInitialisationNativeMethodsAreRefused() throws IOException {
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, MagStripeReader::QLMSR_Enable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, MagStripeReader::QLMSR_Disable);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, MagStripeReader::QLMSR_IsEnabled);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, () -> MagStripeReader.QLMSR_SelectDevice(0));
        assertRaises(IllegalStateException.class, "no exist IQlMagStripeMgr instance.",
                MagStripeReader::QLMSR_GetMagStripeReaders);
        // Removing all callbacks fails, ending what has not begun does not.
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, MagStripeReader::QLMSR_Uninitialize);
    }

    @Test
    void failuresOfAReaderAreRaisedAsTheClassOfTheirCode() throws IOException {
        MagStripeReader.QLMSR_Initialize(Object.class, NativeSwipes.class);
        try {
            MagStripeReader.QLMSR_GetMagStripeReaders();
            assertRaises(IllegalArgumentException.class, "Not valid device index.",
                    () -> MagStripeReader.QLMSR_SelectDevice(7));
            machine.command("right fail-feature any always");
            machine.command("right plug");
            assertRaises(RuntimeException.class, "fail MSR devices scan.", MagStripeReader::QLMSR_GetMagStripeReaders);
        } finally {
            machine.command("right unplug");
            machine.command("right no-faults");
            MagStripeReader.QLMSR_Uninitialize();
        }
    }

    @Test
    void aReadersSwipesReachListenersOnTheThreadForEvents() throws Exception {
        BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
        BlockingQueue<Thread> threads = new LinkedBlockingQueue<>();
        try (CardReader reader = CardReader.open()) {
            List<MagStripeReader> readers = reader.readers();
            assertEquals(1, readers.size());
            reader.select(readers.get(0));
            reader.addSwipeListener(swipe -> {
                threads.add(Thread.currentThread());
                swipes.add(swipe);
            });
            reader.enable();
            assertTrue(reader.isEnabled());
            machine.command("left swipe staff");
            assertEquals(";9000012345=000042?", text(next(swipes).getTracks()[1]));
            Thread thread = threads.take();
            assertEquals("quarlin-events", thread.getName());
            assertTrue(thread.isDaemon());
            reader.disable();
            assertFalse(reader.isEnabled());
        }
    }

    @Test
    void readersThatArePluggedInAreListed() {
        try (CardReader reader = CardReader.open()) {
            assertEquals(1, reader.readers().size());
            machine.command("right plug");
            try {
                List<MagStripeReader> readers = reader.readers();
                assertEquals(2, readers.size());
                assertTrue(readers.stream().anyMatch(
                        one -> one.getSerialNumber().equals("B30A5C8") && one.isEncryptionEnabled()));
            } finally {
                machine.command("right unplug");
            }
            assertEquals(1, reader.readers().size());
        }
    }

    @Test
    void throwingAndSlowListenersHarmNoSwipe() throws Exception {
        int count = 20;
        BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
        CountDownLatch goOn = new CountDownLatch(1);
        Thread.UncaughtExceptionHandler before = Thread.getDefaultUncaughtExceptionHandler();
        BlockingQueue<Throwable> reported = new LinkedBlockingQueue<>();
        Thread.setDefaultUncaughtExceptionHandler((thread, failure) -> reported.add(failure));
        try (CardReader reader = CardReader.open()) {
            reader.readers();
            reader.addSwipeListener(swipe -> {
                throw new IllegalStateException("no swipes, please");
            });
            reader.addSwipeListener(swipe -> {
                try {
                    Wait.forLatch("the end of a slow listener", goOn);
                } catch (InterruptedException interrupted) {
                    Thread.currentThread().interrupt();
                }
            });
            reader.addSwipeListener(swipes::add);
            reader.enable();
            machine.command("left swipe-many " + count + " visa");
            // All have been taken from the reader while the first one is still with the slow listener.
            Wait.until("the last swipe", () -> machine.number("left", "pending") == 0);
            assertTrue(swipes.isEmpty());
            goOn.countDown();
            int first = number(next(swipes));
            for (int i = 1; i < count; ++i) {
                assertEquals(first + i, number(next(swipes)));
            }
            assertTrue(swipes.isEmpty());
            assertEquals(count, reported.size());
            assertEquals("no swipes, please", reported.take().getMessage());
        } finally {
            goOn.countDown();
            Thread.setDefaultUncaughtExceptionHandler(before);
        }
    }

    @Test
    void aListenerMayCloseItsReader() throws Exception {
        BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
        CardReader reader = CardReader.open();
        reader.readers();
        reader.addSwipeListener(swipe -> {
            reader.close();
            swipes.add(swipe);
        });
        reader.enable();
        machine.command("left swipe visa");
        next(swipes);
        assertEquals(ResultCode.INVALID_STATE, assertThrows(QuarlinException.class, reader::isEnabled).code());
        machine.command("left swipe visa");
        try (CardReader again = CardReader.open()) {
            again.readers();
            again.addSwipeListener(swipes::add);
            again.enable();
            machine.command("left swipe staff");
            assertEquals(";9000012345=000042?", text(next(swipes).getTracks()[1]));
            assertTrue(swipes.isEmpty());
        }
    }

    @Test
    void aReaderThatCannotBeEnabledFails() {
        try (CardReader reader = CardReader.open()) {
            assertFails(ResultCode.INVALID_ARGUMENT, "Not valid device index.", () -> reader.select(3));
        }
    }
}
