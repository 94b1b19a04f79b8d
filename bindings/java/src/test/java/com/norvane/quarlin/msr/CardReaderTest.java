// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.EventThread;
import java.util.Arrays;
import java.util.Collections;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

@Timeout(60)
class CardReaderTest {
    private final FakeCards natives = new FakeCards();
    private final CardReader cards = CardReader.open(natives);
    private final BlockingQueue<MagStripeData> seen = new LinkedBlockingQueue<>();

    @AfterEach
    void close() {
        natives.uninitializeFailure = null;
        cards.close();
    }

    private static MagStripeData swipe() {
        return new MagStripeData(new MagStripeTrackData[0], new MagStripeTrackData[0], new byte[0], false, true);
    }

    private static QuarlinException assertFails(ResultCode code, String message, Runnable call) {
        QuarlinException failure = assertThrows(QuarlinException.class, call::run);
        assertEquals(code, failure.code());
        assertEquals(message, failure.getMessage());
        return failure;
    }

    private static void awaitEvents() throws InterruptedException {
        CountDownLatch done = new CountDownLatch(1);
        EventThread.shared().post(done::countDown);
        assertTrue(done.await(30, TimeUnit.SECONDS));
    }

    @Test
    void oneIsOpenAtATime() {
        assertFails(ResultCode.INVALID_STATE, "The card reader is open already.",
                () -> CardReader.open(new FakeCards()));
    }

    @Test
    void enablingTwiceDeliversOnce() {
        cards.enable();
        cards.enable();
        assertEquals(1, natives.deliveries);
        assertTrue(cards.isEnabled());
    }

    @Test
    void aReaderThatWasUnpluggedIsEnabledAnew() {
        cards.enable();
        natives.enabled = false;
        cards.enable();
        assertTrue(natives.enabled);
        assertEquals(1, natives.deliveries);
    }

    @Test
    void aReaderThatWasForgottenIsEnabledAnew() {
        cards.enable();
        natives.isEnabledFailure = "fail check enabled status.";
        natives.disableFailure = "fail device enabled.";
        cards.enable();
        assertEquals(1, natives.deliveries);
    }

    @Test
    void failuresToEnableLeaveNoDeliveriesBehind() {
        natives.enableFailure = "fail device enabled.";
        for (int i = 0; i < 3; ++i) {
            QuarlinException failure =
                    assertFails(ResultCode.INTERNAL_ERROR, "fail device enabled.", cards::enable);
            assertEquals(0, natives.deliveries);
            assertEquals(0, failure.getSuppressed().length);
        }
        natives.enableFailure = null;
        cards.enable();
        assertEquals(1, natives.deliveries);
    }

    @Test
    void aFailureToEnableCarriesThatOfTidyingUp() {
        natives.enableFailure = "fail device enabled.";
        natives.disableFailure = "and again";
        QuarlinException failure = assertFails(ResultCode.INTERNAL_ERROR, "fail device enabled.", cards::enable);
        assertEquals("and again", failure.getSuppressed()[0].getMessage());
    }

    @Test
    void disablingAReaderThatIsNotEnabledDoesNothing() {
        cards.disable();
        cards.enable();
        cards.disable();
        cards.disable();
        assertEquals(Arrays.asList("initialize", "enable", "disable"), natives.calls);
    }

    @Test
    void aReaderThatFailedToDisableDeliversNothing() {
        cards.enable();
        natives.disableFailure = "fail device enabled.";
        assertFails(ResultCode.INTERNAL_ERROR, "fail device enabled.", cards::disable);
        assertEquals(0, natives.deliveries);
        cards.disable();
    }

    @Test
    void anotherReaderIsSelectedWhenTheFirstIsDisabled() {
        cards.enable();
        cards.select(0);
        assertFails(ResultCode.INVALID_STATE, "Another card reader is enabled.", () -> cards.select(1));
        cards.disable();
        cards.select(1);
        cards.enable();
        assertEquals(Arrays.asList("initialize", "enable", "select 0", "disable", "select 1", "enable"),
                natives.calls);
    }

    @Test
    void aSelectionThatIsRefusedChangesNothing() {
        cards.select(1);
        assertFails(ResultCode.INVALID_ARGUMENT, "Not valid device index.", () -> cards.select(2));
        cards.enable();
        cards.select(1);
        assertFails(ResultCode.INVALID_STATE, "Another card reader is enabled.", () -> cards.select(0));
    }

    @Test
    void noReaderIsAnEmptyList() {
        assertEquals(Collections.emptyList(), cards.readers());
    }

    @Test
    void listenersSeeSwipesUntilTheyAreRemoved() throws Exception {
        SwipeListener listener = seen::add;
        cards.addSwipeListener(listener);
        cards.addSwipeListener(listener);
        MagStripeData first = swipe();
        SwipeDispatcher.onMagStripeSwipe(first);
        awaitEvents();
        assertSame(first, seen.poll());
        assertNull(seen.poll());
        cards.removeSwipeListener(listener);
        SwipeDispatcher.onMagStripeSwipe(swipe());
        awaitEvents();
        assertNull(seen.poll());
    }

    @Test
    void aListenerMayCloseTheReader() throws Exception {
        cards.addSwipeListener(data -> cards.close());
        cards.addSwipeListener(seen::add);
        SwipeDispatcher.onMagStripeSwipe(swipe());
        awaitEvents();
        assertTrue(natives.calls.contains("uninitialize"));
        assertNull(seen.poll());
    }

    @Test
    void swipesInTheQueueAreDroppedByClosing() throws Exception {
        CountDownLatch inside = new CountDownLatch(1);
        CountDownLatch go = new CountDownLatch(1);
        EventThread.shared().post(() -> {
            inside.countDown();
            try {
                go.await();
            } catch (InterruptedException stopped) {
                Thread.currentThread().interrupt();
            }
        });
        assertTrue(inside.await(30, TimeUnit.SECONDS));
        cards.addSwipeListener(seen::add);
        SwipeDispatcher.onMagStripeSwipe(swipe());
        cards.close();
        go.countDown();
        awaitEvents();
        assertNull(seen.poll());
    }

    @Test
    void closingEndsTheFamilyOnce() {
        cards.enable();
        cards.close();
        cards.close();
        assertEquals(Arrays.asList("initialize", "enable", "uninitialize"), natives.calls);
    }

    @Test
    void aFailureToCloseForgetsTheListenersAllTheSame() throws Exception {
        cards.addSwipeListener(seen::add);
        natives.uninitializeFailure = "no";
        assertFails(ResultCode.INTERNAL_ERROR, "no", cards::close);
        SwipeDispatcher.onMagStripeSwipe(swipe());
        awaitEvents();
        assertNull(seen.poll());
        cards.close();
    }

    @Test
    void aClosedReaderAsksNothingOfTheLibrary() {
        cards.close();
        natives.calls.clear();
        String closed = "The card reader is closed.";
        assertFails(ResultCode.INVALID_STATE, closed, cards::enable);
        assertFails(ResultCode.INVALID_STATE, closed, cards::disable);
        assertFails(ResultCode.INVALID_STATE, closed, cards::isEnabled);
        assertFails(ResultCode.INVALID_STATE, closed, cards::readers);
        assertFails(ResultCode.INVALID_STATE, closed, () -> cards.select(0));
        assertFails(ResultCode.INVALID_STATE, closed, () -> cards.addSwipeListener(seen::add));
        cards.removeSwipeListener(seen::add);
        assertEquals(Collections.emptyList(), natives.calls);
    }

    @Test
    void theNextReaderHasNothingOfTheOneBefore() throws Exception {
        cards.addSwipeListener(seen::add);
        cards.enable();
        cards.close();
        FakeCards fresh = new FakeCards();
        BlockingQueue<MagStripeData> seenByTheNext = new LinkedBlockingQueue<>();
        try (CardReader next = CardReader.open(fresh)) {
            next.addSwipeListener(seenByTheNext::add);
            assertFalse(next.isEnabled());
            next.select(1);
            // Closed long ago.
            cards.close();
            MagStripeData swipe = swipe();
            SwipeDispatcher.onMagStripeSwipe(swipe);
            awaitEvents();
            assertSame(swipe, seenByTheNext.poll());
            assertNull(seen.poll());
        }
    }

    @Test
    void aListenerIsNeverNull() {
        assertThrows(NullPointerException.class, () -> cards.addSwipeListener(null));
    }
}
