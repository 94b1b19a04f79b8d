// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import java.util.Objects;

/**
 * A prefix or a suffix of each scan. Immutable; two are equal when all of their values are.
 *
 * <p>An Intermec engine sends a field before and a field behind the code's text, which are usually empty: a prefix or
 * suffix is outermost, or between such a field and the text. Honeywell engines have no such fields.
 */
public final class FixedText {
    private final String text;
    private final boolean outermost;

    /**
     * Makes a prefix or a suffix.
     *
     * @param text      the text; not null; empty for none
     * @param outermost whether it is beyond the engine's own field
     */
    public FixedText(String text, boolean outermost) {
        this.text = Objects.requireNonNull(text, "text");
        this.outermost = outermost;
    }

    /**
     * The text.
     *
     * @return the text; empty for none; never null
     */
    public String text() {
        return text;
    }

    /**
     * Whether the text is beyond the engine's own field.
     *
     * @return whether it is
     */
    public boolean isOutermost() {
        return outermost;
    }

    @Override
    public boolean equals(Object other) {
        return other instanceof FixedText && text.equals(((FixedText) other).text)
                && outermost == ((FixedText) other).outermost;
    }

    @Override
    public int hashCode() {
        return Objects.hash(text, outermost);
    }

    /**
     * For people: the text.
     *
     * @return the text; never null
     */
    @Override
    public String toString() {
        return text;
    }
}
