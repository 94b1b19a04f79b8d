// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** How the text of scans is edited, as the native library hands it out. {@link EditRule} is easier to read. */
public final class EditModeData {
    /** 0 not at all, 1 replace, 2 insert, 3 delete. */
    public int iEditMode;

    /** The character behind which editing begins; 0 for the beginning, negative ones are counted from the end. */
    public int iStart;

    /** The last character that is edited; 0 for the end, negative ones are counted from the end. */
    public int iEnd;

    /** The text that is looked for. */
    public String strTarget;

    /** The text that takes its place, or is inserted. */
    public String strCont;

    /** Made by the native library. */
    public EditModeData() {
    }
}
