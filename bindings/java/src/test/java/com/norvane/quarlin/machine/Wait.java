// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import java.time.Duration;
import java.util.concurrent.Callable;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

/** Waiting for what another thread, or another program, brings about. */
final class Wait {
    /** Far longer than anything takes on a busy machine: a wait that ends here has failed. */
    static final Duration PATIENCE = Duration.ofSeconds(40);

    private Wait() {
    }

    /** Looks until the condition holds, and fails when the deadline has passed without. */
    static void until(String what, Callable<Boolean> condition) throws Exception {
        CountDownLatch never = new CountDownLatch(1);
        long end = System.nanoTime() + PATIENCE.toNanos();
        while (!condition.call()) {
            if (System.nanoTime() - end > 0) {
                throw new AssertionError("gave up waiting for " + what);
            }
            // Hands the processor to those that are waited for.
            never.await(1, TimeUnit.MILLISECONDS);
        }
    }

    static void forLatch(String what, CountDownLatch latch) throws InterruptedException {
        if (!latch.await(PATIENCE.toMillis(), TimeUnit.MILLISECONDS)) {
            throw new AssertionError("gave up waiting for " + what);
        }
    }
}
