// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class NativeTextTest {
    private static String times(int count, String text) {
        StringBuilder all = new StringBuilder();
        for (int i = 0; i < count; ++i) {
            all.append(text);
        }
        return all.toString();
    }

    private static void assertRefused(String message, Executable call) {
        QuarlinException refusal = assertThrows(QuarlinException.class, call);
        assertSame(ResultCode.INVALID_ARGUMENT, refusal.code());
        assertEquals(message, refusal.getMessage());
    }

    // The last one is a character beyond U+FFFF, which Java hands over as two halves of three bytes.
    @ParameterizedTest
    @CsvSource({"a, 127, 128", "\u007f, 127, 128", "\u0080, 63, 128", "\u07ff, 63, 128", "\u0800, 42, 129",
        "\uffff, 42, 129", "\ud83d\ude00, 21, 132"})
    void aNarrowTextHasRoomFor127Bytes(String character, int fits, int bytesOfOneMore) {
        String longest = times(fits, character);
        assertSame(longest, NativeText.narrow(longest, "prefix"));
        assertRefused("The prefix has " + bytesOfOneMore + " bytes, and there is room for 127.",
            () -> NativeText.narrow(times(fits + 1, character), "prefix"));
    }

    @Test
    void aNarrowTextHasNoZeroInIt() {
        assertRefused("The suffix has a zero character in it.", () -> NativeText.narrow("a\0b", "suffix"));
    }

    @Test
    void aWideTextHasRoomFor127Characters() {
        String longest = times(127, "\u00e9");
        assertSame(longest, NativeText.wide(longest, "path"));
        assertRefused("The path has 128 characters, and there is room for 127.",
            () -> NativeText.wide(times(128, "x"), "path"));
    }
}
