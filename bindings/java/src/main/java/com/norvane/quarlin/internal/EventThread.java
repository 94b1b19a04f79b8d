// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.util.Objects;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;

/**
 * The thread that listeners are called on: one daemon thread for all devices, named {@code quarlin-events}. It is
 * started when it is first needed and stays until the process ends.
 *
 * <p>The native library's threads put events into a queue and go on at once. A slow listener delays the events behind
 * it and nothing else. The queue has no bound: events are made by people who scan and swipe, and losing one of them
 * would be worse than keeping it.
 *
 * <p>What an event throws goes to the thread's uncaught-exception handler, which is
 * {@link Thread#setDefaultUncaughtExceptionHandler the default one} unless an application sets another; the thread goes
 * on.
 */
public final class EventThread {
    private static final EventThread SHARED = new EventThread("quarlin-events");

    private final String name;
    private final BlockingQueue<Runnable> events = new LinkedBlockingQueue<>();
    private volatile Thread thread;

    EventThread(String name) {
        this.name = name;
    }

    /**
     * The thread of all devices.
     *
     * @return the one object; never null
     */
    public static EventThread shared() {
        return SHARED;
    }

    /** Starts the thread when it does not run yet. It is tried again with each call when the system has none left. */
    public void start() {
        Thread running = thread;
        if (running != null && running.isAlive()) {
            return;
        }
        synchronized (this) {
            if (thread != null && thread.isAlive()) {
                return;
            }
            Thread fresh = new Thread(this::run, name);
            fresh.setDaemon(true);
            // Neither is that of whoever happens to come first.
            fresh.setContextClassLoader(EventThread.class.getClassLoader());
            fresh.setPriority(Thread.NORM_PRIORITY);
            fresh.start();
            thread = fresh;
        }
    }

    /**
     * Puts an event into the queue. Does not wait.
     *
     * @param event what is to be run on the thread; not null
     */
    public void post(Runnable event) {
        events.add(Objects.requireNonNull(event));
        start();
    }

    /**
     * Hands a failure that has no caller to the calling thread's uncaught-exception handler. Throws nothing.
     *
     * @param failure what was thrown
     */
    public static void report(Throwable failure) {
        Thread current = Thread.currentThread();
        try {
            current.getUncaughtExceptionHandler().uncaughtException(current, failure);
        } catch (Throwable ignored) {
            // The VM ignores what a handler throws, too.
        }
    }

    private void run() {
        while (true) {
            runNext();
        }
    }

    // A method of its own, so that no event is held while the thread waits for the next one.
    private void runNext() {
        Runnable event;
        try {
            event = events.take();
        } catch (InterruptedException leftByAListener) {
            return;
        }
        try {
            event.run();
        } catch (Throwable failure) {
            report(failure);
        }
    }
}
