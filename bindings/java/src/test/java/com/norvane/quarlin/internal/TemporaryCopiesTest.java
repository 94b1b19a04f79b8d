// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.nio.file.attribute.FileTime;
import java.time.Duration;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.stream.Stream;
import org.junit.jupiter.api.Assumptions;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

class TemporaryCopiesTest {
    @TempDir
    Path parent;

    private TemporaryCopies copies;

    @BeforeEach
    void makeCopies() {
        copies = new TemporaryCopies(parent);
    }

    @Test
    void eachCopyHasAFolderOfItsOwn() throws IOException {
        Path first = make();
        Path second = make();
        assertNotEquals(first.getParent(), second.getParent());
        assertTrue(Files.exists(first) && Files.exists(second));
    }

    @Test
    void manyAtOnceDisturbNoOther() throws InterruptedException {
        Set<Path> made = ConcurrentHashMap.newKeySet();
        List<Thread> processes = new ArrayList<>();
        for (int i = 0; i < 8; ++i) {
            Thread process = new Thread(() -> {
                try {
                    for (int n = 0; n < 25; ++n) {
                        made.add(make());
                    }
                } catch (IOException failed) {
                    throw new AssertionError(failed);
                }
            });
            process.start();
            processes.add(process);
        }
        for (Thread process : processes) {
            process.join();
        }
        assertEquals(200, made.size());
        assertTrue(made.stream().allMatch(Files::isRegularFile));
    }

    @Test
    void aRemovedCopyTakesItsFolderAlong() throws IOException {
        Path copy = make();
        copies.remove(copy);
        assertFalse(Files.exists(copy.getParent()));
    }

    @Test
    void anAbandonedCopyIsRemovedWithTheNext() throws IOException {
        Path abandoned = aged(make());
        make();
        assertFalse(Files.exists(abandoned.getParent()));
    }

    @Test
    void aCopyThatAnotherProcessHasJustMadeStays() throws IOException {
        Path fresh = make();
        make();
        assertTrue(Files.exists(fresh));
    }

    @Test
    void foldersOfOthersStay() throws IOException {
        Path ownFile = Files.createFile(Files.createDirectory(parent.resolve("quarlin-notes")).resolve("notes.txt"));
        Path elsewhere = Files.createFile(Files.createDirectory(parent.resolve("other")).resolve("qlsdk.dll"));
        aged(ownFile);
        aged(elsewhere);
        make();
        assertTrue(Files.exists(ownFile));
        assertTrue(Files.exists(elsewhere));
    }

    @Test
    void anAbandonedFolderWithSomethingElseInItKeepsThat() throws IOException {
        Path abandoned = make();
        Path other = Files.createFile(abandoned.resolveSibling("other"));
        aged(abandoned);
        make();
        assertTrue(Files.exists(other));
    }

    @Test
    void whatALinkLeadsToStays() throws IOException {
        Path folder = Files.createDirectory(parent.resolve("installed"));
        Path installed = aged(Files.createFile(folder.resolve("qlsdk.dll")));
        try {
            Files.createSymbolicLink(parent.resolve("quarlin-link"), folder);
        } catch (IOException | UnsupportedOperationException forbidden) {
            Assumptions.abort("no links here: " + forbidden);
        }
        make();
        assertTrue(Files.exists(installed));
    }

    @Test
    void aCopyHasAnAbsolutePathWhateverTheFolder() throws IOException {
        Path here = Paths.get("").toAbsolutePath();
        Path relative = here.relativize(parent);
        assertFalse(relative.isAbsolute());
        assertTrue(new TemporaryCopies(relative).make(new ByteArrayInputStream(new byte[] {1})).isAbsolute());
    }

    @Test
    void aFailedCopyLeavesNothing() throws IOException {
        InputStream broken = new InputStream() {
            @Override
            public int read() throws IOException {
                throw new IOException("broken");
            }
        };
        assertThrows(IOException.class, () -> copies.make(broken));
        try (Stream<Path> left = Files.list(parent)) {
            assertFalse(left.findAny().isPresent());
        }
    }

    private Path make() throws IOException {
        return copies.make(new ByteArrayInputStream(new byte[] {1}));
    }

    private static Path aged(Path file) throws IOException {
        Files.setLastModifiedTime(file.getParent(), FileTime.from(Instant.now().minus(Duration.ofHours(25))));
        return file;
    }
}
