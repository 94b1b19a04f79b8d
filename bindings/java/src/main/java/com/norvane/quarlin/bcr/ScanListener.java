// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** Is told of scans. */
@FunctionalInterface
public interface ScanListener {
    /**
     * A code was scanned.
     *
     * <p>Called on the thread {@code quarlin-events}, one scan after the other. The listener may take its time, which
     * delays the scans behind it, and may call everything, {@link BarcodeScanner#disable()} and
     * {@link BarcodeScanner#close()} included. What it throws goes to the thread's uncaught-exception handler.
     *
     * @param scan the scan; never null
     */
    void onScan(Scan scan);
}
