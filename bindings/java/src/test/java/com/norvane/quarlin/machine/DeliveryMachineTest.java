// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.bcr.BarcodeScanner;
import com.norvane.quarlin.msr.CardReader;
import com.norvane.quarlin.msr.MagStripeData;
import java.io.IOException;
import java.io.RandomAccessFile;
import java.lang.management.ManagementFactory;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.Semaphore;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicInteger;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/**
 * Many scans and swipes, while the garbage collector runs: each arrives once and in order, and nothing is left behind.
 */
@Tag("machine")
class DeliveryMachineTest {
    private static final int SCAN_BATCHES = 200;
    private static final int SCANS_AT_ONCE = 50;
    private static final int SWIPE_BATCHES = 50;
    // The system keeps 32 reports for a program that does not read at once.
    private static final int SWIPES_AT_ONCE = 15;
    // The VM and the library keep things from their first deliveries.
    private static final int WARM_UP_BATCHES = 10;
    private static final int BATCHES_PER_COLLECTION = 4;
    // In bytes: less than an object for each scan has.
    private static final int MOST_HEAP = 200 * 1024;

    private Machine machine;

    @BeforeEach
    void takeMachine() throws IOException {
        machine = new Machine();
    }

    @AfterEach
    void end() throws IOException {
        machine.close();
    }

    /** Collects garbage on a thread of its own, each time that it is told to. */
    private static final class Collector implements AutoCloseable {
        private final Semaphore wanted = new Semaphore(0);
        private final AtomicInteger rounds = new AtomicInteger();
        private final Thread thread = new Thread(this::run, "garbage");

        Collector() {
            thread.setDaemon(true);
            thread.start();
        }

        private void run() {
            try {
                while (true) {
                    wanted.acquire();
                    System.gc();
                    rounds.incrementAndGet();
                }
            } catch (InterruptedException ended) {
                // That is all.
            }
        }

        /** Returns at once. Not while the last time is not over. */
        void collect() {
            if (wanted.availablePermits() == 0) {
                wanted.release();
            }
        }

        int rounds() {
            return rounds.get();
        }

        @Override
        public void close() {
            thread.interrupt();
        }
    }

    /** What this process holds. Threads that end meanwhile are waited for. */
    private static final class Held {
        final int handles;
        final int threads;
        final long heap;

        Held(Turns turns) throws IOException {
            System.gc();
            handles = turns.handlesOfThisProcess();
            threads = ManagementFactory.getThreadMXBean().getThreadCount();
            heap = ManagementFactory.getMemoryMXBean().getHeapMemoryUsage().getUsed();
        }

        @Override
        public String toString() {
            return handles + " handles, " + threads + " threads, " + heap / 1024 + " KB of heap";
        }

        /** The VM itself needs a little now and then; an object kept of each delivery would be seen. */
        void assertNotMoreThan(Held before) {
            String text = "before: " + before + "; after: " + this;
            assertTrue(handles <= before.handles + 4, text);
            assertTrue(threads <= before.threads, text);
            assertTrue(heap <= before.heap + MOST_HEAP, text);
        }
    }

    @Test
    void handlesThatAreOpenAreCounted() throws IOException {
        int before = machine.turns().handlesOfThisProcess();
        String file = Simulator.binary("qlsim.exe");
        List<RandomAccessFile> open = new ArrayList<>();
        for (int i = 0; i < 50; ++i) {
            open.add(new RandomAccessFile(file, "r"));
        }
        assertTrue(machine.turns().handlesOfThisProcess() >= before + open.size());
        for (RandomAccessFile one : open) {
            one.close();
        }
        assertTrue(machine.turns().handlesOfThisProcess() < before + 20);
    }

    @Test
    void tenThousandScansArriveOnceAndInOrder() throws Exception {
        Scanners.playBuiltIn(machine);
        AtomicInteger arrived = new AtomicInteger();
        BlockingQueue<String> wrong = new LinkedBlockingQueue<>();
        try (BarcodeScanner scanner = BarcodeScanner.open(); Collector collector = new Collector()) {
            scanner.addScanListener(scan -> {
                int batch = arrived.get() / SCANS_AT_ONCE;
                if (!scan.text().equals("batch " + batch) || scan.bytes().length != scan.text().length()) {
                    wrong.add(scan.text() + " in batch " + batch);
                }
                arrived.incrementAndGet();
            });
            scanner.enable();
            scan(0, WARM_UP_BATCHES, arrived, collector);
            Held before = new Held(machine.turns());
            scan(WARM_UP_BATCHES, SCAN_BATCHES, arrived, collector);
            Held after = new Held(machine.turns());
            // A scan too many anywhere comes before this one.
            machine.command("scanner scan \"batch " + SCAN_BATCHES + "\"");
            Wait.until("the last scan", () -> arrived.get() > SCAN_BATCHES * SCANS_AT_ONCE);
            assertTrue(wrong.isEmpty(), () -> wrong.size() + " wrong, the first " + wrong.peek());
            assertTrue(collector.rounds() >= 10, "rounds: " + collector.rounds());
            after.assertNotMoreThan(before);
        }
    }

    private void scan(int first, int end, AtomicInteger arrived, Collector collector) throws Exception {
        for (int batch = first; batch < end; ++batch) {
            if (batch % BATCHES_PER_COLLECTION == 0) {
                collector.collect();
            }
            machine.command("scanner present " + SCANS_AT_ONCE + " 0 \"batch " + batch + "\"");
            int sum = (batch + 1) * SCANS_AT_ONCE;
            Wait.until("scan " + sum, () -> arrived.get() >= sum);
        }
    }

    @Test
    void manySwipesArriveOnceAndInOrder() throws Exception {
        machine.turns().cardReaders();
        machine.play(
                "[[device]]",
                "kind = \"card-reader\"",
                "name = \"reader\"",
                "[[device.card]]",
                "id = \"visa\"",
                "name = \"MUSTERMANN/ERIKA\"",
                "account = \"4111111111111111\"",
                "expiry = \"2812\"",
                "service_code = \"101\"");
        BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
        try (CardReader reader = CardReader.open(); Collector collector = new Collector()) {
            reader.readers();
            reader.addSwipeListener(swipes::add);
            reader.enable();
            swipe(0, WARM_UP_BATCHES, swipes, collector);
            Held before = new Held(machine.turns());
            swipe(WARM_UP_BATCHES, SWIPE_BATCHES, swipes, collector);
            Held after = new Held(machine.turns());
            assertTrue(swipes.isEmpty());
            assertTrue(collector.rounds() >= 5, "rounds: " + collector.rounds());
            after.assertNotMoreThan(before);
        }
    }

    private void swipe(int first, int end, BlockingQueue<MagStripeData> swipes, Collector collector)
            throws InterruptedException {
        for (int batch = first; batch < end; ++batch) {
            if (batch % BATCHES_PER_COLLECTION == 0) {
                collector.collect();
            }
            machine.command("reader swipe-many " + SWIPES_AT_ONCE);
            for (int i = 0; i < SWIPES_AT_ONCE; ++i) {
                int number = batch * SWIPES_AT_ONCE + i + 1;
                MagStripeData swipe = swipes.poll(Wait.PATIENCE.getSeconds(), TimeUnit.SECONDS);
                if (swipe == null) {
                    throw new AssertionError("swipe " + number + " did not come");
                }
                assertEquals(number, CardMachineTest.number(swipe));
                assertEquals(3, swipe.getTracks().length);
            }
        }
    }
}
