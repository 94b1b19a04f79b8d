// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.util.Objects;
import java.util.concurrent.CopyOnWriteArrayList;
import java.util.function.Consumer;

/**
 * The listeners of one device, called on the {@link EventThread}. An event that waits in the queue holds this list and
 * not the device, and a closed list holds no listener.
 *
 * <p>All methods may be called on any thread, also by a listener.
 *
 * @param <L> the listener's type
 */
public final class ListenerList<L> {
    private final EventThread thread;
    private final CopyOnWriteArrayList<L> listeners = new CopyOnWriteArrayList<>();
    private volatile boolean closed;

    /** Makes an empty list whose listeners are called on the thread of all devices. */
    public ListenerList() {
        this(EventThread.shared());
    }

    ListenerList(EventThread thread) {
        this.thread = thread;
    }

    /**
     * Adds a listener. One that is in the list already stays there once; a closed list takes none.
     *
     * @param listener called for each event from now on; not null
     */
    public void add(L listener) {
        Objects.requireNonNull(listener, "listener");
        thread.start();
        synchronized (this) {
            if (!closed) {
                listeners.addIfAbsent(listener);
            }
        }
    }

    /**
     * Removes a listener. It is not called any more when this returns, except that a call in progress goes on. Does
     * nothing when it is not in the list.
     *
     * @param listener the listener
     */
    public void remove(L listener) {
        listeners.remove(listener);
    }

    /**
     * Removes all listeners, for good: events that wait in the queue are dropped. Does not wait for a call in progress.
     */
    public synchronized void close() {
        closed = true;
        listeners.clear();
    }

    /**
     * Has an event delivered, if there is a listener. What a listener throws goes to the thread's uncaught-exception
     * handler, and the next listener is called.
     *
     * @param delivery calls the listener that it is given
     */
    public void post(Consumer<? super L> delivery) {
        if (!listeners.isEmpty()) {
            thread.post(() -> deliver(delivery));
        }
    }

    private void deliver(Consumer<? super L> delivery) {
        for (L listener : listeners) {
            // The one before may have removed it, or closed the device.
            if (!listeners.contains(listener)) {
                continue;
            }
            try {
                // Left by the one before, it would end what this one waits for.
                Thread.interrupted();
                delivery.accept(listener);
            } catch (Throwable failure) {
                EventThread.report(failure);
            }
        }
    }
}
