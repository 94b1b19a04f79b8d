// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.Library;
import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Properties;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** The native library itself: what it says of itself and of the machine, and how it is found. */
@Tag("machine")
class LibraryMachineTest {
    /** Run in a JVM of its own: prints the version, or why there is none. */
    public static final class Load {
        private Load() {
        }

        public static void main(String[] arguments) {
            try {
                System.out.println("version " + Library.version());
                System.out.println("once more " + Library.version());
            } catch (UnsatisfiedLinkError error) {
                for (String line : error.getMessage().split("\n")) {
                    System.out.println("failed " + line);
                }
            }
            System.out.println("done");
        }
    }

    private static String libraryFile() {
        File named = new File(Simulator.property("com.norvane.quarlin.library"));
        return (named.isDirectory() ? new File(named, "qlsdk.dll") : named).getPath();
    }

    /** What Load prints in a JVM that is given these options. */
    private static List<String> load(String... options) throws IOException {
        List<String> command = new ArrayList<>();
        command.add(new File(System.getProperty("java.home"), "bin/java.exe").getPath());
        command.add("-XX:ActiveProcessorCount=2");
        command.addAll(Arrays.asList(options));
        command.addAll(Arrays.asList("-cp", System.getProperty("java.class.path"), Load.class.getName()));
        try (Program program = new Program(command)) {
            assertEquals(0, program.awaitEnd());
            List<String> lines = program.restOfOutput();
            assertEquals("done", lines.get(lines.size() - 1), lines::toString);
            return lines;
        }
    }

    private static String jarVersion() throws IOException {
        Properties properties = new Properties();
        try (InputStream stream = Library.class.getResourceAsStream("version.properties")) {
            properties.load(stream);
        }
        return properties.getProperty("version");
    }

    @Test
    void theVersionIsThatOfTheJar() throws IOException {
        assertEquals(jarVersion(), Library.version());
        assertEquals(jarVersion(), Library.QLLIB_GetSDKVersion());
    }

    @Test
    void theModelIsWhatTheFirmwareSays() throws IOException {
        try (Machine machine = new Machine()) {
            machine.turns().scannerDevices();
            machine.turns().machineState();
            machine.play("[[device]]", "kind = \"computer\"");
            machine.command("computer product-name \"JR-56 \u00FC\u20AC\"");
            assertEquals("JR-56 \u00FC\u20AC", Library.modelNumber());
            assertEquals("JR-56 \u00FC\u20AC", Library.QLLIB_GetModelNumber());
            machine.command("computer no-product-name");
            assertEquals("", Library.QLLIB_GetModelNumber());
            assertEquals("", Library.modelNumber());
        }
    }

    @Test
    void theFileOfTheSystemPropertyIsLoaded() throws IOException {
        List<String> lines = load("-Dcom.norvane.quarlin.library=" + libraryFile());
        assertTrue(lines.contains("version " + jarVersion()), lines::toString);
        assertTrue(lines.contains("once more " + jarVersion()), lines::toString);
    }

    @Test
    void theLibraryPathIsSearchedWhenThereIsNoProperty() throws IOException {
        List<String> lines = load("-Djava.library.path=C:\\nowhere;" + new File(libraryFile()).getParent());
        assertTrue(lines.contains("version " + jarVersion()), lines::toString);
    }

    @Test
    void aFailureNamesEveryPathThatWasTried() throws IOException {
        List<String> lines = load("-Dcom.norvane.quarlin.library=C:\\absent\\mine.dll",
                "-Djava.library.path=C:\\first;C:\\second");
        String text = String.join("\n", lines);
        assertTrue(text.contains("C:\\absent\\mine.dll"), text);
        assertTrue(text.contains("C:\\first\\qlsdk.dll"), text);
        assertTrue(text.contains("C:\\second\\qlsdk.dll"), text);
        assertTrue(text.contains("native/windows-x86_64/qlsdk.dll in "), text);
        assertFalse(text.contains("version "), text);
    }

    @Test
    void aFileThatIsNoLibraryIsNamedWithTheSystemsReason() throws IOException {
        String file = Simulator.binary("qlsim_hid.inf");
        List<String> lines = load("-Dcom.norvane.quarlin.library=" + file, "-Djava.library.path=C:\\first");
        assertTrue(lines.stream().anyMatch(line -> line.startsWith("failed ") && line.contains(file)
                && !line.contains("not there")), lines::toString);
    }

    @Test
    void aForeignLibraryIsRefused() throws IOException {
        // A library of the machine that has none of the functions.
        List<String> lines = load("-Dcom.norvane.quarlin.library=" + Simulator.binary("HwProbeLib.dll"));
        assertTrue(lines.stream().anyMatch(line -> line.startsWith("failed ")
                && line.contains("is not the library that")), lines::toString);
    }
}
