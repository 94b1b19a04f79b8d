// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.ByteArrayInputStream;
import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;
import java.util.stream.Stream;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class LibrarySearchTest {
    private static final Supplier<InputStream> NOT_PACKED = () -> null;
    private static final String JAR = "the.jar";
    private static final String UNSET = "the system property com.norvane.quarlin.library is not set";
    private static final String NOT_IN_JAR = "native/windows-x86_64/qlsdk.dll in the.jar: not there";

    @TempDir
    Path root;

    private final List<Path> asked = new ArrayList<>();
    private final Map<Path, String> refused = new HashMap<>();
    private boolean refuseAll;
    private Path temporary;

    @BeforeEach
    void makeFolder() throws IOException {
        root = root.toRealPath();
        temporary = Files.createDirectory(root.resolve("temporary"));
    }

    @Test
    void thePropertyMayNameTheFile() throws IOException {
        Path file = Files.createFile(root.resolve("another name.dll"));
        assertEquals(file, search(file.toString(), ""));
        assertEquals(Collections.singletonList(file), asked);
    }

    @Test
    void thePropertyMayNameTheFolder() throws IOException {
        Path file = library("folder");
        assertEquals(file, search(file.getParent().toString(), ""));
    }

    @Test
    void thePropertyGoesBeforeTheLibraryPath() throws IOException {
        Path first = library("property");
        assertEquals(first, search(first.toString(), library("path").getParent().toString()));
        assertEquals(Collections.singletonList(first), asked);
    }

    @Test
    void aRelativePathIsMadeAbsoluteForTheSystem() {
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class, () -> search("nowhere.dll", ""));
        assertLines(error, Paths.get("nowhere.dll").toAbsolutePath() + " (com.norvane.quarlin.library): not there",
            NOT_IN_JAR);
    }

    @Test
    void foldersOfTheLibraryPathAreLookedThroughInTheirOrder() throws IOException {
        Path second = library("second");
        Path third = library("third");
        assertEquals(second, search(null, paths(root.resolve("first"), second.getParent(), third.getParent())));
        assertEquals(Collections.singletonList(second), asked);
    }

    @Test
    void aFolderThatIsNamedTwiceIsTriedOnce() throws IOException {
        Path file = library("folder");
        refused.put(file, "broken");
        Path folder = file.getParent();
        assertThrows(UnsatisfiedLinkError.class,
            () -> search(folder.toString(), paths(folder, folder, folder.resolve("."))));
        assertEquals(Collections.singletonList(file), asked);
    }

    @Test
    void oneThatTheSystemRefusesIsPassedOver() throws IOException {
        Path broken = library("broken");
        Path good = library("good");
        refused.put(broken, "not a valid application");
        assertEquals(good, search(broken.toString(), good.getParent().toString()));
        assertEquals(Arrays.asList(broken, good), asked);
    }

    @Test
    void theJarComesLast() throws IOException {
        byte[] content = {1, 2, 3};
        Path copy = search(null, root.toString(), () -> new ByteArrayInputStream(content));
        assertEquals("qlsdk.dll", copy.getFileName().toString());
        assertEquals(temporary, copy.getParent().getParent());
        assertArrayEquals(content, Files.readAllBytes(copy));
        assertEquals(Collections.singletonList(copy), asked);
    }

    @Test
    void theJarIsNotOpenedWhenAFileWillDo() throws IOException {
        search(library("folder").toString(), "", () -> {
            throw new AssertionError("opened");
        });
    }

    @Test
    void aCopyThatTheSystemRefusesIsRemoved() throws IOException {
        refuseAll = true;
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class,
            () -> search(null, "", () -> new ByteArrayInputStream(new byte[1])));
        assertLines(error, UNSET,
            "native/windows-x86_64/qlsdk.dll in the.jar: copied to " + asked.get(0) + ": no good");
        assertNothingIsLeft();
    }

    @Test
    void aCopyThatCannotBeMadeIsTold() throws IOException {
        Files.delete(temporary);
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class,
            () -> search(null, "", () -> new ByteArrayInputStream(new byte[1])));
        assertTrue(error.getMessage().contains("the.jar: not copied: "), error.getMessage());
        assertTrue(error.getSuppressed()[0] instanceof IOException);
    }

    @Test
    void aFailureNamesEveryPathAndItsReason() throws IOException {
        Path broken = library("broken");
        refused.put(broken, broken + ": Can't find dependent libraries");
        Path odd = library("odd");
        refused.put(odd, "another text");
        Path missing = root.resolve("missing");
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class,
            () -> search(broken.toString(), paths(missing, odd.getParent())));
        assertLines(error,
            broken + " (com.norvane.quarlin.library): Can't find dependent libraries",
            missing.resolve("qlsdk.dll") + " (java.library.path): not there",
            odd + " (java.library.path): another text",
            NOT_IN_JAR);
        assertEquals(2, error.getSuppressed().length);
        assertEquals(broken + ": Can't find dependent libraries", error.getSuppressed()[0].getMessage());
    }

    @Test
    void withoutPropertyAndPathTheFailureSaysSo() {
        assertLines(assertThrows(UnsatisfiedLinkError.class, () -> search(null, null)), UNSET, NOT_IN_JAR);
        assertLines(assertThrows(UnsatisfiedLinkError.class, () -> search("", "")), UNSET, NOT_IN_JAR);
    }

    @Test
    void textThatIsNoPathIsTold() {
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class, () -> search("a\0b", "c\0d"));
        String[] lines = error.getMessage().split("\n  ");
        assertEquals(4, lines.length);
        assertTrue(lines[1].startsWith("a\0b (com.norvane.quarlin.library): no path: "), lines[1]);
        assertTrue(lines[2].startsWith("c\0d (java.library.path): no path: "), lines[2]);
    }

    @Test
    void aVmThatForbidsLoadingIsTold() throws IOException {
        Path file = library("folder");
        RuntimeException forbidden = new IllegalStateException("Illegal native access");
        LibrarySearch search = new LibrarySearch("Windows 11", "amd64", path -> {
            asked.add(path);
            throw forbidden;
        });
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class, () -> search.load(file.toString(), "",
            JAR, () -> new ByteArrayInputStream(new byte[1]), new TemporaryCopies(temporary)));
        assertLines(error, file + " (com.norvane.quarlin.library): " + forbidden,
            "native/windows-x86_64/qlsdk.dll in the.jar: copied to " + asked.get(1) + ": " + forbidden);
        assertSame(forbidden, error.getSuppressed()[0]);
        assertNothingIsLeft();
    }

    @Test
    void errorsOfAnotherKindPass() throws IOException {
        Error other = new OutOfMemoryError();
        LibrarySearch search = new LibrarySearch("Windows 11", "amd64", file -> {
            throw other;
        });
        String file = library("folder").toString();
        assertSame(other, assertThrows(Error.class,
            () -> search.load(file, "", JAR, NOT_PACKED, new TemporaryCopies(temporary))));
    }

    @ParameterizedTest
    @CsvSource({"Linux, amd64", "Windows 11, x86", "Windows 11, aarch64", "Mac OS X, x86_64"})
    void elsewhereNothingIsLoadedOrCopied(String osName, String osArch) throws IOException {
        Path file = library("folder");
        LibrarySearch search = new LibrarySearch(osName, osArch, asked::add);
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class, () -> search.load(file.toString(),
            paths(root), JAR, () -> new ByteArrayInputStream(new byte[1]), new TemporaryCopies(temporary)));
        String reason = "made for 64-bit Windows, and this is " + osName + " on " + osArch;
        assertLines(error,
            file + " (com.norvane.quarlin.library): " + reason,
            root.resolve("qlsdk.dll") + " (java.library.path): not there",
            "native/windows-x86_64/qlsdk.dll in the.jar: " + reason);
        assertEquals(Collections.emptyList(), asked);
        assertNothingIsLeft();
    }

    private void assertNothingIsLeft() throws IOException {
        try (Stream<Path> left = Files.list(temporary)) {
            assertFalse(left.findAny().isPresent());
        }
    }

    private static void assertLines(UnsatisfiedLinkError error, String... lines) {
        assertEquals("qlsdk.dll was not loaded:\n  " + String.join("\n  ", lines), error.getMessage());
    }

    private static String paths(Path... folders) {
        StringBuilder text = new StringBuilder();
        for (Path folder : folders) {
            text.append(text.length() == 0 ? "" : File.pathSeparator).append(folder);
        }
        return text.toString();
    }

    private Path library(String folder) throws IOException {
        return Files.createFile(Files.createDirectory(root.resolve(folder)).resolve("qlsdk.dll"));
    }

    private Path search(String property, String libraryPath) {
        return search(property, libraryPath, NOT_PACKED);
    }

    private Path search(String property, String libraryPath, Supplier<InputStream> packed) {
        return new LibrarySearch("Windows 10", "amd64", file -> {
            assertTrue(file.isAbsolute());
            asked.add(file);
            if (refuseAll || refused.containsKey(file)) {
                throw new UnsatisfiedLinkError(refused.getOrDefault(file, "no good"));
            }
        }).load(property, libraryPath, JAR, packed, new TemporaryCopies(temporary));
    }
}
