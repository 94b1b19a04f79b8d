// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import com.norvane.quarlin.internal.NativeLoader;

/** Tells the native library which classes it calls back into for the barcode scanner. */
final class CoreNatives {
    static {
        NativeLoader.load();
    }

    private CoreNatives() {
    }

    /**
     * Registers both classes for the rest of the process.
     *
     * @param exceptionClass thrown for failures that no class of Java's own stands for; has a constructor that takes a
     *                       {@code String}
     * @param callbackClass  has a static method
     *                       {@code void nativeBarcodeEvent(int, String, int, byte[], String, int, byte[])}
     * @return false when the method is missing; scans are not delivered then
     */
    static native boolean nInit(Class<?> exceptionClass, Class<?> callbackClass);
}
