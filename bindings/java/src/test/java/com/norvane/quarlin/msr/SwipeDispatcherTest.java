// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.internal.ListenerList;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicReference;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

@Timeout(60)
class SwipeDispatcherTest {
    private final ListenerList<SwipeListener> listeners = new ListenerList<>();
    private final BlockingQueue<MagStripeData> seen = new LinkedBlockingQueue<>();

    private static MagStripeData swipe() {
        return new MagStripeData(new MagStripeTrackData[0], new MagStripeTrackData[0], new byte[0], false, true);
    }

    @AfterEach
    void deliverToNobody() {
        SwipeDispatcher.deliverTo(null);
        listeners.close();
    }

    private MagStripeData next() throws InterruptedException {
        return seen.poll(30, TimeUnit.SECONDS);
    }

    @Test
    void theNativeLibraryFindsItsMethod() throws Exception {
        Method method = SwipeDispatcher.class.getDeclaredMethod("onMagStripeSwipe", MagStripeData.class);
        assertTrue(Modifier.isStatic(method.getModifiers()));
        assertSame(void.class, method.getReturnType());
    }

    @Test
    void aSwipeReachesEveryListenerOnTheThreadOfEvents() throws Exception {
        List<String> threads = new ArrayList<>();
        listeners.add(data -> threads.add(Thread.currentThread().getName()));
        listeners.add(seen::add);
        SwipeDispatcher.deliverTo(listeners);
        MagStripeData swipe = swipe();
        SwipeDispatcher.onMagStripeSwipe(swipe);
        assertSame(swipe, next());
        assertEquals(1, threads.size());
        assertEquals("quarlin-events", threads.get(0));
        assertNotEquals(Thread.currentThread().getName(), threads.get(0));
    }

    @Test
    void swipesKeepTheirOrder() throws Exception {
        listeners.add(seen::add);
        SwipeDispatcher.deliverTo(listeners);
        List<MagStripeData> sent = new ArrayList<>();
        for (int i = 0; i < 100; ++i) {
            sent.add(swipe());
            SwipeDispatcher.onMagStripeSwipe(sent.get(i));
        }
        for (MagStripeData each : sent) {
            assertSame(each, next());
        }
    }

    @Test
    void aSwipeWithoutAReaderIsDropped() throws Exception {
        listeners.add(seen::add);
        SwipeDispatcher.deliverTo(null);
        SwipeDispatcher.onMagStripeSwipe(swipe());
        SwipeDispatcher.deliverTo(listeners);
        MagStripeData second = swipe();
        SwipeDispatcher.onMagStripeSwipe(second);
        assertSame(second, next());
    }

    @Test
    void aListenerThatThrowsHarmsNeitherTheDeliveryNorTheOthers() throws Exception {
        Thread.UncaughtExceptionHandler before = Thread.getDefaultUncaughtExceptionHandler();
        AtomicReference<Throwable> told = new AtomicReference<>();
        Thread.setDefaultUncaughtExceptionHandler((thread, failure) -> told.set(failure));
        try {
            Error thrown = new StackOverflowError("listener");
            listeners.add(data -> {
                throw thrown;
            });
            listeners.add(seen::add);
            SwipeDispatcher.deliverTo(listeners);
            MagStripeData first = swipe();
            MagStripeData second = swipe();
            SwipeDispatcher.onMagStripeSwipe(first);
            SwipeDispatcher.onMagStripeSwipe(second);
            assertSame(first, next());
            assertSame(second, next());
            assertSame(thrown, told.get());
        } finally {
            Thread.setDefaultUncaughtExceptionHandler(before);
        }
    }

    @Test
    void aSlowListenerDoesNotHoldTheDelivery() throws Exception {
        CountDownLatch inside = new CountDownLatch(1);
        CountDownLatch go = new CountDownLatch(1);
        listeners.add(data -> {
            inside.countDown();
            try {
                go.await();
            } catch (InterruptedException stopped) {
                Thread.currentThread().interrupt();
            }
            seen.add(data);
        });
        SwipeDispatcher.deliverTo(listeners);
        try {
            SwipeDispatcher.onMagStripeSwipe(swipe());
            assertTrue(inside.await(30, TimeUnit.SECONDS));
            // Returns although the listener does not.
            SwipeDispatcher.onMagStripeSwipe(swipe());
            assertTrue(seen.isEmpty());
        } finally {
            go.countDown();
        }
        next();
        next();
    }
}
