// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.uhfrfid.Round.TagCall;
import java.io.IOException;
import java.util.ArrayDeque;
import java.util.Arrays;
import java.util.Collections;
import java.util.Deque;
import java.util.List;
import org.junit.jupiter.api.Test;

class RoundTest {
    private static final String NO_TAGS = "Unexpected behaviour encountered,QLERR_UHFRFID_NO_TAGS";

    /** Gives a tag as the native library does. */
    private static TagCall tag(byte[] identifier, int strength) {
        return (tagId, length, signal) -> {
            assertTrue(length[0] <= tagId.length, "the room that is promised is not there");
            System.arraycopy(identifier, 0, tagId, 0, identifier.length);
            length[0] = identifier.length;
            signal[0] = strength;
            return 0;
        };
    }

    private static TagCall failure(RuntimeException failure) {
        return (tagId, length, signal) -> {
            throw failure;
        };
    }

    private static TagCall inTurn(TagCall... calls) {
        Deque<TagCall> rest = new ArrayDeque<>(Arrays.asList(calls));
        return (tagId, length, signal) -> rest.remove().make(tagId, length, signal);
    }

    @Test
    void aRoundGoesOnUntilThereIsNoFurtherTag() throws IOException {
        List<Tag> tags = Round.all(tag(new byte[] {0x30, 0, 1}, -10), inTurn(tag(new byte[] {0x30, 0, 2}, -20),
                tag(new byte[] {0x30, 0, 3, 4}, -30), failure(new RfidException(NO_TAGS))));
        assertEquals(3, tags.size());
        assertArrayEquals(new byte[] {0x30, 0, 1}, tags.get(0).identifier());
        assertEquals(-10, tags.get(0).signal());
        assertEquals("02", tags.get(1).epc());
        assertEquals("0304", tags.get(2).epc());
        assertEquals(-30, tags.get(2).signal());
        assertThrows(UnsupportedOperationException.class, tags::clear);
    }

    @Test
    void noTagIsAnEmptyRound() throws IOException {
        TagCall none = failure(new RfidException(NO_TAGS));
        assertEquals(Collections.emptyList(), Round.all(none, none));
    }

    @Test
    void aTagThatIsSeenTwiceIsThereTwice() throws IOException {
        TagCall one = tag(new byte[] {0x30, 0, 1}, -10);
        assertEquals(2, Round.all(one, inTurn(one, failure(new RfidException(NO_TAGS)))).size());
    }

    @Test
    void anIdentifierOfNoBytesIsNoFailure() throws IOException {
        Tag tag = Round.tag((tagId, length, signal) -> {
            signal[0] = -5;
            return 0;
        }).get();
        assertEquals(0, tag.identifier().length);
        assertEquals(-5, tag.signal());
    }

    @Test
    void otherFailuresEndTheRound() {
        RfidException gone = new RfidException("Unexpected behaviour encountered,QLERR_UHFRFID_COMMAND_RECEIVE");
        assertSame(gone, assertThrows(RfidException.class,
                () -> Round.all(tag(new byte[] {0x30, 0, 1}, -10), failure(gone))));
        IllegalArgumentException refused = new IllegalArgumentException("Invalid Argument");
        assertSame(refused, assertThrows(IllegalArgumentException.class, () -> Round.tag(failure(refused))));
    }
}
