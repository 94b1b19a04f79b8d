// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/** A prefix or a suffix, as the native library hands it out. {@link FixedText} is easier to read. */
public final class FixData {
    /** Whether the text is beyond the field of an Intermec engine (true) or between that and the code's text. */
    public boolean bAsTop;

    /** The text; null when the library could not tell it. */
    public String strFixData;

    /** Made by the native library. */
    public FixData() {
    }
}
