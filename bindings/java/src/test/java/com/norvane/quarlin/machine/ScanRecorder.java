// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import com.norvane.quarlin.bcr.Scan;
import com.norvane.quarlin.bcr.ScanListener;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;

/** A listener that keeps what it is told. */
final class ScanRecorder implements ScanListener {
    private final BlockingQueue<Scan> scans = new LinkedBlockingQueue<>();
    private volatile Thread thread;

    @Override
    public void onScan(Scan scan) {
        thread = Thread.currentThread();
        scans.add(scan);
    }

    Scan next() throws InterruptedException {
        Scan scan = scans.poll(Wait.PATIENCE.getSeconds(), TimeUnit.SECONDS);
        if (scan == null) {
            throw new AssertionError("no scan came");
        }
        return scan;
    }

    boolean isEmpty() {
        return scans.isEmpty();
    }

    /** The thread of the last scan. */
    Thread thread() {
        return thread;
    }
}
