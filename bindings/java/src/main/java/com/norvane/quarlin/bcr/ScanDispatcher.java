// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.internal.EventThread;
import com.norvane.quarlin.internal.ListenerList;
import java.time.Instant;

/** Where the native library delivers scans, on a thread of its own, which is let go at once. */
final class ScanDispatcher {
    private static volatile ListenerList<ScanListener> receivers;

    private ScanDispatcher() {
    }

    /** Says who is told of scans from now on; null for nobody. */
    static void deliverTo(ListenerList<ScanListener> listeners) {
        receivers = listeners;
    }

    /** Called by the native library. Takes no lock that a caller of the library may hold, and throws nothing. */
    static void nativeBarcodeEvent(int deviceIndex, String dataText, int dataLength, byte[] data,
            String symbologyText, int symbologyLength, byte[] symbology) {
        ListenerList<ScanListener> listeners = receivers;
        if (listeners == null) {
            return;
        }
        try {
            Scan scan = new Scan(deviceIndex, dataText, data, symbologyText, symbology, Instant.now());
            listeners.post(listener -> listener.onScan(scan));
        } catch (Throwable noMemory) {
            // The native library has nobody to tell.
            EventThread.report(noMemory);
        }
    }
}
