// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Locale;
import java.util.Set;
import java.util.function.Consumer;
import java.util.function.Supplier;

/** Where {@code qlsdk.dll} is looked for, in which order, and what is told when it is nowhere. */
final class LibrarySearch {
    static final String FILE = "qlsdk.dll";
    static final String PROPERTY = "com.norvane.quarlin.library";
    static final String RESOURCE = "native/windows-x86_64/" + FILE;

    private static final String NOT_THERE = "not there";

    private final String platform;
    private final boolean suitable;
    private final Consumer<Path> system;
    private final List<String> failures = new ArrayList<>();
    private final List<Throwable> reasons = new ArrayList<>();

    /**
     * Makes a search.
     *
     * @param osName name of the operating system, as Java gives it
     * @param osArch its architecture, as Java gives it
     * @param system loads the file with an absolute path, or throws an {@link UnsatisfiedLinkError}, or an exception
     *               when it is not allowed to
     */
    LibrarySearch(String osName, String osArch, Consumer<Path> system) {
        platform = osName + " on " + osArch;
        suitable = osName.toLowerCase(Locale.ROOT).startsWith("windows")
                && (osArch.equals("amd64") || osArch.equals("x86_64"));
        this.system = system;
    }

    /**
     * Loads the first library that can be loaded.
     *
     * @param property    the property's value: a file or a folder; null or empty when it is not set
     * @param libraryPath folders, as in {@code java.library.path}; may be null
     * @param jar         what the jar is called in messages
     * @param packed      opens the library in the jar; gives null when there is none
     * @param copies      makes the temporary copy
     * @return what was loaded
     * @throws UnsatisfiedLinkError when nothing was: the message has a line for each path
     */
    Path load(String property, String libraryPath, String jar, Supplier<InputStream> packed, TemporaryCopies copies) {
        Set<Path> seen = new LinkedHashSet<>();
        if (property == null || property.isEmpty()) {
            failures.add("the system property " + PROPERTY + " is not set");
        } else {
            Path file = path(property, PROPERTY);
            if (file != null && Files.isDirectory(file)) {
                file = file.resolve(FILE);
            }
            if (file != null && seen.add(file) && tryFile(file, PROPERTY)) {
                return file;
            }
        }
        for (String folder : (libraryPath == null ? "" : libraryPath).split(File.pathSeparator)) {
            Path file = folder.isEmpty() ? null : path(folder, "java.library.path");
            if (file != null && seen.add(file.resolve(FILE)) && tryFile(file.resolve(FILE), "java.library.path")) {
                return file.resolve(FILE);
            }
        }
        Path copy = tryPacked(jar, packed, copies);
        if (copy != null) {
            return copy;
        }
        UnsatisfiedLinkError error = new UnsatisfiedLinkError(
                FILE + " was not loaded:\n  " + String.join("\n  ", failures));
        reasons.forEach(error::addSuppressed);
        throw error;
    }

    private Path path(String text, String source) {
        try {
            return Paths.get(text).toAbsolutePath().normalize();
        } catch (InvalidPathException noPath) {
            failures.add(text + " (" + source + "): no path: " + noPath.getReason());
            return null;
        }
    }

    private boolean tryFile(Path file, String source) {
        String failure = Files.isRegularFile(file) ? loadFailure(file) : NOT_THERE;
        if (failure != null) {
            failures.add(file + " (" + source + "): " + failure);
        }
        return failure == null;
    }

    private Path tryPacked(String jar, Supplier<InputStream> packed, TemporaryCopies copies) {
        String inside = RESOURCE + " in " + jar + ": ";
        try (InputStream library = packed.get()) {
            if (library == null) {
                failures.add(inside + NOT_THERE);
                return null;
            }
            if (!suitable) {
                failures.add(inside + unsuitable());
                return null;
            }
            Path copy = copies.make(library);
            String failure = loadFailure(copy);
            if (failure == null) {
                return copy;
            }
            copies.remove(copy);
            failures.add(inside + "copied to " + copy + ": " + failure);
        } catch (IOException failed) {
            reasons.add(failed);
            failures.add(inside + "not copied: " + failed);
        }
        return null;
    }

    // Null when the file was loaded.
    private String loadFailure(Path file) {
        if (!suitable) {
            return unsuitable();
        }
        try {
            system.accept(file);
            return null;
        } catch (UnsatisfiedLinkError refused) {
            reasons.add(refused);
            String text = String.valueOf(refused.getMessage());
            String prefix = file + ": ";
            return text.startsWith(prefix) ? text.substring(prefix.length()) : text;
        } catch (RuntimeException forbidden) {
            // A VM that was told to refuse native access does it so, and not with a link error.
            reasons.add(forbidden);
            return forbidden.toString();
        }
    }

    private String unsuitable() {
        return "made for 64-bit Windows, and this is " + platform;
    }
}
