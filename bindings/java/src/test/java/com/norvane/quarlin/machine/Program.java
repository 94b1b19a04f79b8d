// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.OutputStream;
import java.nio.charset.StandardCharsets;
import java.time.Duration;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;

/** A program of the simulated machine that a test has started, and the lines that it writes. */
final class Program implements AutoCloseable {
    private final String name;
    private final Process process;
    private final List<String> lines = new ArrayList<>();
    private boolean ended;

    Program(List<String> command) throws IOException {
        name = new File(command.get(0)).getName();
        process = new ProcessBuilder(command).redirectErrorStream(true).start();
        Thread reader = new Thread(this::read, "output of " + name);
        reader.setDaemon(true);
        reader.start();
    }

    private void read() {
        try (BufferedReader output = new BufferedReader(
                new InputStreamReader(process.getInputStream(), StandardCharsets.UTF_8))) {
            for (String line = output.readLine(); line != null; line = output.readLine()) {
                synchronized (lines) {
                    lines.add(line);
                    lines.notifyAll();
                }
            }
        } catch (IOException broken) {
            // The program was ended by force; what it wrote before is there.
        } finally {
            synchronized (lines) {
                ended = true;
                lines.notifyAll();
            }
        }
    }

    /** Takes the next line that has a text in it, and all lines before it. */
    String awaitLine(String text) {
        return awaitLine(text, Wait.PATIENCE);
    }

    /** The same with a deadline of one's own. */
    String awaitLine(String text, Duration patience) {
        long end = System.nanoTime() + patience.toNanos();
        synchronized (lines) {
            StringBuilder passed = new StringBuilder();
            while (true) {
                while (!lines.isEmpty()) {
                    String line = lines.remove(0);
                    if (line.contains(text)) {
                        return line;
                    }
                    passed.append('\n').append(line);
                }
                long left = end - System.nanoTime();
                if (ended || left <= 0) {
                    throw new IllegalStateException(name + " did not say \"" + text + "\"; it said:" + passed);
                }
                waitForMore(left);
            }
        }
    }

    private void waitForMore(long nanoseconds) {
        try {
            TimeUnit.NANOSECONDS.timedWait(lines, nanoseconds);
        } catch (InterruptedException interrupted) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", interrupted);
        }
    }

    void write(String line) throws IOException {
        OutputStream input = process.getOutputStream();
        input.write((line + "\n").getBytes(StandardCharsets.UTF_8));
        input.flush();
    }

    void closeInput() throws IOException {
        process.getOutputStream().close();
    }

    /** Waits until the program has ended by itself; gives its exit status. */
    int awaitEnd() {
        try {
            if (!process.waitFor(Wait.PATIENCE.toMillis(), TimeUnit.MILLISECONDS)) {
                throw new IllegalStateException(name + " does not end");
            }
        } catch (InterruptedException interrupted) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", interrupted);
        }
        return process.exitValue();
    }

    /** All lines that nobody has taken; after {@link #awaitEnd()} also the last ones. */
    List<String> restOfOutput() {
        synchronized (lines) {
            while (!ended) {
                waitForMore(Wait.PATIENCE.toNanos());
            }
            return new ArrayList<>(lines);
        }
    }

    /** Ends the program when it still runs. */
    @Override
    public void close() {
        process.destroyForcibly();
        awaitEnd();
    }
}
