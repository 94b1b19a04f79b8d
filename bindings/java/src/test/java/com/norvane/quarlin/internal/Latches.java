// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

/** Waiting in tests, with a deadline that nothing comes near. */
public final class Latches {
    private Latches() {
    }

    /** Waits for a latch, and fails when it does not open within a minute. */
    public static void await(CountDownLatch latch) {
        try {
            if (!latch.await(1, TimeUnit.MINUTES)) {
                throw new AssertionError("nothing came within a minute: " + latch);
            }
        } catch (InterruptedException interrupted) {
            throw new AssertionError(interrupted);
        }
    }

    /** Waits until a thread waits for a lock. */
    public static void awaitBlocked(Thread thread) {
        long deadline = System.nanoTime() + TimeUnit.MINUTES.toNanos(1);
        while (thread.getState() != Thread.State.WAITING) {
            if (thread.getState() == Thread.State.TERMINATED || System.nanoTime() > deadline) {
                throw new AssertionError("the thread does not wait: " + thread.getState());
            }
            Thread.yield();
        }
    }

    /** Waits until everything that was posted before has run. */
    public static void drain(EventThread thread) {
        CountDownLatch done = new CountDownLatch(1);
        thread.post(done::countDown);
        await(done);
    }
}
