// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;

/** Files of the native library's sources, with which the Java library has to agree. */
public final class Sources {
    private Sources() {
    }

    /** Reads a file by its path from the top of the sources, which is the working folder or above it. */
    public static String read(String path) throws IOException {
        for (Path folder = Paths.get("").toAbsolutePath(); folder != null; folder = folder.getParent()) {
            Path file = folder.resolve(path);
            if (Files.isRegularFile(file)) {
                return new String(Files.readAllBytes(file), StandardCharsets.UTF_8);
            }
        }
        throw new IOException(path + " is not at or above the working folder " + Paths.get("").toAbsolutePath());
    }
}
