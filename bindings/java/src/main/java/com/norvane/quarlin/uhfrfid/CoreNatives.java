// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import com.norvane.quarlin.internal.NativeLoader;

/** Tells the native library which class it throws for the UHF RFID reader. */
final class CoreNatives {
    static {
        NativeLoader.load();
    }

    private CoreNatives() {
    }

    /**
     * Registers the class for the rest of the process.
     *
     * @param exceptionClass thrown for failures that no class of Java's own stands for; has a constructor that takes a
     *                       {@code String}
     * @return whether it was registered
     */
    static native boolean nInit(Class<?> exceptionClass);
}
