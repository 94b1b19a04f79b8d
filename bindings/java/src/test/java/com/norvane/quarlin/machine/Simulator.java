// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import java.io.File;
import java.io.IOException;
import java.io.RandomAccessFile;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * The simulated devices of the machine: {@code qlsim.exe} playing a scenario, and its commands. Its folder is the
 * system property {@code qlsim.bin}.
 *
 * <p>The environment variable {@code QLSIM_INSTANCE} has to be set before this JVM starts: the machine's libraries in
 * this process and the simulator have their records in common by it, and nobody else has.
 */
final class Simulator implements AutoCloseable {
    private static final AtomicInteger COUNT = new AtomicInteger();

    private final Path scenario;
    private final Program program;
    private final RandomAccessFile pipe;

    /** Plays a scenario; returns when its devices are at work. */
    Simulator(String... scenarioLines) throws IOException {
        String name = "qlsim-java-" + instance() + "-" + COUNT.incrementAndGet();
        scenario = Paths.get(System.getProperty("java.io.tmpdir"), name + ".toml");
        Files.write(scenario, Arrays.asList(scenarioLines), StandardCharsets.UTF_8);
        Program started = null;
        try {
            started = new Program(Arrays.asList(binary("qlsim.exe"), scenario.toString(), "--pipe", name));
            started.awaitLine("commands on");
            pipe = new RandomAccessFile("\\\\.\\pipe\\" + name, "rw");
        } catch (IOException | RuntimeException failure) {
            if (started != null) {
                started.close();
            }
            Files.deleteIfExists(scenario);
            throw failure;
        }
        program = started;
    }

    /** A program of the simulator, as the system knows its file. */
    static String binary(String name) {
        return new File(property("qlsim.bin"), name).getPath();
    }

    static String property(String name) {
        String value = System.getProperty(name);
        if (value == null) {
            throw new IllegalStateException("the system property " + name + " is not set");
        }
        return value;
    }

    static String instance() {
        String instance = System.getenv("QLSIM_INSTANCE");
        if (instance == null || instance.isEmpty()) {
            throw new IllegalStateException("the environment variable QLSIM_INSTANCE is not set");
        }
        return instance;
    }

    /** Gives a command; gives the text of the reply. Fails when the simulator refuses. */
    synchronized String command(String line) {
        String reply = ask(line);
        if (!reply.equals("ok") && !reply.startsWith("ok ")) {
            throw new IllegalStateException(line + ": " + reply);
        }
        return reply.length() > 3 ? reply.substring(3) : "";
    }

    private String ask(String line) {
        try {
            pipe.write((line + "\n").getBytes(StandardCharsets.UTF_8));
            byte[] reply = new byte[64 * 1024];
            int length = 0;
            while (length == 0 || reply[length - 1] != '\n') {
                if (length == reply.length) {
                    reply = Arrays.copyOf(reply, 2 * length);
                }
                int count = pipe.read(reply, length, reply.length - length);
                if (count <= 0) {
                    throw new IllegalStateException("the simulator is gone");
                }
                length += count;
            }
            return new String(reply, 0, length - 1, StandardCharsets.UTF_8);
        } catch (IOException broken) {
            throw new IllegalStateException("the simulator is gone", broken);
        }
    }

    /** Ends the simulator, and with it its devices. */
    @Override
    public void close() throws IOException {
        try {
            command("quit");
            pipe.close();
            if (program.awaitEnd() != 0) {
                throw new IllegalStateException("the simulator failed: " + program.restOfOutput());
            }
        } finally {
            program.close();
            Files.deleteIfExists(scenario);
        }
    }
}
