// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import com.norvane.quarlin.bcr.QlBarcode;
import java.io.IOException;
import java.util.Arrays;

/**
 * The barcode scanners that tests play, all called {@code scanner}. The library asks once per process what is built in:
 * that is the same in all scenarios here, so that one JVM can run all tests.
 */
final class Scanners {
    private static final String[] COMPUTER = {
        "[[device]]",
        "kind = \"probe\"",
        "[[device.built_in]]",
        "number = 1",
        "available = false",
        "[[device.built_in]]",
        "number = 15",
        "available = true"};

    private Scanners() {
    }

    /** The machine's own Honeywell engine. */
    static void playBuiltIn(Machine machine) throws IOException {
        machine.turns().withoutEmulator();
        machine.play(scenario(
                "[[device]]",
                "kind = \"honeywell-scanner\"",
                "name = \"scanner\"",
                "firmware = \"N6603 CE000064AAA\""));
    }

    /** An Intermec engine on USB, for which external scanners have to be allowed. */
    static void playExternal(Machine machine) throws IOException {
        machine.turns().scannerDevices();
        machine.play(scenario(
                "[[device]]",
                "kind = \"intermec-scanner\"",
                "name = \"scanner\"",
                "link = \"usb\"",
                "product = 0x0801",
                "instance = \"7&1a2b3c4d&0&0001\"",
                "firmware = \"EA30 3.21.007\""));
    }

    /** The library keeps its list of scanners to the end of the family: whoever comes next may have others. */
    static void forgetList() throws IOException {
        QlBarcode.nQLBCR_Initialize();
        QlBarcode.nQLBCR_Uninitialize();
    }

    private static String[] scenario(String... scanner) {
        String[] lines = Arrays.copyOf(COMPUTER, COMPUTER.length + scanner.length);
        System.arraycopy(scanner, 0, lines, COMPUTER.length, scanner.length);
        return lines;
    }
}
