// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

/** Receives swipes of a {@link CardReader}. */
@FunctionalInterface
public interface SwipeListener {
    /**
     * A card was swiped. Called on the thread {@code quarlin-events}, one swipe at a time, with no lock held: it may
     * call the reader, and close it. While it runs, the events of all devices wait. What it throws goes to the thread's
     * uncaught-exception handler and harms nothing else.
     *
     * @param data the swipe; never null. Look at {@link MagStripeData#isValid()} first
     */
    void onSwipe(MagStripeData data);
}
