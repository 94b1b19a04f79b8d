// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import com.norvane.quarlin.Library;
import java.net.URISyntaxException;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.security.CodeSource;

/**
 * Loads {@code qlsdk.dll}, once, and makes sure that it goes with the jar.
 *
 * <p>The library belongs to the class loader of this class, as its native methods do: a second class loader cannot have
 * the same file, and finds another one or makes a copy. That one has a state of its own and shares no lock with this
 * one. All methods may be called on any
 * thread.
 */
public final class NativeLoader {
    private static final Object LOCK = new Object();

    // Under LOCK.
    private static Path loaded;
    private static UnsatisfiedLinkError failure;

    private static volatile boolean ready;

    private NativeLoader() {
    }

    /**
     * Loads the library when it is not loaded yet.
     *
     * @throws UnsatisfiedLinkError when it cannot be loaded or has the wrong version, this time or before; the message
     *                              names every path that was tried
     */
    public static void load() {
        if (ready) {
            return;
        }
        Path file = find();
        // LOCK is not held here: another thread may be initialising Library, which this one waits for now and which
        // waits for LOCK.
        String objection;
        try {
            objection = LibraryVersion.objection(Library.QLLIB_GetSDKVersion(), file.toString(),
                    LibraryVersion.ofJar(), jar());
        } catch (UnsatisfiedLinkError foreign) {
            objection = file + " is not the library that " + jar() + " is made for. It lacks "
                    + foreign.getMessage() + ".";
        }
        if (objection != null) {
            throw refuse(new UnsatisfiedLinkError(objection));
        }
        ready = true;
    }

    /** Loads the library when it is not loaded yet. A failure is kept for {@link #load()}. */
    public static void loadIfPossible() {
        try {
            load();
        } catch (UnsatisfiedLinkError kept) {
            // load() repeats it.
        }
    }

    private static Path find() {
        synchronized (LOCK) {
            if (failure != null) {
                throw repeat(failure);
            }
            if (loaded == null) {
                LibrarySearch search = new LibrarySearch(System.getProperty("os.name"), System.getProperty("os.arch"),
                        file -> System.load(file.toString()));
                try {
                    loaded = search.load(System.getProperty(LibrarySearch.PROPERTY),
                            System.getProperty("java.library.path"), jar(),
                            () -> NativeLoader.class.getResourceAsStream("/" + LibrarySearch.RESOURCE),
                            new TemporaryCopies(Paths.get(System.getProperty("java.io.tmpdir"))));
                } catch (UnsatisfiedLinkError nothing) {
                    failure = nothing;
                    throw nothing;
                }
            }
            return loaded;
        }
    }

    private static UnsatisfiedLinkError refuse(UnsatisfiedLinkError refusal) {
        synchronized (LOCK) {
            if (failure == null) {
                failure = refusal;
            }
        }
        return refusal;
    }

    // A fresh one has the stack of this call; the first one is beneath it.
    private static UnsatisfiedLinkError repeat(UnsatisfiedLinkError first) {
        UnsatisfiedLinkError again = new UnsatisfiedLinkError(first.getMessage());
        again.initCause(first);
        return again;
    }

    private static String jar() {
        CodeSource source = NativeLoader.class.getProtectionDomain().getCodeSource();
        if (source == null || source.getLocation() == null) {
            return "the Java library";
        }
        try {
            return Paths.get(source.getLocation().toURI()).toString();
        } catch (URISyntaxException | RuntimeException noFile) {
            return source.getLocation().toString();
        }
    }
}
