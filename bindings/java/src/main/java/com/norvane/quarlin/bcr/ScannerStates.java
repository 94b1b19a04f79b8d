// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/** The native methods that a scanner goes through from opening to closing. */
interface ScannerStates {
    /** Those of the native library. */
    ScannerStates LIBRARY = new ScannerStates() {
        @Override
        public int initialize() throws IOException {
            // Before QlBarcode, whose second use after a failure would not tell what is wrong.
            NativeLoader.load();
            return QlBarcode.nQLBCR_Initialize();
        }

        @Override
        public int uninitialize() throws IOException {
            return QlBarcode.nQLBCR_Uninitialize();
        }

        @Override
        public int enable() throws IOException {
            return QlBarcode.nQLBCR_Enable();
        }

        @Override
        public int disable() throws IOException {
            return QlBarcode.nQLBCR_Disable();
        }

        @Override
        public boolean isEnabled() throws IOException {
            return QlBarcode.nQLBCR_IsEnabled();
        }
    };

    /** {@link QlBarcode#nQLBCR_Initialize()}. */
    int initialize() throws IOException;

    /** {@link QlBarcode#nQLBCR_Uninitialize()}. */
    int uninitialize() throws IOException;

    /** {@link QlBarcode#nQLBCR_Enable()}, which may return the code of a failure without throwing. */
    int enable() throws IOException;

    /** {@link QlBarcode#nQLBCR_Disable()}. */
    int disable() throws IOException;

    /** {@link QlBarcode#nQLBCR_IsEnabled()}. */
    boolean isEnabled() throws IOException;
}
