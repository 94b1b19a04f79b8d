// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Failures;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.ListenerList;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * Magnetic stripe readers, of which one at a time is selected and enabled.
 *
 * <pre>{@code
 * try (CardReader cards = CardReader.open()) {
 *     List<MagStripeReader> readers = cards.readers();
 *     cards.select(readers.get(0));
 *     cards.addSwipeListener(data -> show(data.getMaskedTracks()));
 *     cards.enable();
 *     ...
 * }
 * }</pre>
 *
 * <p>Swipes reach the listeners on the thread {@code quarlin-events}. Nothing tells that a reader was unplugged: ask
 * {@link #isEnabled()} now and then. When it gives false, {@link #disable()}, then once a second list the readers and,
 * when one is there, select and {@link #enable()} it. Listeners stay.
 *
 * <p>May be used on any thread, listeners included; calls take turns. Every method but {@link #removeSwipeListener} and
 * {@link #close()} throws {@link QuarlinException} with result code 2 (invalid state) when the object is closed.
 */
public final class CardReader implements AutoCloseable {
    private static final Family FAMILY = Family.single("card reader");

    private final CardNatives natives;
    private final ListenerList<SwipeListener> listeners = new ListenerList<>();
    private final Session session;

    /** The reader that was selected; changed by the session's calls alone, as is the next. */
    private int selected;

    /**
     * Whether the native library delivers swipes to Java. It adds a delivery each time that a reader is enabled, and a
     * swipe would come twice.
     */
    private boolean delivering;

    private CardReader(CardNatives natives) {
        this.natives = natives;
        session = FAMILY.open(() -> {
            natives.initialize();
            SwipeDispatcher.deliverTo(listeners);
            return null;
        });
    }

    /**
     * Starts the family. Readers are not looked for before {@link #readers()}.
     *
     * @return the object, with reader 0 selected and nothing enabled; to be closed
     * @throws QuarlinException 2 when one is open in this process already; 5 when the system refuses
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; the message says where it was looked for
     */
    public static CardReader open() {
        NativeLoader.load();
        return open(CardNatives.LIBRARY);
    }

    static CardReader open(CardNatives natives) {
        return new CardReader(natives);
    }

    /**
     * Looks for readers and lists them. A reader found for the first time is asked for its identity, which takes some
     * 0.2 s. An enabled reader stays enabled; a swipe during the call may be lost.
     *
     * @return the readers in the order of their indexes, which may have gaps; never null, empty when there is none, not
     *         to be changed
     * @throws QuarlinException 2 when closed; 5 when a new reader does not answer: all readers are forgotten then, so
     *                          list again and enable again
     */
    public List<MagStripeReader> readers() {
        return session.change(() -> Collections.unmodifiableList(Arrays.asList(natives.readers())));
    }

    /**
     * Selects a reader for enabling.
     *
     * @param reader one of {@link #readers()}; not null
     * @throws QuarlinException as {@link #select(int)}
     */
    public void select(MagStripeReader reader) {
        select(reader.getIndex());
    }

    /**
     * Selects a reader for enabling.
     *
     * @param index the reader's index: 0 to one less than the number of readers last listed; -1 chooses none
     * @throws QuarlinException 1 when the index is not accepted; 2 when another reader is enabled, which must be
     *                          disabled first, or when closed
     */
    public void select(int index) {
        session.change(() -> {
            if (delivering && index != selected) {
                throw new QuarlinException(ResultCode.INVALID_STATE, "Another card reader is enabled.");
            }
            natives.select(index);
            selected = index;
            return null;
        });
    }

    /**
     * Has the swipes of the selected reader delivered to the listeners. Does nothing when they are already. A reader
     * that was unplugged since it was enabled, and is there again at the same place, is enabled anew.
     *
     * @throws QuarlinException 2 when closed; 5 when there is no such reader, or it cannot be opened
     */
    public void enable() {
        session.change(() -> {
            if (delivering) {
                if (isAlive()) {
                    return null;
                }
                giveUp();
            }
            try {
                Failures.translate(natives::enable);
                delivering = true;
            } catch (QuarlinException failure) {
                // The delivery was added all the same.
                QuarlinException later = giveUp();
                if (later != null) {
                    failure.addSuppressed(later);
                }
                throw failure;
            }
            return null;
        });
    }

    private boolean isAlive() {
        try {
            return Failures.translate(natives::isEnabled);
        } catch (QuarlinException forgotten) {
            return false;
        }
    }

    /** Takes the delivery back, also when the reader itself is not there to be disabled. */
    private QuarlinException giveUp() {
        delivering = false;
        try {
            Failures.translate(natives::disable);
            return null;
        } catch (QuarlinException failure) {
            return failure;
        }
    }

    /**
     * Ends the delivery of swipes and closes the reader, which takes 0.2 s. Swipes that wait in the queue are delivered
     * still. Does nothing when nothing is enabled.
     *
     * @throws QuarlinException 2 when closed; 5 when the reader is not known any more. Nothing is delivered after that
     *                          either
     */
    public void disable() {
        session.change(() -> {
            if (delivering) {
                delivering = false;
                natives.disable();
            }
            return null;
        });
    }

    /**
     * Asks whether the selected reader is enabled.
     *
     * @return whether it is; false after it was unplugged
     * @throws QuarlinException 2 when closed; 5 when there is no such reader
     */
    public boolean isEnabled() {
        return session.change(natives::isEnabled);
    }

    /**
     * Adds a listener. One that is added already stays there once.
     *
     * @param listener called for each swipe; not null
     * @throws QuarlinException 2 when closed
     */
    public void addSwipeListener(SwipeListener listener) {
        Objects.requireNonNull(listener, "listener");
        session.ask(() -> {
            listeners.add(listener);
            return null;
        });
    }

    /**
     * Removes a listener. It is not called any more when this returns, except that a call in progress goes on. Does
     * nothing when it is not there.
     *
     * @param listener the listener
     */
    public void removeSwipeListener(SwipeListener listener) {
        listeners.remove(listener);
    }

    /**
     * Disables the reader, forgets the listeners and ends the family. Swipes that wait in the queue are dropped; a call
     * of a listener in progress goes on. Does nothing when closed already.
     *
     * @throws QuarlinException when the library reports a failure; the object is closed all the same
     */
    @Override
    public void close() {
        session.close(natives::uninitialize, () -> {
            SwipeDispatcher.deliverTo(null);
            listeners.close();
            return null;
        });
    }
}
