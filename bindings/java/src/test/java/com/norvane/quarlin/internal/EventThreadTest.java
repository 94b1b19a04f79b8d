// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.lang.ref.WeakReference;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.atomic.AtomicBoolean;
import java.util.concurrent.atomic.AtomicReference;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

@Timeout(120)
class EventThreadTest {
    // One for each test. They are daemons and wait for ever.
    private final EventThread thread = new EventThread("test-events");

    @Test
    void eventsRunOnOneNamedDaemonThread() {
        AtomicReference<Thread> first = new AtomicReference<>();
        AtomicReference<Thread> second = new AtomicReference<>();
        thread.post(() -> first.set(Thread.currentThread()));
        Latches.drain(thread);
        thread.post(() -> second.set(Thread.currentThread()));
        Latches.drain(thread);
        assertSame(first.get(), second.get());
        assertEquals("test-events", first.get().getName());
        assertTrue(first.get().isDaemon());
        assertSame(EventThread.class.getClassLoader(), first.get().getContextClassLoader());
    }

    @Test
    void thatOfAllDevicesIsNamedForTheLibrary() {
        AtomicReference<String> name = new AtomicReference<>();
        EventThread.shared().post(() -> name.set(Thread.currentThread().getName()));
        Latches.drain(EventThread.shared());
        assertEquals("quarlin-events", name.get());
    }

    @Test
    void itsPriorityIsNotThatOfWhoeverStartsIt() throws InterruptedException {
        Thread first = new Thread(thread::start);
        first.setPriority(Thread.MIN_PRIORITY);
        first.start();
        first.join();
        AtomicReference<Integer> priority = new AtomicReference<>();
        thread.post(() -> priority.set(Thread.currentThread().getPriority()));
        Latches.drain(thread);
        assertEquals(Thread.NORM_PRIORITY, priority.get());
    }

    @Test
    void anEventMayPostAnother() {
        AtomicBoolean ran = new AtomicBoolean();
        thread.post(() -> thread.post(() -> ran.set(true)));
        Latches.drain(thread);
        Latches.drain(thread);
        assertTrue(ran.get());
    }

    @Test
    void aSlowEventHoldsBackTheNextOnesAndNotTheirSource() {
        CountDownLatch release = new CountDownLatch(1);
        List<Integer> seen = new ArrayList<>();
        thread.post(() -> Latches.await(release));
        for (int i = 0; i < 1000; ++i) {
            int number = i;
            thread.post(() -> seen.add(number));
        }
        // Here, because no post has waited; and the first event is not over.
        assertEquals(0, seen.size());
        release.countDown();
        Latches.drain(thread);
        assertEquals(1000, seen.size());
    }

    @Test
    void noneOfAHundredThousandIsLostAndEachSourceKeepsItsOrder() throws InterruptedException {
        int sources = 4;
        int each = 25_000;
        int[] next = new int[sources];
        List<String> wrong = new ArrayList<>();
        List<Thread> posting = new ArrayList<>();
        for (int s = 0; s < sources; ++s) {
            int source = s;
            Thread poster = new Thread(() -> {
                for (int i = 0; i < each; ++i) {
                    int number = i;
                    thread.post(() -> {
                        if (next[source]++ != number) {
                            wrong.add(source + ": " + number);
                        }
                    });
                }
            });
            poster.start();
            posting.add(poster);
        }
        for (Thread poster : posting) {
            poster.join();
        }
        Latches.drain(thread);
        assertEquals(new ArrayList<>(), wrong);
        assertEquals("[25000, 25000, 25000, 25000]", Arrays.toString(next));
    }

    @Test
    void whatAnEventThrowsGoesToTheHandlerAndTheThreadGoesOn() {
        List<Throwable> handled = new ArrayList<>();
        AtomicReference<Thread> before = new AtomicReference<>();
        AtomicReference<Thread> after = new AtomicReference<>();
        RuntimeException failure = new RuntimeException("event");
        Error error = new StackOverflowError("event");
        thread.post(() -> {
            before.set(Thread.currentThread());
            Thread.currentThread().setUncaughtExceptionHandler((where, what) -> handled.add(what));
            throw failure;
        });
        thread.post(() -> {
            throw error;
        });
        thread.post(() -> after.set(Thread.currentThread()));
        Latches.drain(thread);
        assertEquals(Arrays.asList(failure, error), handled);
        assertSame(before.get(), after.get());
    }

    @Test
    void aHandlerThatThrowsItselfHarmsNothing() {
        AtomicBoolean ran = new AtomicBoolean();
        thread.post(() -> {
            Thread.currentThread().setUncaughtExceptionHandler((where, what) -> {
                throw new IllegalStateException("handler");
            });
            throw new RuntimeException("event");
        });
        thread.post(() -> ran.set(true));
        Latches.drain(thread);
        assertTrue(ran.get());
    }

    @Test
    void anInterruptThatAnEventLeavesBehindHarmsNothing() {
        AtomicBoolean interrupted = new AtomicBoolean(true);
        thread.post(() -> Thread.currentThread().interrupt());
        Latches.drain(thread);
        thread.post(() -> interrupted.set(Thread.currentThread().isInterrupted()));
        Latches.drain(thread);
        assertFalse(interrupted.get());
    }

    @Test
    void nothingIsKeptOfAnEventThatHasRun() throws InterruptedException {
        WeakReference<Object> kept = postWith(new Object());
        Latches.drain(thread);
        for (int i = 0; i < 100 && kept.get() != null; ++i) {
            System.gc();
            // The drained event itself may still be on the thread's stack; another one takes its place.
            Latches.drain(thread);
        }
        assertNull(kept.get());
    }

    private WeakReference<Object> postWith(Object held) {
        WeakReference<Object> reference = new WeakReference<>(held);
        thread.post(() -> assertNotNull(held));
        return reference;
    }

    @Test
    void anEventIsNeeded() {
        assertThrows(NullPointerException.class, () -> thread.post(null));
    }
}
