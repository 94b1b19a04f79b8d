// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import java.io.IOException;

/** The simulated machine while a class of tests has it: its turns at the devices, and the simulator that plays them. */
final class Machine implements AutoCloseable {
    private final Turns turns = new Turns();
    private Simulator simulator;

    Machine() throws IOException {
    }

    Turns turns() {
        return turns;
    }

    /** Plays a scenario, instead of the one before. */
    void play(String... scenarioLines) throws IOException {
        stopPlaying();
        simulator = new Simulator(scenarioLines);
    }

    /** Ends the scenario, and with it its devices. */
    void stopPlaying() throws IOException {
        if (simulator != null) {
            Simulator ending = simulator;
            simulator = null;
            ending.close();
        }
    }

    /** Gives the simulator a command; gives its reply. Fails when the simulator refuses. */
    String command(String line) {
        return simulator.command(line);
    }

    /** The number that a device's status has under a name. */
    long number(String device, String name) {
        String status = command("status " + device);
        String key = "\"" + name + "\":";
        int begin = status.indexOf(key) + key.length();
        if (begin < key.length()) {
            throw new IllegalStateException("no " + name + " in " + status);
        }
        int end = begin;
        while (status.charAt(end) == '-' || Character.isDigit(status.charAt(end))) {
            ++end;
        }
        return Long.parseLong(status.substring(begin, end));
    }

    @Override
    public void close() throws IOException {
        try {
            stopPlaying();
        } finally {
            turns.close();
        }
    }
}
