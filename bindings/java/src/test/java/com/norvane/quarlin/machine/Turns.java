// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import java.io.File;
import java.io.IOException;
import java.lang.management.ManagementFactory;
import java.time.Duration;
import java.util.Collections;

/**
 * The turns that tests of the machine's devices take, because every program sees those: mutexes and locks of the
 * system, held by a program beside this one, which lies in the build's folder of tests. It also counts the handles of
 * this process.
 */
final class Turns implements AutoCloseable {
    // The program gives up earlier, and says for what it has waited.
    private static final Duration PATIENCE = Duration.ofSeconds(240);

    private final Program aid;

    Turns() throws IOException {
        File build = new File(Simulator.property("qlsim.bin")).getParentFile();
        aid = new Program(Collections.singletonList(new File(build, "tests/java_test_aid.exe").getPath()));
    }

    /** Card readers on the HID bus. */
    Turns cardReaders() throws IOException {
        ask("mutex Global\\QuarlinTestCardReader");
        return this;
    }

    /** RFID readers on the HID bus. */
    Turns rfidReaders() throws IOException {
        ask("mutex Global\\QuarlinTestRfidReader");
        return this;
    }

    /** Scanners on USB and on serial ports, and the firmware's name of the computer, by which they are chosen. */
    Turns scannerDevices() throws IOException {
        ask("turn scanner-devices exclusive");
        ask("turn scanner-emulator shared");
        return this;
    }

    /** What all processes see in the registry. Others do not wait for it as long as for the other turns. */
    Turns machineState() throws IOException {
        ask("mutex Global\\QuarlinTestMachineState");
        return this;
    }

    /** No emulator program meanwhile. */
    Turns withoutEmulator() throws IOException {
        ask("turn scanner-emulator shared");
        return this;
    }

    /** Takes a serial cable; gives the number of its near end. The far end has the next one. */
    int cable() throws IOException {
        return 3 + 2 * ask("mutex Global\\QuarlinTestCable3 Global\\QuarlinTestCable5");
    }

    /** Open handles of this process, of every kind. */
    int handlesOfThisProcess() throws IOException {
        String name = ManagementFactory.getRuntimeMXBean().getName();
        return ask("handles " + name.substring(0, name.indexOf('@')));
    }

    private synchronized int ask(String command) throws IOException {
        aid.write(command);
        String answer = aid.awaitLine("", PATIENCE);
        if (answer.equals("ok")) {
            return 0;
        }
        if (!answer.startsWith("ok ")) {
            throw new IllegalStateException(command + ": " + answer);
        }
        return Integer.parseInt(answer.substring(3));
    }

    /** Lets everything go. */
    @Override
    public void close() throws IOException {
        aid.closeInput();
        aid.awaitEnd();
        aid.close();
    }
}
