// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.Timeout;

@Timeout(120)
class ListenerListTest {
    private final EventThread thread = new EventThread("test-events");
    private final ListenerList<Consumer<String>> list = new ListenerList<>(thread);
    private final List<String> heard = Collections.synchronizedList(new ArrayList<>());
    private final Consumer<String> listener = heard::add;

    private void say(String text) {
        list.post(each -> each.accept(text));
    }

    private List<String> all() {
        Latches.drain(thread);
        return heard;
    }

    @Test
    void listenersAreCalledInTheOrderInWhichTheyWereAdded() {
        list.add(text -> heard.add("first " + text));
        list.add(text -> heard.add("second " + text));
        say("a");
        say("b");
        assertEquals(Arrays.asList("first a", "second a", "first b", "second b"), all());
    }

    @Test
    void oneThatIsAddedTwiceIsCalledOnce() {
        list.add(listener);
        list.add(listener);
        say("a");
        assertEquals(Collections.singletonList("a"), all());
    }

    @Test
    void aThrowingListenerRobsNoOther() {
        List<Throwable> handled = new ArrayList<>();
        thread.post(() -> Thread.currentThread().setUncaughtExceptionHandler((where, what) -> handled.add(what)));
        RuntimeException failure = new RuntimeException("listener");
        list.add(text -> {
            throw failure;
        });
        list.add(listener);
        say("a");
        say("b");
        assertEquals(Arrays.asList("a", "b"), all());
        assertEquals(Arrays.asList(failure, failure), handled);
    }

    @Test
    void anInterruptThatOneLeavesBehindDoesNotReachTheNext() {
        list.add(text -> Thread.currentThread().interrupt());
        list.add(text -> heard.add(text + (Thread.currentThread().isInterrupted() ? " interrupted" : "")));
        say("a");
        assertEquals(Collections.singletonList("a"), all());
    }

    @Test
    void aRemovedListenerHearsNothingOfWhatWaits() {
        CountDownLatch release = new CountDownLatch(1);
        list.add(listener);
        thread.post(() -> Latches.await(release));
        say("waiting");
        list.remove(listener);
        list.add(text -> heard.add("new " + text));
        release.countDown();
        assertEquals(Collections.singletonList("new waiting"), all());
    }

    @Test
    void aListenerMayRemoveTheNextOne() {
        list.add(text -> list.remove(listener));
        list.add(listener);
        say("a");
        assertEquals(Collections.emptyList(), all());
    }

    @Test
    void aListenerMayCloseTheList() {
        list.add(text -> {
            heard.add("last " + text);
            list.close();
        });
        list.add(listener);
        say("a");
        say("b");
        assertEquals(Collections.singletonList("last a"), all());
    }

    @Test
    void aClosedListDropsWhatWaitsAndTakesNoListener() {
        CountDownLatch release = new CountDownLatch(1);
        list.add(listener);
        thread.post(() -> Latches.await(release));
        say("waiting");
        list.close();
        list.add(text -> heard.add("late " + text));
        say("later");
        release.countDown();
        assertEquals(Collections.emptyList(), all());
    }

    @Test
    void whatComesBeforeAnyListenerIsNotKept() {
        say("early");
        list.add(listener);
        say("a");
        assertEquals(Collections.singletonList("a"), all());
    }

    @Test
    void removingWhatIsNotThereDoesNothing() {
        list.add(listener);
        list.remove(text -> { });
        list.remove(null);
        say("a");
        assertEquals(Collections.singletonList("a"), all());
    }

    @Test
    void aListenerIsNeeded() {
        assertThrows(NullPointerException.class, () -> list.add(null));
    }
}
