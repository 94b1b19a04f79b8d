// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import com.norvane.quarlin.ResultCode;

/**
 * What the native library gives the constructor of a family's own exception: the kind of failure, a comma, and the
 * text of the failure. Immutable.
 */
public final class RaisedText {
    private static final String INTERNAL = "Unknown";
    private static final String UNEXPECTED = "Unexpected behaviour encountered";

    private final ResultCode code;
    private final String message;

    private RaisedText(ResultCode code, String message) {
        this.code = code;
        this.message = message;
    }

    /**
     * Takes a text apart.
     *
     * @param raised the text; null counts as empty
     * @return code and message; the whole text and {@link ResultCode#UNSPECIFIED} when it has no known beginning
     */
    public static RaisedText of(String raised) {
        if (raised == null) {
            return new RaisedText(ResultCode.UNSPECIFIED, "");
        }
        int comma = raised.indexOf(',');
        if (comma >= 0) {
            String kind = raised.substring(0, comma);
            String message = raised.substring(comma + 1);
            if (kind.equals(INTERNAL)) {
                return new RaisedText(ResultCode.INTERNAL_ERROR, message);
            }
            if (kind.equals(UNEXPECTED)) {
                return new RaisedText(named(message), message);
            }
            ResultCode code = named(kind);
            if (code != ResultCode.UNSPECIFIED) {
                return new RaisedText(code, message);
            }
        }
        return new RaisedText(ResultCode.UNSPECIFIED, raised);
    }

    // Some texts have a blank behind the name.
    private static ResultCode named(String text) {
        String name = text.trim();
        for (ResultCode code : ResultCode.values()) {
            if (code != ResultCode.UNSPECIFIED && code.nativeName().equals(name)) {
                return code;
            }
        }
        return ResultCode.UNSPECIFIED;
    }

    /**
     * The code that the text tells of.
     *
     * @return never null
     */
    public ResultCode code() {
        return code;
    }

    /**
     * The native library's own text.
     *
     * @return never null
     */
    public String message() {
        return message;
    }
}
