// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;

/** Refuses texts that the native library would cut. */
final class NativeText {
    /** Bytes that a narrow text may have, characters that a wide one may have. */
    static final int LIMIT = 127;

    private NativeText() {
    }

    /** Gives back a text that the native library takes whole, as bytes that a zero ends. */
    static String narrow(String text, String what) {
        int bytes = 0;
        for (int i = 0; i < text.length(); ++i) {
            char character = text.charAt(i);
            if (character == 0) {
                throw refusal("The " + what + " has a zero character in it.");
            }
            // Half a character beyond U+FFFF has three bytes of its own on the way out of Java.
            bytes += character < 0x80 ? 1 : character < 0x800 ? 2 : 3;
        }
        if (bytes > LIMIT) {
            throw tooLong(what, bytes + " bytes");
        }
        return text;
    }

    /** Gives back a text that the native library takes whole, as UTF-16. */
    static String wide(String text, String what) {
        if (text.length() > LIMIT) {
            throw tooLong(what, text.length() + " characters");
        }
        return text;
    }

    private static QuarlinException tooLong(String what, String length) {
        return refusal("The " + what + " has " + length + ", and there is room for " + LIMIT + ".");
    }

    private static QuarlinException refusal(String message) {
        return new QuarlinException(ResultCode.INVALID_ARGUMENT, message);
    }
}
