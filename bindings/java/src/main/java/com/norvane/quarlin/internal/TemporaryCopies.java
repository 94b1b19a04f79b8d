// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.DirectoryStream;
import java.nio.file.FileAlreadyExistsException;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributes;
import java.time.Duration;
import java.time.Instant;

/**
 * Copies of the library that the jar carries. Each is in a fresh folder of its own, so that processes do not disturb
 * each other. Windows deletes no library that is loaded: what a process leaves behind, a later one removes.
 */
final class TemporaryCopies {
    private static final String PREFIX = "quarlin-";

    // A younger one may have been made just now by a process that has not loaded it yet.
    private static final Duration ABANDONED = Duration.ofDays(1);

    private final Path parent;

    TemporaryCopies(Path parent) {
        // Nothing is loaded by a relative path.
        this.parent = parent.toAbsolutePath();
    }

    /** Copies the library into a fresh folder; both go when the process ends, where the system allows it. */
    Path make(InputStream library) throws IOException {
        removeAbandoned();
        Path folder = freshFolder();
        Path file = folder.resolve(LibrarySearch.FILE);
        try {
            Files.copy(library, file);
        } catch (IOException failed) {
            remove(file);
            throw failed;
        }
        // The last one goes first.
        folder.toFile().deleteOnExit();
        file.toFile().deleteOnExit();
        return file;
    }

    // Files.createTempDirectory gathers randomness for the name, at the network adapters too. It needs to be new only.
    private Path freshFolder() throws IOException {
        for (long number = System.nanoTime(); ; ++number) {
            try {
                return Files.createDirectory(parent.resolve(PREFIX + Long.toHexString(number)));
            } catch (FileAlreadyExistsException taken) {
                // By another process; the next number may be free.
            }
        }
    }

    /** Removes a copy, if the system allows it. */
    void remove(Path file) {
        try {
            Files.deleteIfExists(file);
            Files.deleteIfExists(file.getParent());
        } catch (IOException inUse) {
            // Stays for a later process.
        }
    }

    private void removeAbandoned() {
        Instant limit = Instant.now().minus(ABANDONED);
        try (DirectoryStream<Path> folders = Files.newDirectoryStream(parent, PREFIX + "*")) {
            for (Path folder : folders) {
                if (isAbandoned(folder, limit)) {
                    remove(folder.resolve(LibrarySearch.FILE));
                }
            }
        } catch (IOException | RuntimeException unreadable) {
            // Tidying is no reason to fail.
        }
    }

    // Others may write here, too: a link would lead to a library that is somebody else's. To Java a junction of
    // Windows is a folder that is something else as well.
    private static boolean isAbandoned(Path folder, Instant limit) throws IOException {
        BasicFileAttributes attributes =
                Files.readAttributes(folder, BasicFileAttributes.class, LinkOption.NOFOLLOW_LINKS);
        return attributes.isDirectory() && !attributes.isOther()
                && attributes.lastModifiedTime().toInstant().isBefore(limit)
                && Files.isRegularFile(folder.resolve(LibrarySearch.FILE), LinkOption.NOFOLLOW_LINKS);
    }
}
