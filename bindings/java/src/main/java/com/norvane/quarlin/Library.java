// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

import com.norvane.quarlin.internal.NativeLoader;

/**
 * The native library itself: its version, and the model of the machine.
 *
 * <p>{@code qlsdk.dll} is loaded by the first call of anything in this package or below. It is looked for
 * <ol>
 * <li>at the path in the system property {@code com.norvane.quarlin.library}, which names the file or its folder,
 * <li>in each folder of {@code java.library.path},
 * <li>in the jar, from which it is copied into a temporary file.
 * </ol>
 * The first that can be loaded is taken. When there is none, or when its version does not go with that of the jar, the
 * call fails with an {@link UnsatisfiedLinkError} that names every path and what is wrong with it, and so does every
 * later one. (The second use of a class that could not be initialised is a {@link NoClassDefFoundError}, as always in
 * Java.)
 *
 * <p>All methods may be called on any thread.
 */
public final class Library {
    static {
        NativeLoader.loadIfPossible();
    }

    private Library() {
    }

    /**
     * The version of {@code qlsdk.dll}.
     *
     * @return the version, such as {@code "3.0.1000.0"}; never null or empty
     * @throws UnsatisfiedLinkError when the native library cannot be loaded
     */
    public static String version() {
        NativeLoader.load();
        return QLLIB_GetSDKVersion();
    }

    /**
     * The machine's model, as its firmware names it.
     *
     * @return the model; never null, and empty when the firmware names none
     * @throws UnsatisfiedLinkError when the native library cannot be loaded
     */
    public static String modelNumber() {
        NativeLoader.load();
        return QLLIB_GetModelNumber();
    }

    /**
     * Asks for the version of {@code qlsdk.dll}. Answers for a library whose version is refused, too.
     *
     * @return the version, such as {@code "3.0.1000.0"}; never null, and empty when the library cannot tell
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; {@link #version()} says why
     */
    public static native String QLLIB_GetSDKVersion();

    /**
     * Asks for the machine's model, as its firmware names it. Answers for a library whose version is refused, too.
     *
     * @return the model; never null, and empty when the firmware names none
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; {@link #version()} says why
     */
    public static native String QLLIB_GetModelNumber();
}
