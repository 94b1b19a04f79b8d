// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Failures.NativeCall;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.CyclicBarrier;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicBoolean;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

@Timeout(60)
class SessionTest {
    private final Family family = Family.single("thing");
    private final List<String> calls = new ArrayList<>();
    private final ExecutorService others = Executors.newCachedThreadPool();

    @AfterEach
    void endThreads() throws InterruptedException {
        others.shutdown();
        assertTrue(others.awaitTermination(30, TimeUnit.SECONDS));
    }

    private NativeCall<Integer> call(String name) {
        return () -> {
            calls.add(name);
            return 0;
        };
    }

    private static NativeCall<Integer> failing(String message) {
        return () -> {
            throw new IOException(message);
        };
    }

    private static QuarlinException assertRefused(Runnable call, String message) {
        QuarlinException refusal = assertThrows(QuarlinException.class, call::run);
        assertEquals(ResultCode.INVALID_STATE, refusal.code());
        assertEquals(message, refusal.getMessage());
        return refusal;
    }

    @Test
    void callsReachTheLibraryWhileOpen() {
        Session session = family.open(call("initialize"));
        assertEquals(7, session.<Integer>ask(() -> 7));
        assertEquals("text", session.change(() -> "text"));
        session.close(call("uninitialize"));
        assertEquals(Arrays.asList("initialize", "uninitialize"), calls);
    }

    @Test
    void noCallReachesTheLibraryAfterClosing() {
        Session session = family.open(call("initialize"));
        session.close();
        assertRefused(() -> session.ask(call("ask")), "The thing is closed.");
        assertRefused(() -> session.change(call("change")), "The thing is closed.");
        assertEquals(Arrays.asList("initialize"), calls);
    }

    @Test
    void aSecondCloseDoesNothing() {
        Session session = family.open(call("initialize"));
        session.close(call("first"));
        session.close(call("second"));
        assertEquals(Arrays.asList("initialize", "first"), calls);
    }

    @Test
    void aSecondCloseDoesNotEndTheNextSession() {
        Session old = family.open(call("initialize"));
        old.close();
        Session fresh = family.open(call("again"));
        old.close(call("uninitialize"));
        fresh.ask(call("ask"));
        assertRefused(() -> family.open(call("third")), "The thing is open already.");
        assertEquals(Arrays.asList("initialize", "again", "ask"), calls);
    }

    @Test
    void closingTakesEveryStepAndThrowsTheFirstFailure() {
        Session session = family.open(call("initialize"));
        QuarlinException failure = assertThrows(QuarlinException.class,
                () -> session.close(call("one"), failing("first"), call("two"), failing("later"), call("three")));
        assertEquals(ResultCode.IO_ERROR, failure.code());
        assertEquals("first", failure.getMessage());
        assertEquals(1, failure.getSuppressed().length);
        assertEquals("later", failure.getSuppressed()[0].getMessage());
        assertEquals(Arrays.asList("initialize", "one", "two", "three"), calls);
    }

    @Test
    void anErrorWhileClosingDoesNotStopTheSteps() {
        Session session = family.open(call("initialize"));
        Error error = new UnsatisfiedLinkError("gone");
        Error thrown = assertThrows(Error.class, () -> session.close(() -> {
            throw error;
        }, failing("later"), call("last")));
        assertSame(error, thrown);
        assertEquals(1, thrown.getSuppressed().length);
        assertEquals(Arrays.asList("initialize", "last"), calls);
    }

    @Test
    void aSessionThatFailedToCloseIsClosed() {
        Session session = family.open(call("initialize"));
        assertThrows(QuarlinException.class, () -> session.close(failing("no")));
        assertRefused(() -> session.ask(call("ask")), "The thing is closed.");
        session.close(call("again"));
        family.open(call("next")).close();
        assertEquals(Arrays.asList("initialize", "next"), calls);
    }

    @Test
    void oneSessionIsOpenAtATime() {
        Session session = family.open(call("first"));
        assertRefused(() -> family.open(call("second")), "The thing is open already.");
        session.close();
        family.open(call("third")).close();
        assertEquals(Arrays.asList("first", "third"), calls);
    }

    @Test
    void aFailedInitialisationLeavesTheFamilyFree() {
        QuarlinException failure = assertThrows(QuarlinException.class, () -> family.open(() -> {
            throw new UnsupportedOperationException("none here");
        }));
        assertEquals(ResultCode.OP_UNSUPPORTED, failure.code());
        assertEquals("none here", failure.getMessage());
        family.open(call("again")).close();
        assertEquals(Arrays.asList("again"), calls);
    }

    @Test
    void sessionsOfACountedFamilyAreApart() {
        Family counted = Family.counted("list");
        Session one = counted.open(call("one"));
        Session two = counted.open(call("two"));
        one.close(call("end of one"));
        assertRefused(() -> one.ask(call("ask one")), "The list is closed.");
        two.ask(call("ask two"));
        two.close(call("end of two"));
        assertEquals(Arrays.asList("one", "two", "end of one", "ask two", "end of two"), calls);
    }

    @Test
    void questionsOverlap() throws Exception {
        Session session = family.open(call("initialize"));
        CyclicBarrier both = new CyclicBarrier(2);
        NativeCall<Integer> meet = () -> {
            try {
                return both.await(30, TimeUnit.SECONDS);
            } catch (Exception alone) {
                throw new IllegalStateException(alone);
            }
        };
        Future<Integer> one = others.submit(() -> session.<Integer>ask(meet));
        Future<Integer> two = others.submit(() -> session.<Integer>ask(meet));
        int[] arrivals = {one.get(), two.get()};
        Arrays.sort(arrivals);
        assertArrayEquals(new int[] {0, 1}, arrivals);
    }

    @Test
    void closingWaitsForTheQuestionInProgress() throws Exception {
        Session session = family.open(call("initialize"));
        CountDownLatch asking = new CountDownLatch(1);
        CountDownLatch go = new CountDownLatch(1);
        AtomicBoolean answered = new AtomicBoolean();
        Future<?> question = others.submit(() -> session.ask(() -> {
            asking.countDown();
            awaitLatch(go);
            answered.set(true);
            return 0;
        }));
        awaitLatch(asking);
        AtomicBoolean answeredFirst = new AtomicBoolean();
        Thread closing = new Thread(() -> session.close(() -> {
            answeredFirst.set(answered.get());
            return 0;
        }));
        closing.start();
        Latches.awaitBlocked(closing);
        assertFalse(answered.get());
        go.countDown();
        question.get();
        closing.join();
        assertTrue(answeredFirst.get());
    }

    private static void awaitLatch(CountDownLatch latch) {
        try {
            assertTrue(latch.await(30, TimeUnit.SECONDS));
        } catch (InterruptedException stopped) {
            throw new AssertionError(stopped);
        }
    }
}
