// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import com.norvane.quarlin.internal.EventThread;
import com.norvane.quarlin.internal.ListenerList;

/**
 * Where the native library delivers swipes, on the thread of the reader and under the locks of the family: it puts them
 * into a queue and returns.
 */
final class SwipeDispatcher {
    private static volatile ListenerList<SwipeListener> listeners;

    private SwipeDispatcher() {
    }

    /** Chooses who gets swipes from now on; null for nobody. */
    static void deliverTo(ListenerList<SwipeListener> chosen) {
        listeners = chosen;
    }

    /** Found by the native library by this name and signature. */
    static void onMagStripeSwipe(MagStripeData data) {
        try {
            ListenerList<SwipeListener> receivers = listeners;
            if (receivers != null) {
                receivers.post(listener -> listener.onSwipe(data));
            }
        } catch (Throwable failure) {
            // Above is native code, which an exception must not reach.
            EventThread.report(failure);
        }
    }
}
