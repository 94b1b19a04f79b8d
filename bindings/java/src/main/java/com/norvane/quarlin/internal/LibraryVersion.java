// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import java.io.IOException;
import java.io.InputStream;
import java.util.Properties;

/** Whether a DLL goes with the jar. */
final class LibraryVersion {
    static final String RESOURCE = "/com/norvane/quarlin/version.properties";

    private LibraryVersion() {
    }

    /** The jar's own version; empty when it does not say. */
    static String ofJar() {
        try (InputStream resource = LibraryVersion.class.getResourceAsStream(RESOURCE)) {
            if (resource == null) {
                return "";
            }
            Properties properties = new Properties();
            properties.load(resource);
            return properties.getProperty("version", "");
        } catch (IOException unreadable) {
            return "";
        }
    }

    /**
     * Judges a pair of versions: the first numbers must be the same, and the DLL must not be the older one.
     *
     * @return null when they go together, else what is wrong
     */
    static String objection(String dll, String dllPath, String jar, String jarPath) {
        int[] need = numbers(jar);
        if (need == null) {
            return jarPath + " does not say its version, with which that of " + dllPath + " (" + dll
                    + ") would have to be compared.";
        }
        String needed = jarPath + ", which is version " + jar + ", needs that version or a later one that begins with "
                + need[0] + ".";
        int[] have = numbers(dll);
        if (have == null) {
            return dllPath + " does not say its version. " + needed;
        }
        if (have[0] != need[0] || compare(have, need) < 0) {
            return dllPath + " is version " + dll + ". " + needed;
        }
        return null;
    }

    // Null for what is no version.
    private static int[] numbers(String version) {
        if (version == null || !version.matches("[0-9]{1,9}(\\.[0-9]{1,9}){0,7}")) {
            return null;
        }
        String[] parts = version.split("\\.");
        int[] numbers = new int[parts.length];
        for (int i = 0; i < parts.length; ++i) {
            numbers[i] = Integer.parseInt(parts[i]);
        }
        return numbers;
    }

    // Numbers that are missing count as 0.
    private static int compare(int[] left, int[] right) {
        for (int i = 0; i < Math.max(left.length, right.length); ++i) {
            int order = Integer.compare(i < left.length ? left[i] : 0, i < right.length ? right[i] : 0);
            if (order != 0) {
                return order;
            }
        }
        return 0;
    }
}
