// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Optional;

/** An inventory round, made of the two native calls for the first tag and the next. */
final class Round {
    /**
     * More than a reply holds, and the largest number that the native library takes: a length that is still this one
     * stands for an identifier of no bytes.
     */
    private static final int ROOM = 255;

    private Round() {
    }

    /** One of the two native calls. */
    @FunctionalInterface
    interface TagCall {
        int make(byte[] tagId, int[] length, int[] signal) throws IOException;
    }

    /** Nothing when there is no tag, or no further one. */
    static Optional<Tag> tag(TagCall call) throws IOException {
        byte[] identifier = new byte[ROOM];
        int[] length = {ROOM};
        int[] signal = {0};
        try {
            call.make(identifier, length, signal);
        } catch (QuarlinException failure) {
            if (failure.code() == ResultCode.UHFRFID_NO_TAGS) {
                return Optional.empty();
            }
            throw failure;
        }
        return Optional.of(new Tag(Arrays.copyOf(identifier, length[0] == ROOM ? 0 : length[0]), signal[0]));
    }

    static List<Tag> all(TagCall first, TagCall next) throws IOException {
        List<Tag> tags = new ArrayList<>();
        for (Optional<Tag> tag = tag(first); tag.isPresent(); tag = tag(next)) {
            tags.add(tag.get());
        }
        return Collections.unmodifiableList(tags);
    }
}
