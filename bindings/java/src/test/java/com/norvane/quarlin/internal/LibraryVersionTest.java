// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;

import com.norvane.quarlin.Sources;
import java.io.IOException;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class LibraryVersionTest {
    private static final String DLL = "C:\\dll";
    private static final String JAR = "C:\\jar";

    @ParameterizedTest
    @CsvSource({
        "3.0.1000.0, 3.0.1000.0",
        "3.0.1000.1, 3.0.1000.0",
        "3.0.1001.0, 3.0.1000.9",
        "3.1.0.0,    3.0.1000.0",
        "3.10.0.0,   3.9.0.0",
        "3.0.1000,   3.0.1000.0",
        "3,          3.0.0.0",
    })
    void theSameOrALaterOneOfTheSameFirstNumberWillDo(String dll, String jar) {
        assertNull(LibraryVersion.objection(dll, DLL, jar, JAR));
    }

    @ParameterizedTest
    @CsvSource({
        "3.0.999.0,  3.0.1000.0",
        "3.0.1000.0, 3.0.1000.1",
        "3.9.0.0,    3.10.0.0",
        "2.9.9999.0, 3.0.1000.0",
        "4.0.0.0,    3.0.1000.0",
        "3.0.1000,   3.0.1000.1",
    })
    void anOlderOneAndAnotherFirstNumberAreRefused(String dll, String jar) {
        assertEquals("C:\\dll is version " + dll + ". C:\\jar, which is version " + jar
            + ", needs that version or a later one that begins with 3.",
            LibraryVersion.objection(dll, DLL, jar, JAR));
    }

    @ParameterizedTest
    @CsvSource({"''", "three", "3.", ".3", "3..0", "-3.0", "3.0 beta", "99999999999.0", "1.2.3.4.5.6.7.8.9"})
    void aDllThatDoesNotSayItsVersionIsRefused(String dll) {
        assertEquals("C:\\dll does not say its version. C:\\jar, which is version 3.0.1000.0, needs that version or a"
            + " later one that begins with 3.", LibraryVersion.objection(dll, DLL, "3.0.1000.0", JAR));
    }

    @Test
    void aDllWithoutAnyAnswerIsRefused() {
        assertEquals("C:\\dll does not say its version. C:\\jar, which is version 3.0, needs that version or a later"
            + " one that begins with 3.", LibraryVersion.objection(null, DLL, "3.0", JAR));
    }

    @ParameterizedTest
    @CsvSource({"''", "${project.version}"})
    void aJarThatDoesNotSayItsVersionRefuses(String jar) {
        assertEquals("C:\\jar does not say its version, with which that of C:\\dll (3.0.1000.0) would have to be"
            + " compared.", LibraryVersion.objection("3.0.1000.0", DLL, jar, JAR));
    }

    @Test
    void theJarHasTheVersionOfTheNativeLibrarysSources() throws IOException {
        Matcher project = Pattern.compile("project\\(quarlin VERSION ([0-9.]+)")
            .matcher(Sources.read("CMakeLists.txt"));
        assertEquals(true, project.find());
        assertEquals(project.group(1), LibraryVersion.ofJar());
    }
}
