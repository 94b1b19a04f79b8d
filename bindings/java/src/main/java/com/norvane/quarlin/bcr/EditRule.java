// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import java.util.Objects;

/**
 * What is done with the text of each scan, before prefix and suffix are added. Immutable; two are equal when all of
 * their values are.
 *
 * <p>Texts are compared byte by byte; positions count characters of UTF-8, positive ones from the start, negative ones
 * from the end.
 */
public final class EditRule {
    private static final EditRule NONE = new EditRule(EditMode.NONE, "", "", 0, 0);

    private final EditMode mode;
    private final String target;
    private final String content;
    private final int start;
    private final int end;

    EditRule(EditMode mode, String target, String content, int start, int end) {
        this.mode = Objects.requireNonNull(mode);
        this.target = Objects.requireNonNull(target, "target");
        this.content = Objects.requireNonNull(content, "content");
        this.start = start;
        this.end = end;
    }

    static EditRule of(EditModeData data) {
        return new EditRule(EditMode.of(data.iEditMode), data.strTarget == null ? "" : data.strTarget,
                data.strCont == null ? "" : data.strCont, data.iStart, data.iEnd);
    }

    /**
     * Leaves the text as it is.
     *
     * @return the rule
     */
    public static EditRule none() {
        return NONE;
    }

    /**
     * Replaces each {@code target} by {@code content}. Does nothing when either of them is empty.
     *
     * @param target  what is looked for; not null
     * @param content what takes its place; not null
     * @return the rule
     */
    public static EditRule replace(String target, String content) {
        return new EditRule(EditMode.REPLACE, target, content, 0, 0);
    }

    /**
     * Inserts {@code content} behind a character. Does nothing when there is no such character, or for 0: what comes
     * before the first character is a prefix.
     *
     * @param content what is inserted; not null
     * @param after   1 for the first character; -1 leaves one character behind {@code content}
     * @return the rule
     */
    public static EditRule insert(String content, int after) {
        return new EditRule(EditMode.INSERT, "", content, after, 0);
    }

    /**
     * Removes each {@code target} between two characters. A position that the text does not have counts as none.
     *
     * @param target what is removed; not null
     * @param after  the character before the range; below 1 counts as the beginning
     * @param end    the last character of the range; 0 counts as the end, -1 leaves one character behind the range
     * @return the rule
     */
    public static EditRule delete(String target, int after, int end) {
        return new EditRule(EditMode.DELETE, target, "", after, end);
    }

    /**
     * What is done.
     *
     * @return the mode; never null
     */
    public EditMode mode() {
        return mode;
    }

    /**
     * What is looked for.
     *
     * @return the text, empty when the mode looks for none; never null
     */
    public String target() {
        return target;
    }

    /**
     * What is put in.
     *
     * @return the text, empty when the mode puts none in; never null
     */
    public String content() {
        return content;
    }

    /**
     * The character behind which the rule begins to work.
     *
     * @return 0 for the beginning
     */
    public int start() {
        return start;
    }

    /**
     * The last character that the rule works on.
     *
     * @return 0 for the end
     */
    public int end() {
        return end;
    }

    @Override
    public boolean equals(Object other) {
        if (!(other instanceof EditRule)) {
            return false;
        }
        EditRule that = (EditRule) other;
        return mode == that.mode && target.equals(that.target) && content.equals(that.content) && start == that.start
                && end == that.end;
    }

    @Override
    public int hashCode() {
        return Objects.hash(mode, target, content, start, end);
    }

    /**
     * For people: all values.
     *
     * @return such as {@code "REPLACE target \"a\" content \"b\" start 0 end 0"}
     */
    @Override
    public String toString() {
        return mode + " target \"" + target + "\" content \"" + content + "\" start " + start + " end " + end;
    }
}
